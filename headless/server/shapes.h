#pragma once

#include <string>
#include <vector>

#include "headless/storage/application.h"

namespace vell::headless {

/// The JSON texts that several methods answer with.

/// {"displayName", "fileURL", "persistentId"}
std::string summary(const OpenOutline& opened);
/// The summaries of all open outlines, frontmost first.
std::string summaries(const Application& application);
/// {"collapsed", "focused", "id", "outlineId", "selection"}
std::string editorSnapshot(const OpenOutline& opened);

}  // namespace vell::headless
