#include "headless/storage/session.h"

#include "headless/access.h"
#include "headless/storage/files.h"
#include "json/document.h"
#include "json/error.h"
#include "json/writer.h"

namespace vell::headless {
namespace {

constexpr std::chrono::milliseconds pace{1000};

/// `files` are those that no folder brings.
std::string described(const Application& application) {
  std::string text;
  json::Writer writer(text);
  writer.beginObject().key("files").beginArray();
  std::vector<std::string> front;
  for (const auto& outline : application.outlines()) {
    const std::string& path = outline->storagePath();
    if (front.empty()) front.push_back(path);
    if (!outline->isUntitled() && !application.folders().hold(path)) writer.value(path);
  }
  writer.endArray().key("folders").array(application.folders().paths()).key("front").array(front).endObject();
  return text += '\n';
}

std::vector<std::string> pathsIn(const json::Node& root, std::string_view key) {
  std::vector<std::string> values;
  if (const auto array = root.find(key))
    for (const json::Node& each : array->elements())
      if (auto value = each.string(); value && value->starts_with('/')) values.push_back(std::move(*value));
  return values;
}

std::string contentOf(const std::string& path) {
  try {
    return readFile(path).bytes;
  } catch (const UnreadableFile&) {
    return "{}";
  }
}

}  // namespace

Session::Session(Scheduler& scheduler, Application& application)
    : scheduler_(scheduler),
      application_(application),
      path_(application.settings().container + "/session") {}

Session::~Session() {
  if (timer_) scheduler_.cancel(*timer_);
}

void Session::reopen() try {
  const bool first = application_.outlines().empty();
  const std::string content = contentOf(path_);
  const json::Document former{std::string_view(content)};
  open(pathsIn(former.root(), "files"), false);
  open(pathsIn(former.root(), "folders"), true);
  application_.reopenUntitled();
  for (const std::string& front : pathsIn(former.root(), "front"))
    if (const OpenOutline* opened = application_.findByPath(front); opened != nullptr && first)
      application_.bringToFront(*opened);
} catch (const json::ParseError& error) {
  application_.report("Cannot tell what was open: " + path_ + ": " + error.what());
  application_.reopenUntitled();
}

void Session::open(const std::vector<std::string>& paths, bool folders) {
  for (const std::string& path : paths) {
    try {
      folders ? void(application_.serveFolder(path)) : void(application_.openBehind(path));
    } catch (const Abandoned&) {
      throw;
    } catch (const std::exception& failure) {
      application_.log(std::string("Not open any more: ") + failure.what());
    }
  }
}

void Session::keep() {
  std::string now = described(application_);
  try {
    if (now != kept_) replaceFile(path_, {now}, 0600);
    kept_ = std::move(now);
    fault_.clear();
  } catch (const Problem& problem) {
    if (fault_ != problem.what()) application_.report(problem.what());
    fault_ = problem.what();
  }
  if (timer_) scheduler_.cancel(*timer_);
  timer_ = scheduler_.after(pace, [this] { keep(); });
}

}  // namespace vell::headless
