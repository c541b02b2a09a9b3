#pragma once

#include <optional>
#include <stdexcept>
#include <string>

#include "platform/process.h"

namespace vell::outlines {

/// An outline that could not be located or opened; `what()` is the text for the user.
class OpenError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The application did not open a file in time; it may do so yet.
class OpeningTimedOut : public OpenError {
 public:
  using OpenError::OpenError;
};

/// The path made absolute against the current directory, without "." and ".." components or a "/" at its end.
/// Throws OpenError where the current directory is gone.
std::string absolutize(const std::string& path);

/// The application bundle that contains the executable. Throws OpenError where there is none.
std::string hostVellAppURL(const std::optional<std::string>& executable = platform::executablePath());

/// The version of the application whose Contents/Info.plist that bundle holds: "1.2 (34)", "1.2" where it
/// names no build, "dev" where it names no version.
std::string bundleVersion(const std::string& bundle);

/// The version of the application that contains this executable, "dev" outside of one. Read once per process.
const std::string& cliVersion();

}  // namespace vell::outlines
