#pragma once

#include <functional>

namespace vell::outline_path {

/// Runs the work on a thread of its own, whose stack the deepest path fits, and waits for its end. What it
/// throws is passed on. Throws std::bad_alloc where the system has no thread left.
void onDeepStack(const std::function<void()>& work);

}  // namespace vell::outline_path
