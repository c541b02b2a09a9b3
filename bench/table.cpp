#include "bench/table.h"

#include <cmath>
#include <cstdio>

namespace vell::bench {
namespace {

std::string scaled(double value, const char* const (&units)[3]) {
  std::size_t unit = 0;
  for (; value < 1 && unit < 2; ++unit) value *= 1000;
  char text[32];
  std::snprintf(text, sizeof text, "%.*f %s", value < 10 ? 2 : value < 100 ? 1 : 0, value, units[unit]);
  return text;
}

std::string shown(double value, Unit unit) {
  switch (unit) {
    case Unit::seconds:
      return value < 1e-6 ? scaled(value * 1e6, {"us", "ns", "ps"}) : scaled(value, {"s", "ms", "us"});
    case Unit::bytes:
      return scaled(value / 1e6, {"MB", "kB", "B"});
    case Unit::perSecond:
      return scaled(value / 1e6, {"M/s", "k/s", "/s"});
  }
  return {};
}

// Times and sizes are compared as they are where ours may be a multiple, and as speeds where it must be a
// multiple; rates are speeds already.
bool comparesSpeed(const Line& line) {
  return line.unit == Unit::perSecond || line.target.kind != Target::Kind::atMost;
}

double ratioOf(const Line& line) {
  if (line.growth > 0) return std::log(line.ours / line.peers) / std::log(line.growth);
  const bool inverted = comparesSpeed(line) && line.unit != Unit::perSecond;
  return inverted ? line.peers / line.ours : line.ours / line.peers;
}

std::string shownRatio(const Line& line) {
  const double ratio = ratioOf(line);
  const char* what = line.growth > 0            ? "exp."
                     : line.unit == Unit::bytes ? "size"
                     : comparesSpeed(line)      ? "speed"
                                                : "time";
  char text[32];
  std::snprintf(text, sizeof text, line.growth > 0 ? "%.*f %s" : "%.*f x %s", ratio < 10 ? 2 : 0, ratio,
                what);
  return text;
}

std::string shownTarget(Target target) {
  if (target.kind == Target::Kind::none) return "";
  char text[32];
  std::snprintf(text, sizeof text, "%s %g", target.kind == Target::Kind::atMost ? "<=" : ">=", target.bound);
  return text;
}

const char* verdict(const Line& line) {
  const double ratio = ratioOf(line);
  switch (line.target.kind) {
    case Target::Kind::none:
      return "";
    case Target::Kind::atMost:
      return ratio <= line.target.bound ? "met" : "missed";
    case Target::Kind::atLeast:
      return ratio >= line.target.bound ? "met" : "missed";
  }
  return "";
}

constexpr const char* row = "%-44s %9s   %-34s %9s  %12s  %-8s %s\n";

}  // namespace

Table::Table() { std::printf(row, "work", "vell", "beside it", "", "ratio", "target", ""); }

void Table::add(const Line& line) {
  const bool continues = line.work == lastWork_;
  std::printf(row, continues ? "" : line.work.c_str(), continues ? "" : shown(line.ours, line.unit).c_str(),
              line.peer.c_str(), shown(line.peers, line.unit).c_str(), shownRatio(line).c_str(),
              shownTarget(line.target).c_str(), verdict(line));
  std::fflush(stdout);
  lastWork_ = line.work;
}

}  // namespace vell::bench
