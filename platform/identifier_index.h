#pragma once

#include <string>
#include <vector>

#include "platform/container.h"

namespace vell::platform {

/// Which files hold which persistent identifier, for systems without a search index. The application writes
/// it in its container; any process can read it, even during a write. A file has one identifier at most; an
/// identifier may lead to several files (copies), and to files that are gone.
class IdentifierIndex {
 public:
  explicit IdentifierIndex(const std::string& directory = containerDirectory());

  /// Remembers that the file, an absolute path, holds the identifier, in front of what is known of it.
  /// Throws std::system_error where the index cannot be written.
  void put(const std::string& identifier, const std::string& path);

  /// The files that hold the identifier, the latest put first; empty where there is no readable index.
  std::vector<std::string> find(const std::string& identifier) const;

  /// The identifier that the file was last put with; empty where it is not known.
  std::string identifierOf(const std::string& path) const;

 private:
  struct Entry {
    std::string identifier;
    std::string path;
  };
  std::vector<Entry> read() const;
  void replace(const std::vector<Entry>& entries) const;

  std::string file_;
};

}  // namespace vell::platform
