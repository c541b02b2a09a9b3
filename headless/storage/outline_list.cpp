#include "headless/storage/outline_list.h"

#include <algorithm>

#include "headless/storage/paths.h"

namespace vell::headless {

OpenOutline& OutlineList::addInFront(std::unique_ptr<OpenOutline> opened) {
  index(*opened);
  return **all_.insert(all_.begin(), std::move(opened));
}

void OutlineList::addBehind(std::unique_ptr<OpenOutline> opened) {
  index(*opened);
  all_.push_back(std::move(opened));
}

void OutlineList::index(OpenOutline& opened) {
  byId_[opened.persistentId()] = &opened;
  byEditor_[opened.editor().id()] = &opened;
  pathChanged(opened);
}

std::string OutlineList::pathChanged(OpenOutline& opened) {
  std::string former = forgetPaths(opened);
  const Paths paths{opened.storagePath(), resolvedPath(opened.storagePath())};
  byPath_[paths.standardised] = byResolvedPath_[paths.resolved] = &opened;
  paths_[&opened] = paths;
  return former;
}

std::string OutlineList::forgetPaths(const OpenOutline& opened) {
  auto paths = paths_.extract(&opened);
  if (paths.empty()) return {};
  byPath_.erase(paths.mapped().standardised);
  byResolvedPath_.erase(paths.mapped().resolved);
  return std::move(paths.mapped().standardised);
}

std::unique_ptr<OpenOutline> OutlineList::remove(const OpenOutline& opened) {
  forgetPaths(opened);
  byId_.erase(opened.persistentId());
  byEditor_.erase(opened.editor().id());
  const auto found =
      std::find_if(all_.begin(), all_.end(), [&](const auto& each) { return each.get() == &opened; });
  auto removed = std::move(*found);
  all_.erase(found);
  return removed;
}

bool OutlineList::bringToFront(const OpenOutline& opened) {
  if (all_.front().get() == &opened) return false;
  const auto found =
      std::find_if(all_.begin(), all_.end(), [&](const auto& each) { return each.get() == &opened; });
  std::rotate(all_.begin(), found, std::next(found));
  return true;
}

OpenOutline* OutlineList::findByPath(const std::string& path) const {
  const std::string standard = standardisedPath(path);
  if (OpenOutline* found = find(byPath_, standard)) return found;
  return find(byResolvedPath_, resolvedPath(standard));
}

OpenOutline* OutlineList::find(const Index& index, const std::string& key) {
  const auto found = index.find(key);
  return found != index.end() ? found->second : nullptr;
}

}  // namespace vell::headless
