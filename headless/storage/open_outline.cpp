#include "headless/storage/open_outline.h"

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
  try {
    formats::readFile(format, std::move(content.bytes),
                      {static_cast<Timestamp>(content.stamp.seconds) * 1000}, outline);
  } catch (const formats::FormatError& error) {
    throw Problem("Cannot open " + path + ": " + error.what());
  }
}

}  // namespace

const formats::Format& fileFormat(const std::string& path) {
  const formats::Format* format = formats::formatForFile(path);
  if (format != nullptr && format->read != nullptr) return *format;
  throw Problem("Cannot keep an outline in " + path + ": outlines are files named " + readableExtensions());
}

std::unique_ptr<OpenOutline> OpenOutline::read(const std::string& path) {
  FileContent content = readFile(path);
  const formats::Format& format = fileFormat(path);
  auto outline = std::make_unique<Outline>();
  const FileStamp stamp = content.stamp;
  const std::size_t hash = hashOf(content.bytes);
  decode(format, std::move(content), path, *outline);
  return std::make_unique<OpenOutline>(std::move(outline), format, path, stamp, hash);
}

std::unique_ptr<OpenOutline> OpenOutline::create(const std::string& path) {
  auto outline = std::make_unique<Outline>();
  outline->setCreated(document::currentTime());
  return std::make_unique<OpenOutline>(std::move(outline), fileFormat(path), path, FileStamp(), 0);
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

void OpenOutline::moveTo(const std::string& path, FileStamp stamp, std::size_t contentHash) {
  path_ = path;
  format_ = &fileFormat(path);
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
