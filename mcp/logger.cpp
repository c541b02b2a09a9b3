#include "mcp/logger.h"

// All of the library is compiled in here, so that programs load no shared object for a few lines of log.
#define FMT_HEADER_ONLY
#include <poll.h>
#include <spdlog/logger.h>
#include <spdlog/sinks/base_sink.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <mutex>

namespace vell::mcp {

namespace {

struct LevelTraits {
  std::string_view name;
  spdlog::level::level_enum spdlogLevel;
};

constexpr std::array<LevelTraits, 8> levels{{{"debug", spdlog::level::debug},
                                             {"info", spdlog::level::info},
                                             {"notice", spdlog::level::info},
                                             {"warning", spdlog::level::warn},
                                             {"error", spdlog::level::err},
                                             {"critical", spdlog::level::critical},
                                             {"alert", spdlog::level::critical},
                                             {"emergency", spdlog::level::critical}}};

/// POSIX promises that a pipe which poll(2) calls writable takes this much at once.
constexpr std::size_t longestEntry = 512;

class NonBlockingStandardError : public spdlog::sinks::base_sink<std::mutex> {
 protected:
  void sink_it_(const spdlog::details::log_msg& message) override {
    spdlog::memory_buf_t line;
    formatter_->format(message, line);
    if (line.size() > longestEntry) {
      line.resize(longestEntry);
      line[longestEntry - 1] = '\n';
    }
    pollfd descriptor{STDERR_FILENO, POLLOUT, 0};
    if (::poll(&descriptor, 1, 0) != 1) return;
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, line.data(), line.size());
  }
  void flush_() override {}
};

class SpdlogSink : public LogSink {
 public:
  SpdlogSink() : logger_("", std::make_shared<NonBlockingStandardError>()) {
    logger_.set_level(spdlog::level::warn);
    logger_.set_pattern("%Y-%m-%dT%H:%M:%S%z %l %v");
  }

  bool accepts(LogLevel level) const override { return logger_.should_log(traitsOf(level).spdlogLevel); }

  void write(const LogEntry& entry) override {
    std::string text(entry.message);
    for (const auto& [key, value] : entry.metadata) text.append(" ").append(key).append("=").append(value);
    logger_.log(traitsOf(entry.level).spdlogLevel, "{}: {}", entry.label, text);
  }

 private:
  static const LevelTraits& traitsOf(LogLevel level) { return levels[static_cast<std::size_t>(level)]; }

  spdlog::logger logger_;
};

}  // namespace

std::string_view levelName(LogLevel level) { return levels[static_cast<std::size_t>(level)].name; }

std::optional<LogLevel> levelNamed(std::string_view name) {
  const auto found = std::find_if(levels.begin(), levels.end(),
                                  [name](const LevelTraits& level) { return level.name == name; });
  if (found == levels.end()) return std::nullopt;
  return static_cast<LogLevel>(found - levels.begin());
}

std::vector<std::string_view> levelNames() {
  std::vector<std::string_view> names;
  names.reserve(levels.size());
  for (const LevelTraits& level : levels) names.push_back(level.name);
  return names;
}

std::shared_ptr<LogSink> standardErrorSink() { return std::make_shared<SpdlogSink>(); }

}  // namespace vell::mcp
