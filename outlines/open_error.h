#pragma once

#include <stdexcept>

namespace vell::outlines {

/// An outline that could not be located or opened; `what()` is the text for the user.
class OpenError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The application could not be asked to open a file: it has not seen the file.
class LaunchError : public OpenError {
 public:
  using OpenError::OpenError;
};

}  // namespace vell::outlines
