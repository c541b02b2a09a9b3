#include "headless/storage/application.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "headless/access.h"
#include "headless/editing/problem.h"
#include "headless/editing/uuid.h"
#include "headless/storage/paths.h"

namespace vell::headless {
namespace {

constexpr std::chrono::milliseconds followPace{1000};
constexpr std::chrono::milliseconds replacingLimit{700};
constexpr std::size_t mostRefusals = 100;

}  // namespace

Application::Application(Scheduler& scheduler, ApplicationSettings settings)
    : scheduler_(scheduler),
      settings_(std::move(settings)),
      container_(settings_.container),
      knownFiles_(settings_.container, settings_.report),
      saver_(scheduler, container_,
             {.report = settings_.report,
              .reloaded =
                  [this](OpenOutline& opened) {
                    knownFiles_.remember(opened);
                    reportIdFault(opened);
                    notifyChanged(opened);
                  },
              .moved = [this](OpenOutline& opened) { moved(opened); },
              .saved = [this](OpenOutline& opened) { knownFiles_.remember(opened); },
              .gone = [this](OpenOutline& opened) { gone(opened); }}),
      folders_(scheduler, {.found = [this](std::vector<FoundFile> files) { takeNew(std::move(files)); },
                           .fault = [this](const std::string& fault) { report(fault); }}) {
  rescueLeftovers();
  followFiles();
}

Application::~Application() { scheduler_.cancel(filesTimer_); }

OpenOutline& Application::open(const std::string& path) {
  OpenOutline& opened = openBehind(path);
  bringToFront(opened);
  return opened;
}

OpenOutline& Application::openBehind(const std::string& path) {
  const std::string standard = standardisedPath(path);
  if (OpenOutline* already = findOpen(standard)) return *already;
  auto opened = read(standard);
  if (OpenOutline* already = findByPath(standard)) return *already;  // somebody else was faster
  reportIdFault(*opened);
  return addBehind(std::move(opened));
}

OpenOutline* Application::findOpen(const std::string& path) {
  OpenOutline* already = findByPath(path);
  return already != nullptr ? already : findRenamed(path);
}

std::size_t Application::serveFolder(const std::string& path) {
  std::vector<FoundFile> files;
  // Files that are renamed are found by their resolved paths.
  beside([&] { files = folders_.add(resolvedPath(standardisedPath(path))); });
  for (FoundFile& file : files) take(std::move(file));
  const auto held = [this](const auto& each) { return folders_.hold(each->storagePath()); };
  return static_cast<std::size_t>(std::count_if(outlines().begin(), outlines().end(), held));
}

/// Whether that opened an outline.
bool Application::take(FoundFile file) {
  if (findOpen(file.path) != nullptr) return false;
  if (!file.outline) {
    log(file.fault);
    return false;
  }
  reportIdFault(*file.outline);
  addBehind(std::move(file.outline));
  return true;
}

void Application::takeNew(std::vector<FoundFile> files) {
  for (FoundFile& file : files) {
    const std::string path = file.path;
    if (take(std::move(file))) log("Opened " + path + ", which is new");
  }
}

/// Other programs replace files by removing them first.
void Application::gone(const OpenOutline& opened) {
  const std::string& path = opened.storagePath();
  if (!folders_.cover(path))
    return report(path + " is gone. Its outline stays open, and its next change writes the file again");
  scheduler_.after(replacingLimit, [this, path] { closeGone(path); });
}

void Application::closeGone(const std::string& path) {
  OpenOutline* opened = findByPath(path);
  if (opened == nullptr || opened->isDirty() || stampOf(path) != FileStamp()) return;
  if (opened->users()->count() > 0) return gone(*opened);
  folders_.forget(path);
  close(*opened, false);
  log("Closed " + path + ": the file is gone");
}

/// The open outline whose file has had that path since a moment ago; null where there is none.
OpenOutline* Application::findRenamed(const std::string& path) {
  const auto formerPath = knownFiles_.formerPath(path);
  OpenOutline* former = formerPath ? findByPath(*formerPath) : nullptr;
  if (former == nullptr) return nullptr;
  saver_.follow(*former, path);
  return findByPath(path);
}

std::unique_ptr<OpenOutline> Application::read(const std::string& path) {
  removeAbandonedBeside(path);
  refusals_.erase(path);
  try {
    std::unique_ptr<OpenOutline> opened;
    beside([&] { opened = OpenOutline::read(path); });
    return opened;
  } catch (const UnreadableFile& failure) {
    if (refusals_.size() >= mostRefusals) refusals_.clear();
    refusals_[path] = {stampOf(path), failure.reason()};
    throw;
  }
}

/// The first time that a file of its folder is opened: later there is nothing abandoned.
void Application::removeAbandonedBeside(const std::string& path) {
  std::string folder = folderOf(resolvedPath(path));
  if (tidied_.contains(folder)) return;
  removeAbandoned(folder);
  tidied_.insert(std::move(folder));
}

std::optional<std::string> Application::refusal(const std::string& path) const {
  const auto found = refusals_.find(standardisedPath(path));
  if (found == refusals_.end() || found->second.stamp != stampOf(found->first)) return std::nullopt;
  return found->second.reason;
}

OpenOutline& Application::newUntitled(const formats::Format& format) {
  const std::string extension = "." + std::string(format.extensions.front());
  auto opened = OpenOutline::create(container_.pathForUntitled(extension), format);
  opened->setUntitled();
  opened->outline().setPersistentId(newUuid());
  Saver::create(*opened);
  return add(std::move(opened));
}

void Application::reopenUntitled() {
  for (const std::string& path : container_.untitledFiles()) {
    try {
      auto opened = read(path);
      opened->setUntitled();
      addBehind(std::move(opened));
    } catch (const Problem& problem) {
      report(problem.what());
    }
  }
}

OpenOutline& Application::addBehind(std::unique_ptr<OpenOutline> opened) {
  identify(*opened);
  OpenOutline& added = *opened;
  outlines_.addBehind(std::move(opened));
  notifyListChanged();
  return added;
}

OpenOutline& Application::add(std::unique_ptr<OpenOutline> opened) {
  identify(*opened);
  OpenOutline& added = outlines_.addInFront(std::move(opened));
  notifyListChanged();
  return added;
}

/// Gives the outline its persistent id: the one in its file, else the one remembered for the file, else a new
/// one. A copy of an open file gets a new one, too.
void Application::identify(OpenOutline& opened) {
  std::string id = opened.persistentId();
  if (id.empty()) id = knownFiles_.idOf(opened);
  if (id.empty() || findByPersistentId(id) != nullptr) id = newUuid();
  if (id != opened.persistentId()) opened.identify(id);
  knownFiles_.remember(opened);
}

void Application::reportIdFault(const OpenOutline& opened) const {
  if (!opened.idFault().empty()) report(opened.storagePath() + ": " + opened.idFault());
}

void Application::bringToFront(const OpenOutline& outline) {
  if (outlines_.bringToFront(outline)) notifyListChanged();
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
  if (discard && isKeptByUs(outline)) {
    removeFile(outline.storagePath());
    knownFiles_.forget(outline.storagePath());
  }
  if (!discard && outline.isUntitled()) setAside(outline);
  if (listener_ != nullptr) listener_->outlineClosing(outline);
  saver_.free(outlines_.remove(outline));
  notifyListChanged();
}

/// Keeps an untitled outline that is closed: its persistent id opens it again.
void Application::setAside(OpenOutline& outline) {
  const std::string former = outline.storagePath();
  if (outline.outline().rowCount() == 0) {
    removeFile(former);
  } else {
    const std::string path = container_.pathForClosed(std::filesystem::path(former).extension().string());
    if (std::rename(former.c_str(), path.c_str()) != 0) throw systemProblem("Cannot move " + former);
    outline.rename(path, stampOf(path));
    knownFiles_.remember(outline);
  }
  knownFiles_.forget(former);
}

bool Application::saveAll() {
  bool all = true;
  for (const auto& outline : outlines()) {
    saver_.flush(*outline);
    all = (!outline->isDirty() || rescue(*outline)) && all;
  }
  return all;
}

bool Application::rescue(const OpenOutline& outline) {
  try {
    const std::string path = container_.rescue(saver_.spare(outline));
    report("What could not be saved as " + outline.storagePath() + " is in " + path);
    return true;
  } catch (const Problem& problem) {
    report(problem.what());
    return false;
  }
}

/// What an earlier run could not save, or not to the end.
void Application::rescueLeftovers() {
  for (const std::string& unsaved : container_.unsavedFiles()) {
    try {
      report("Vell ended before it had saved everything: see " + container_.rescue(unsaved));
    } catch (const Problem& problem) {
      report(problem.what());
    }
  }
}

/// Looks regularly for what other programs wrote, for the sake of observers.
void Application::followFiles() {
  try {
    for (const auto& outline : outlines()) refresh(*outline);
  } catch (const std::exception& failure) {
    report(std::string("Cannot look for changed files: ") + failure.what());
  }
  filesTimer_ = scheduler_.after(followPace, [this] { followFiles(); });
}

OpenOutline& Application::outline(const std::optional<std::string>& persistentId) {
  if (!persistentId) return frontmost();
  if (OpenOutline* found = findByPersistentId(*persistentId)) return *found;
  throw Problem("No open outline has the persistent id \"" + *persistentId + "\"");
}

OpenOutline& Application::outlineOfEditor(const std::optional<std::string>& editorId) {
  if (!editorId) return frontmost();
  if (OpenOutline* found = findByEditor(*editorId)) return *found;
  throw Problem("No editor has the id \"" + *editorId + "\"");
}

OpenOutline& Application::frontmost() {
  if (outlines().empty()) throw Problem("No outline is open");
  return *outlines().front();
}

void Application::refresh(OpenOutline& opened) {
  if (opened.users()->count() == 0) saver_.refresh(opened);
}

void Application::moved(OpenOutline& opened) {
  const std::string former = outlines_.pathChanged(opened);
  knownFiles_.remember(opened);
  if (former != opened.storagePath()) knownFiles_.forget(former);
  notifyListChanged();
}

Transaction Application::begin(OpenOutline& opened, History::Group group) {
  return {opened.outline(), opened.editor(), opened.history(), [this, &opened] { changed(opened); }, group};
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
