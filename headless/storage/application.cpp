#include "headless/storage/application.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "headless/editing/problem.h"
#include "headless/editing/uuid.h"
#include "headless/storage/paths.h"

namespace vell::headless {
namespace {

constexpr std::chrono::milliseconds followPace{1000};

}  // namespace

Application::Application(Scheduler& scheduler, ApplicationSettings settings)
    : scheduler_(scheduler),
      settings_(std::move(settings)),
      container_(settings_.container),
      saver_(scheduler, {.report = settings_.report,
                         .reloaded =
                             [this](OpenOutline& opened) {
                               reportFaultyIds(opened);
                               notifyChanged(opened);
                             },
                         .moved = [this](OpenOutline& opened) { moved(opened); }}) {
  followFiles();
}

Application::~Application() { scheduler_.cancel(filesTimer_); }

OpenOutline& Application::open(const std::string& path) {
  const std::string standard = standardisedPath(path);
  if (OpenOutline* already = findByPath(standard)) {
    bringToFront(*already);
    return *already;
  }
  removeAbandoned(standard);
  auto opened = OpenOutline::read(standard);
  reportFaultyIds(*opened);
  return add(std::move(opened));
}

OpenOutline& Application::newUntitled() {
  auto opened = OpenOutline::create(container_.pathForUntitled());
  opened->setUntitled();
  opened->outline().setPersistentId(newUuid());
  saver_.flush(*opened);
  return add(std::move(opened));
}

void Application::reopenUntitled() {
  for (const std::string& path : container_.untitledFiles()) {
    try {
      removeAbandoned(path);
      auto opened = OpenOutline::read(path);
      opened->setUntitled();
      identify(*opened);
      outlines_.push_back(std::move(opened));
    } catch (const Problem& problem) {
      report(problem.what());
    }
  }
}

OpenOutline& Application::add(std::unique_ptr<OpenOutline> opened) {
  identify(*opened);
  outlines_.insert(outlines_.begin(), std::move(opened));
  notifyListChanged();
  return *outlines_.front();
}

/// Gives the outline its persistent id: the one in its file, else the one remembered for the file, else a new
/// one. A copy of an open file gets a new one, too.
void Application::identify(OpenOutline& opened) {
  std::string id = opened.persistentId();
  if (id.empty()) id = container_.identifiers().identifierOf(opened.storagePath());
  if (id.empty() || findByPersistentId(id) != nullptr) id = newUuid();
  if (id != opened.persistentId()) opened.identify(id);
  if (!opened.isUntitled()) remember(opened, opened.storagePath());
}

/// The index only helps to find files again: a failure is reported and nothing else.
void Application::remember(const OpenOutline& opened, const std::string& path) {
  try {
    container_.identifiers().put(opened.persistentId(), path);
  } catch (const std::system_error& error) {
    report(std::string("Cannot keep persistent ids: ") + error.what());
  }
}

/// Warns about persistent ids that read as another kind of reference, so that they cannot name their rows.
void Application::reportFaultyIds(const OpenOutline& opened) const {
  std::string first;
  std::size_t count = 0;
  const Row& root = opened.outline().root();
  for (const Row* row = nextInOrder(&root, &root); row != nullptr; row = nextInOrder(row, &root)) {
    std::string fault = row->persistentId().empty() ? "" : persistentIdFault(row->persistentId());
    if (!fault.empty() && ++count == 1) first = std::move(fault);
  }
  if (count == 0) return;
  report(opened.storagePath() + ": the persistent id " + first +
         (count > 1 ? ", and so would " + std::to_string(count - 1) + " more" : ""));
}

void Application::bringToFront(const OpenOutline& outline) {
  if (outlines_.front().get() == &outline) return;
  const auto found = std::find_if(outlines_.begin(), outlines_.end(),
                                  [&](const auto& candidate) { return candidate.get() == &outline; });
  std::rotate(outlines_.begin(), found, std::next(found));
  notifyListChanged();
}

void Application::saveAs(OpenOutline& outline, const std::string& path) {
  if (path.empty() || path.front() != '/')
    throw Problem("Cannot save as \"" + path + "\": the path is not absolute");
  const std::string standard = standardisedPath(path);
  if (findByPath(standard) != nullptr) throw Problem("File already exists: " + standard);
  const bool ours = isKeptByUs(outline);
  const std::string former = outline.storagePath();
  saver_.saveAs(outline, standard);
  if (ours) removeFile(former);
  moved(outline);
}

/// Whether the file stands in the container, where people do not look for their outlines.
bool Application::isKeptByUs(const OpenOutline& outline) const {
  return outline.isUntitled() || container_.holdsClosed(outline.storagePath());
}

void Application::close(OpenOutline& outline, bool discard) {
  if (!discard) saver_.flush(outline);
  if (!discard && outline.isDirty()) throw Problem(saver_.fault(outline) + ". The outline stays open");
  saver_.forget(outline);
  if (discard && isKeptByUs(outline)) removeFile(outline.storagePath());
  if (!discard && outline.isUntitled()) setAside(outline);
  if (listener_ != nullptr) listener_->outlineClosing(outline);
  const auto found = std::find_if(outlines_.begin(), outlines_.end(),
                                  [&](const auto& candidate) { return candidate.get() == &outline; });
  outlines_.erase(found);
  notifyListChanged();
}

/// Keeps an untitled outline that is closed: its persistent id opens it again.
void Application::setAside(const OpenOutline& outline) {
  if (outline.outline().rowCount() == 0) return removeFile(outline.storagePath());
  const std::string path = container_.pathForClosed();
  std::filesystem::rename(outline.storagePath(), path);
  remember(outline, path);
}

bool Application::saveAll() {
  bool all = true;
  for (const auto& outline : outlines_) {
    saver_.flush(*outline);
    all = (!outline->isDirty() || rescue(*outline)) && all;
  }
  return all;
}

bool Application::rescue(OpenOutline& outline) {
  try {
    const std::string path = container_.pathForRescued(fileName(outline.storagePath()));
    saver_.saveCopy(outline, path);
    report("What could not be saved as " + outline.storagePath() + " is in " + path);
    return true;
  } catch (const Problem& problem) {
    report(problem.what());
    return false;
  }
}

/// Looks regularly for what other programs wrote, for the sake of observers.
void Application::followFiles() {
  for (const auto& outline : outlines_) saver_.refresh(*outline);
  filesTimer_ = scheduler_.after(followPace, [this] { followFiles(); });
}

OpenOutline* Application::findByPath(const std::string& path) const {
  const std::string standard = standardisedPath(path);
  for (const auto& outline : outlines_)
    if (outline->storagePath() == standard) return outline.get();
  const std::string resolved = resolvedPath(standard);
  for (const auto& outline : outlines_)
    if (resolvedPath(outline->storagePath()) == resolved) return outline.get();
  return nullptr;
}

OpenOutline* Application::findByPersistentId(const std::string& id) const {
  for (const auto& outline : outlines_)
    if (outline->persistentId() == id) return outline.get();
  return nullptr;
}

OpenOutline& Application::outline(const std::optional<std::string>& persistentId) {
  if (!persistentId) return frontmost();
  if (OpenOutline* found = findByPersistentId(*persistentId)) return current(*found);
  throw Problem("No open outline has the persistent id \"" + *persistentId + "\"");
}

OpenOutline& Application::outlineOfEditor(const std::optional<std::string>& editorId) {
  if (!editorId) return frontmost();
  for (const auto& outline : outlines_)
    if (outline->editor().id() == *editorId) return current(*outline);
  throw Problem("No editor has the id \"" + *editorId + "\"");
}

OpenOutline& Application::frontmost() {
  if (outlines_.empty()) throw Problem("No outline is open");
  return current(*outlines_.front());
}

OpenOutline& Application::current(OpenOutline& opened) {
  saver_.refresh(opened);
  return opened;
}

void Application::moved(OpenOutline& opened) {
  remember(opened, opened.storagePath());
  notifyListChanged();
}

Transaction Application::begin(OpenOutline& opened) {
  return {opened.outline(), opened.editor(), opened.history(), [this, &opened] { changed(opened); }};
}

void Application::changed(OpenOutline& opened) {
  saver_.changed(opened);
  notifyChanged(opened);
}

void Application::notifyChanged(OpenOutline& opened) {
  if (listener_ != nullptr) listener_->outlineChanged(opened);
}

void Application::notifyListChanged() {
  if (listener_ != nullptr) listener_->listChanged();
}

}  // namespace vell::headless
