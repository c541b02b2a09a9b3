#pragma once

#include <functional>
#include <string_view>

namespace vell::outline_path {

/// Runs what recurses over the tree of a path with that text, and returns behind it. A long text may nest too
/// deep for the stack of this thread: then the work runs on a thread of its own with a large one. What it
/// throws is passed on; std::bad_alloc where the system has no thread left.
void onStackFor(std::string_view text, const std::function<void()>& work);

}  // namespace vell::outline_path
