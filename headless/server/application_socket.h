#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

#include "platform/descriptor.h"

namespace vell::headless {

/// The listening socket by which the one running application is found. The file goes with the object.
class ApplicationSocket {
 public:
  /// Becomes the application that serves `path`; none where another one already does. A socket that nobody
  /// serves is replaced. The directory must exist; a lock file beside the socket settles races between
  /// starting applications. Throws Problem where the socket cannot be made.
  static std::optional<ApplicationSocket> claim(const std::string& path);

  ApplicationSocket(ApplicationSocket&&) = default;
  ~ApplicationSocket() { remove(); }

  int descriptor() const { return listener_.get(); }
  /// Nobody finds the application from now on; the lock stays until destruction.
  void remove();

 private:
  ApplicationSocket(std::string path, platform::Descriptor lock, platform::Descriptor listener);

  std::string path_;
  platform::Descriptor lock_;
  platform::Descriptor listener_;
  ino_t inode_ = 0;
};

/// A connection to whoever serves `path`; none where nobody does. Throws Problem where the path is too long.
platform::Descriptor connectTo(const std::string& path);

}  // namespace vell::headless
