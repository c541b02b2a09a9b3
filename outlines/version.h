#pragma once

#include <string>

namespace vell::outlines {

/// The version of the application whose Contents/Info.plist that bundle holds: "1.2 (34)", "1.2" where it
/// names no build, "dev" where it names no version.
std::string bundleVersion(const std::string& bundle);

/// The version of the application that contains this executable, "dev" outside of one. Read once per process.
const std::string& cliVersion();

}  // namespace vell::outlines
