#pragma once

#include <string>

namespace vell::bench {

enum class Unit { seconds, bytes, perSecond };

/// A bound on ours in terms of the peer's: `atMost(1.25)` times what the peer takes, `atLeast(15)` times as
/// fast as the peer; `none` is shown for comparison only.
struct Target {
  enum class Kind { none, atMost, atLeast } kind = Kind::none;
  double bound = 0;
};
inline Target atMost(double bound) { return {Target::Kind::atMost, bound}; }
inline Target atLeast(double bound) { return {Target::Kind::atLeast, bound}; }

/// One line of the table.
struct Line {
  std::string work;
  double ours;
  std::string peer;
  double peers;
  Target target;
  Unit unit = Unit::seconds;
  double growth = 0;  ///< the peer is ours with so many times less to do: the ratio is shown as an exponent
};

/// Prints each line as it comes.
class Table {
 public:
  Table();
  void add(const Line& line);

 private:
  std::string lastWork_;
};

}  // namespace vell::bench
