#pragma once

#include <string_view>

namespace vell::json {

/// Where text goes in pieces; an implementation may throw to stop the writing.
class Sink {
 public:
  virtual ~Sink() = default;
  virtual void write(std::string_view piece) = 0;
};

}  // namespace vell::json
