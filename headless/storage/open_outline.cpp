#include "headless/storage/open_outline.h"

#include <algorithm>
#include <filesystem>

#include "headless/access.h"
#include "headless/editing/problem.h"
#include "headless/storage/paths.h"
#include "text/utf8.h"

namespace vell::headless {
namespace {

constexpr SessionId firstSessionId = 2;

std::string readableExtensions() {
  std::string list;
  for (const formats::Format& format : formats::formats()) {
    if (format.read == nullptr) continue;
    for (const std::string_view extension : format.extensions)
      list.append(list.empty() ? "." : ", .").append(extension);
  }
  return list;
}

/// Says which persistent ids read as another kind of reference, so that they cannot name their rows.
std::string idFaultIn(const Outline& outline) {
  std::string first;
  std::size_t count = 0;
  const Row& root = outline.root();
  for (const Row* row = nextInOrder(&root, &root); row != nullptr; row = nextInOrder(row, &root)) {
    std::string fault = row->persistentId().empty() ? "" : persistentIdFault(row->persistentId());
    if (!fault.empty() && ++count == 1) first = std::move(fault);
  }
  if (count == 0) return {};
  return "the persistent id " + first +
         (count > 1 ? ", and so would " + std::to_string(count - 1) + " more" : "");
}

FileRows decode(const formats::Format& format, FileContent content, const std::string& path,
                SessionId firstId) {
  constexpr std::int64_t second = 1'000'000'000;
  FileRows rows{std::make_unique<Outline>(firstId), &format, content.stamp, hashOf({content.bytes}), {}};
  try {
    const formats::ReadOptions options{rows.stamp.modified / second * 1000, throwIfAbandoned};
    formats::readFile(format, std::move(content.bytes), options, *rows.outline);
  } catch (const formats::FormatError& error) {
    throw UnreadableFile(path, error.what());
  }
  rows.idFault = idFaultIn(*rows.outline);
  return rows;
}

/// What the first bytes of a text say about its format.
const formats::Format& formatOfContent(std::string_view text) {
  if (text.starts_with(text::byteOrderMark)) text.remove_prefix(text::byteOrderMark.size());
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
  return std::make_unique<OpenOutline>(decode(format, std::move(content), path, firstSessionId), path);
}

std::unique_ptr<OpenOutline> OpenOutline::create(const std::string& path, const formats::Format& format) {
  FileRows rows{std::make_unique<Outline>(), &format, FileStamp(), 0, {}};
  rows.outline->setCreated(document::currentTime());
  return std::make_unique<OpenOutline>(std::move(rows), path);
}

OpenOutline::OpenOutline(FileRows rows, std::string path)
    : outline_(std::move(rows.outline)),
      format_(rows.format),
      path_(std::move(path)),
      stamp_(rows.stamp),
      savedRevision_(outline_->revision()),
      contentHash_(rows.contentHash),
      idFault_(std::move(rows.idFault)),
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

std::shared_ptr<void> OpenOutline::takeOver(FileRows rows) {
  rows.outline->setPersistentId(persistentId());
  outline_->exchangeWith(*rows.outline);
  editor_.reset();
  idFault_ = std::move(rows.idFault);
  markSaved(outline_->revision(), rows.stamp, rows.contentHash);
  return std::make_shared<std::pair<decltype(history_.clear()), std::unique_ptr<Outline>>>(
      history_.clear(), std::move(rows.outline));
}

Rereading::Rereading(const OpenOutline& opened)
    : path_(opened.storagePath()),
      format_(opened.format()),
      firstId_(opened.outline().nextId()),
      contentHash_(opened.contentHash_) {}

void Rereading::run() {
  try {
    FileContent content = readFile(path_);
    stamp_ = content.stamp;
    same_ = hashOf({content.bytes}) == contentHash_;
    if (!same_) rows_ = decode(format_, std::move(content), path_, firstId_);
  } catch (const std::exception&) {
    // The file cannot be read: there are no rows.
  }
}

}  // namespace vell::headless
