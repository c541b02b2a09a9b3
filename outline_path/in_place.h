#pragma once

#include <utility>

namespace vell::outline_path {

/// Makes a value where it is to stay: whatever constructs a T from this has `make` make it right there.
template <typename Make>
struct InPlace {
  using Made = decltype(std::declval<const Make&>()());
  Make make;
  // Constructors are to take it for the value. NOLINTNEXTLINE(google-explicit-constructor)
  operator Made() const { return make(); }
};
template <typename Make>
InPlace(Make) -> InPlace<Make>;

}  // namespace vell::outline_path
