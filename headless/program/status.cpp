#include <csignal>
#include <cstdio>
#include <filesystem>
#include <thread>

#include "document/timestamp.h"
#include "evaluation/clock.h"
#include "headless/editing/problem.h"
#include "headless/program/program.h"
#include "headless/program/running.h"
#include "headless/server/application_socket.h"
#include "json/document.h"
#include "json/rewrite.h"
#include "platform/container.h"
#include "platform/notices.h"
#include "text/display_width.h"

namespace vell::headless {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds answerLimit{10'000};
/// Of more outlines than this only those are listed that are not simply saved.
constexpr std::size_t mostListed = 20;

void print(const std::string& line) { std::printf("%s\n", line.c_str()); }

std::string shown(const std::string& text) { return text::displayText(text).text; }

std::string stringOf(const json::Node& object, std::string_view key) {
  const auto member = object.find(key);
  return member ? member->string().value_or("") : std::string();
}

std::vector<json::Node> elementsOf(const json::Node& object, std::string_view key) {
  const auto member = object.find(key);
  return member ? member->elements() : std::vector<json::Node>();
}

bool flagOf(const json::Node& object, std::string_view key) {
  const auto member = object.find(key);
  return member && member->boolean().value_or(false);
}

std::string localTime(const std::string& timestamp) {
  const auto time = document::parseTimestamp(timestamp);
  return time ? evaluation::wallClockText(evaluation::Moment(milliseconds(*time))) : timestamp;
}

std::string plural(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

void printOutline(const json::Node& outline) {
  const std::vector<json::Node> faults = elementsOf(outline, "faults");
  const bool saved = flagOf(outline, "saved");
  const char* state = !faults.empty() ? "FAULT" : saved ? "saved" : "unsaved";
  const std::string name = flagOf(outline, "untitled") ? stringOf(outline, "displayName") + " (no file)"
                                                       : stringOf(outline, "path");
  std::printf("%-9s %s\n", state, shown(name).c_str());
  for (const json::Node& fault : faults) print("          " + shown(fault.string().value_or("")));
}

/// Its path, and why it cannot be read, where it cannot.
void printFolder(const std::string& path) {
  std::error_code fault;
  const std::filesystem::directory_iterator readable(path, fault);
  print("folder    " + shown(path) + (fault ? ": " + fault.message() : std::string()));
}

void printUnreadable(const json::Node& file) {
  print("FAULT     " + shown(stringOf(file, "path")));
  print("          " + shown(stringOf(file, "fault")));
}

void printStatus(const json::Node& status) {
  const auto process = status.find("process");
  print("process   " + std::to_string(process ? process->integer().value_or(0) : 0));
  print("since     " + localTime(stringOf(status, "since")));
  print("socket    " + shown(stringOf(status, "socket")));
  for (const json::Node& folder : elementsOf(status, "folders")) printFolder(folder.string().value_or(""));
  const std::vector<json::Node> outlines = elementsOf(status, "outlines");
  print("serves    " + plural(outlines.size(), "outline"));
  const std::vector<json::Node> unreadable = elementsOf(status, "unreadable");
  if (!outlines.empty() || !unreadable.empty()) print("");
  std::size_t left = 0;
  for (const json::Node& outline : outlines) {
    const bool plain = flagOf(outline, "saved") && elementsOf(outline, "faults").empty();
    if (plain && outlines.size() > mostListed) {
      ++left;
    } else {
      printOutline(outline);
    }
  }
  for (const json::Node& file : unreadable) printUnreadable(file);
  if (left > 0) print("saved     " + std::to_string(left) + " others; --json lists them");
}

void tellThatNoneRuns() { warn("not running. Start it with: vell-headless ~/notes"); }

/// Of another application: the desktop's, or an older one.
[[noreturn]] void failToUnderstand(const std::string& path) {
  throw Problem("Another Vell than vell-headless serves " + path +
                "; \"vell get outlines\" lists what it has open");
}

}  // namespace

int showStatus(bool asJson) {
  const std::string path = platform::applicationSocketPath();
  const platform::Descriptor socket = connectTo(path);
  if (!socket) {
    if (const auto process = holderOf(path))
      throw Problem("Process " + std::to_string(*process) + " is starting or ending: ask again in a moment");
    tellThatNoneRuns();
    return notRunningStatus;
  }
  const json::Text answer = ask(socket, "headless.status", "{}", answerLimit);
  const json::Document document(answer.view());
  const auto status = document.root().find("result");
  if (!status) failToUnderstand(path);
  if (asJson) {
    print(json::toString(*status, json::Layout::compact));
  } else {
    printStatus(*status);
  }
  return 0;
}

int stop(std::chrono::seconds limit) {
  const std::string path = platform::applicationSocketPath();
  const auto process = holderOf(path);
  if (!process && connectTo(path)) failToUnderstand(path);
  if (!process) {
    tellThatNoneRuns();
    return 0;
  }
  const std::string named = "process " + std::to_string(*process);
  if (*process <= 0 || kill(*process, SIGTERM) != 0) throw systemProblem("Cannot end " + named);
  for (const auto end = Clock::now() + limit; holderOf(path) == process;) {
    if (Clock::now() > end)
      throw Problem("Asked " + named + " to end; after " +
                    plural(static_cast<std::size_t>(limit.count()), "second") +
                    " it has not ended yet. It may be saving: \"vell-headless log\" tells more, \"kill -9 " +
                    std::to_string(*process) + "\" ends it at once");
    std::this_thread::sleep_for(milliseconds(20));
  }
  for (const std::string& notice : platform::takeNotices()) warn(notice);
  print("Ended " + named);
  return 0;
}

}  // namespace vell::headless
