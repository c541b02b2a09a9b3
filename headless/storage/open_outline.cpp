#include "headless/storage/open_outline.h"

#include <algorithm>
#include <filesystem>

#include "headless/editing/problem.h"
#include "headless/storage/paths.h"

namespace vell::headless {
namespace {

std::string readableExtensions() {
  std::string list;
  for (const formats::Format& format : formats::formats()) {
    if (format.read == nullptr) continue;
    for (const std::string_view extension : format.extensions)
      list.append(list.empty() ? "." : ", .").append(extension);
  }
  return list;
}

void decode(const formats::Format& format, FileContent content, const std::string& path, Outline& outline) {
  constexpr std::int64_t second = 1'000'000'000;
  try {
    formats::readFile(format, std::move(content.bytes), {content.stamp.modified / second * 1000}, outline);
  } catch (const formats::FormatError& error) {
    throw UnreadableFile(path, error.what());
  }
}

/// What the first bytes of a text say about its format.
const formats::Format& formatOfContent(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  if (text.starts_with("vell 1\n") || text.starts_with("vell 1\r")) return *formats::formatNamed("vell");
  if (text.starts_with("---\nid: ") && text.find("\n---\n") != std::string_view::npos)
    return *formats::formatNamed("markdown");
  text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
  if (text.starts_with("<?xml") || text.starts_with("<opml")) return *formats::formatNamed("opml");
  return *formats::formatNamed(text.starts_with('{') ? "json" : "txt");
}

const formats::Format& formatOf(const std::string& path, const std::string& bytes) {
  const formats::Format& told = formatOfContent(bytes);
  const formats::Format* named = formats::formatForFile(path);
  if (told.name == "vell") return told;
  if (named != nullptr && named->read != nullptr) return *named;
  if (bytes.find('\0') != std::string::npos) throw UnreadableFile(path, "it is not a text");
  return told;
}

}  // namespace

const formats::Format& fileFormat(const std::string& path) {
  const formats::Format* format = formats::formatForFile(path);
  if (format != nullptr && format->read != nullptr) return *format;
  throw Problem("Cannot keep an outline in " + path + ": outlines are files named " + readableExtensions());
}

std::unique_ptr<OpenOutline> OpenOutline::read(const std::string& path) {
  FileContent content = readFile(path);
  const formats::Format& format = formatOf(path, content.bytes);
  auto outline = std::make_unique<Outline>();
  const FileStamp stamp = content.stamp;
  const std::size_t hash = hashOf(content.bytes);
  decode(format, std::move(content), path, *outline);
  return std::make_unique<OpenOutline>(std::move(outline), format, path, stamp, hash);
}

std::unique_ptr<OpenOutline> OpenOutline::create(const std::string& path, const formats::Format& format) {
  auto outline = std::make_unique<Outline>();
  outline->setCreated(document::currentTime());
  return std::make_unique<OpenOutline>(std::move(outline), format, path, FileStamp(), 0);
}

OpenOutline::OpenOutline(std::unique_ptr<Outline> outline, const formats::Format& format, std::string path,
                         FileStamp stamp, std::size_t contentHash)
    : outline_(std::move(outline)),
      format_(&format),
      path_(std::move(path)),
      stamp_(stamp),
      savedRevision_(outline_->revision()),
      contentHash_(contentHash),
      editor_(*outline_),
      history_(*outline_, editor_) {}

std::string OpenOutline::displayName() const {
  return untitled_ ? std::filesystem::path(path_).stem().string() : fileName(path_);
}

void OpenOutline::markSaved(std::uint64_t revision, FileStamp stamp, std::size_t contentHash) {
  savedRevision_ = revision;
  stamp_ = stamp;
  contentHash_ = contentHash;
}

void OpenOutline::rename(const std::string& path, FileStamp stamp) {
  path_ = path;
  if (stamp.hasContentOf(stamp_)) stamp_ = stamp;
}

bool OpenOutline::acceptTouch() {
  try {
    const FileContent content = readFile(path_);
    if (hashOf(content.bytes) != contentHash_) return false;
    stamp_ = content.stamp;
    return true;
  } catch (const Problem&) {
    return false;
  }
}

void OpenOutline::identify(const std::string& persistentId) {
  const bool dirty = isDirty();
  outline_->setPersistentId(persistentId);
  if (!dirty) savedRevision_ = outline_->revision();
}

void OpenOutline::moveTo(const std::string& path, const formats::Format& format, FileStamp stamp,
                         std::size_t contentHash) {
  path_ = path;
  format_ = &format;
  untitled_ = false;
  markSaved(outline_->revision(), stamp, contentHash);
}

bool OpenOutline::reload() {
  try {
    FileContent content = readFile(path_);
    const FileStamp stamp = content.stamp;
    const std::size_t hash = hashOf(content.bytes);
    Outline fresh(outline_->nextId());
    decode(*format_, std::move(content), path_, fresh);
    fresh.setPersistentId(persistentId());
    history_.clear();
    editor_.reset();
    outline_->replaceWith(std::move(fresh));
    markSaved(outline_->revision(), stamp, hash);
    return true;
  } catch (const Problem&) {
    return false;
  }
}

}  // namespace vell::headless
