#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

#include "platform/descriptor.h"

namespace vell::headless {

/// The listening socket by which the one running application is found. The file goes with the object.
class ApplicationSocket {
 public:
  /// Becomes the application that serves `path`; none if another one does. Replaces a socket that nobody
  /// serves. The directory must exist; a lock file beside the socket settles races between
  /// starting applications. Throws Problem where the socket cannot be made.
  static std::optional<ApplicationSocket> claim(const std::string& path);

  ApplicationSocket(ApplicationSocket&&) = default;
  ~ApplicationSocket() { remove(); }

  int descriptor() const { return listener_.get(); }
  /// Removes the socket file and stops listening; the lock stays until destruction.
  void remove();

 private:
  ApplicationSocket(std::string path, platform::Descriptor lock, platform::Descriptor listener);

  std::string path_;
  platform::Descriptor lock_;
  platform::Descriptor listener_;
  ino_t inode_ = 0;
};

/// The process that holds the lock of that socket: it serves, or is about to begin or to end. None where
/// there is none, 0 where it is not known.
std::optional<pid_t> holderOf(const std::string& path);

/// A connection to the application that serves `path`; none if there is none. Throws Problem if the path is
/// too long.
platform::Descriptor connectTo(const std::string& path);

}  // namespace vell::headless
