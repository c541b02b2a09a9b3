#pragma once

#include <optional>
#include <string>

#include "outlines/opening.h"

namespace vell::outlines {

/// The file format that a path's extension stands for, letter case ignored: vell, opml, json, txt, markdown
/// (also for "md").
std::optional<std::string> formatOfName(const std::string& path);

/// The same; txt where it stands for none.
std::string formatForPath(const std::string& path);

/// Writes a new empty outline of that format to an absolute path at which nothing is, and opens it. The
/// application must run. Where the application does not open the file, none is left behind, unless it may do
/// so yet. Throws as the opening does.
ipc::Answer createOutlineFile(ipc::Application& application, const std::string& absolutePath,
                              const std::string& format, const OpenOptions& options = {});

}  // namespace vell::outlines
