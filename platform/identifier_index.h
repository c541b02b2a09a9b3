#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/container.h"
#include "platform/files.h"

namespace vell::platform {

/// Which files hold which persistent identifier, for files that do not say so themselves and for systems
/// without a search index. The application writes it in its container; any process can read it, even during a
/// write. A file has one identifier at most; an identifier may lead to several files (copies), and to some
/// that are gone: of these only the latest are kept.
class IdentifierIndex {
 public:
  struct Entry {
    std::string identifier;
    std::string path;  ///< absolute
    /// The file that was there; the default one where that is not known.
    FileIdentity file = {};
  };

  explicit IdentifierIndex(const std::string& directory = containerDirectory());

  /// Remembers the entry in place of what is known of its path, in front of the others of its identifier.
  /// Throws std::system_error where the index cannot be written.
  void put(const Entry& entry);
  void forget(const std::string& path);

  /// The files that hold the identifier, the latest put first; empty where there is no readable index.
  std::vector<std::string> find(const std::string& identifier);

  // What was last put; null where nothing is known. Valid until the next call.

  const Entry* atPath(const std::string& path);
  const Entry* ofFile(const FileIdentity& file);

 private:
  struct Kept {
    Entry entry;
    std::uint64_t number;  ///< grows with every put
  };

  void write(const Entry& entry);
  void catchUp();
  void take(const std::string& records);
  void apply(Entry entry);
  void remove(const std::string& path);
  void compact();
  std::vector<const Kept*> inOrder() const;

  std::string file_;
  std::unordered_map<std::string, Kept> byPath_;
  std::unordered_map<std::string, std::map<std::uint64_t, std::string>> paths_;  ///< of each identifier
  std::map<std::pair<ino_t, std::int64_t>, std::string> byFile_;
  std::uint64_t nextNumber_ = 0;
  FileIdentity read_;          ///< the file that was read
  std::size_t readBytes_ = 0;  ///< how much of it
  std::size_t records_ = 0;
  std::size_t compacted_ = 0;  ///< records when it was last compacted
  bool damaged_ = false;       ///< it ends in half a record, or is of another form
};

}  // namespace vell::platform
