#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <mutex>
#include <random>
#include <thread>

#include "tests/end_to_end/application.h"

namespace vell::tests {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// VELL_KILL_ROUNDS=200 VELL_KILL_ROWS=1000000 VELL_KILL_FORMAT=md asks for more than what runs by default,
/// and for what takes an idle machine: a change that was answered longer ago than `patience` is on disk.
int option(const char* name, int usual) {
  const char* value = std::getenv(name);
  return value ? std::atoi(value) : usual;
}
std::string fileFormat() {
  const char* value = std::getenv("VELL_KILL_FORMAT");
  return value ? value : "txt";
}
constexpr milliseconds patience{300};

/// A list that grows row by row while its first row counts the changes. In markdown its rows are items, but
/// for the first one and those that come new.
class CountedList {
 public:
  CountedList(int rows, const std::string& format) {
    const bool isMarkdown = format == "md";
    if (format == "vell") head_ = "vell 1\n\n";
    lineEnd_ = isMarkdown ? "\n\n" : "\n";
    for (int row = 0; row < rows; ++row) {
      middle_ += (isMarkdown ? "- kept " : "kept ") + std::to_string(row) + "\n";
    }
    if (isMarkdown) middle_ += "\n";
  }

  std::string after(int changes) const {
    std::string text = head_ + lead + std::to_string(changes / 2 * 2) + lineEnd_ + middle_;
    for (int change = 1; change <= changes; change += 2) text += "row " + std::to_string(change) + lineEnd_;
    if (lineEnd_.size() > 1) text.pop_back();
    return text;
  }
  /// How many changes the text holds; -1 where it is no such list.
  int changesIn(const std::string& text) const {
    if (!text.starts_with(head_ + lead)) return -1;
    const int even = std::atoi(text.c_str() + head_.size() + lead.size());
    return text == after(even) ? even : text == after(even + 1) ? even + 1 : -1;
  }

  /// Makes changes one after another until the application is gone.
  void change() {
    for (int number = 1;; ++number) {
      const std::string text = number % 2 == 0 ? lead : "row ";
      std::vector<std::string> command = {"create", "row", "--text", text + std::to_string(number)};
      if (number % 2 == 0) command = {"update", "rows", "/*[0]", "--text", text + std::to_string(number)};
      if (vell(command).status != 0) return;
      const std::lock_guard lock(mutex_);
      answered_.push_back(Clock::now());
    }
  }
  /// How many changes had been answered at that time.
  int answeredUntil(Clock::time_point time) const {
    const std::lock_guard lock(mutex_);
    return static_cast<int>(std::upper_bound(answered_.begin(), answered_.end(), time) - answered_.begin());
  }

 private:
  inline static const std::string lead = "changes: ";

  std::string head_;
  std::string lineEnd_;
  std::string middle_;
  mutable std::mutex mutex_;
  std::vector<Clock::time_point> answered_;
};

TEST(Killing, LosesOnlyTheLatestChangesAndNeverTearsAFile) {
  const bool timed = std::getenv("VELL_KILL_ROUNDS") != nullptr;
  std::mt19937 random(static_cast<unsigned>(option("VELL_KILL_SEED", 1)));
  for (int round = 0; round < option("VELL_KILL_ROUNDS", 5); ++round) {
    const TemporaryHome home;
    CountedList list(option("VELL_KILL_ROWS", 100), fileFormat());
    const std::string file = home.write("list." + fileFormat(), list.after(0));
    Application application({file});
    std::thread client([&] { list.change(); });
    int seen = 0;
    while (seen == 0) seen = list.changesIn(contentOf(file));  // on disk soon behind the answer
    std::this_thread::sleep_for(milliseconds(random() % 1'000));
    const auto killed = Clock::now();
    application.kill();
    client.join();
    const int kept = list.changesIn(contentOf(file));
    EXPECT_TRUE(seen > 0 && kept >= seen) << "round " << round << ": " << contentOf(file).substr(0, 200);
    EXPECT_TRUE(!timed || kept >= list.answeredUntil(killed - patience)) << "round " << round;
  }
}

}  // namespace
}  // namespace vell::tests
