#pragma once

#include <string>

namespace vell::platform {

/// Puts two files in each other's place in one step, in which nothing that others write into either can get
/// lost. False, with nothing changed, where one is missing or the file system cannot do it.
bool swapFiles(const std::string& one, const std::string& other);

}  // namespace vell::platform
