#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vell::mcp {

/// The protocol's levels, least severe first.
enum class LogLevel { debug, info, notice, warning, error, critical, alert, emergency };

std::string_view levelName(LogLevel level);
std::optional<LogLevel> levelNamed(std::string_view name);
/// In the order of the levels.
std::vector<std::string_view> levelNames();

/// Key and value pairs that go with an entry.
using LogMetadata = std::vector<std::pair<std::string, std::string>>;

struct LogEntry {
  LogLevel level;
  std::string_view label;
  std::string_view message;
  const LogMetadata& metadata;
};

/// Where entries go.
class LogSink {
 public:
  virtual ~LogSink() = default;
  virtual bool accepts(LogLevel level) const = 0;
  virtual void write(const LogEntry& entry) = 0;
};

/// Writes warnings and worse to standard error. Many hosts never read it: an entry that would have to wait
/// for the reader is dropped.
std::shared_ptr<LogSink> standardErrorSink();

/// A labelled way to a sink; cheap to copy.
class Logger {
 public:
  explicit Logger(std::string label, std::shared_ptr<LogSink> sink = standardErrorSink())
      : label_(std::move(label)), sink_(std::move(sink)) {}

  /// Whether somebody reads entries of that level.
  bool accepts(LogLevel level) const { return sink_->accepts(level); }
  void log(LogLevel level, std::string_view message, const LogMetadata& metadata = {}) const {
    if (accepts(level)) sink_->write({level, label_, message, metadata});
  }
  const std::string& label() const { return label_; }

 private:
  std::string label_;
  std::shared_ptr<LogSink> sink_;
};

}  // namespace vell::mcp
