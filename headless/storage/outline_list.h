#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "headless/storage/open_outline.h"

namespace vell::headless {

/// The open outlines, frontmost first, found by what names them.
class OutlineList {
 public:
  using Outlines = std::vector<std::unique_ptr<OpenOutline>>;

  const Outlines& all() const { return all_; }

  OpenOutline& addInFront(std::unique_ptr<OpenOutline> opened);
  void addBehind(std::unique_ptr<OpenOutline> opened);
  std::unique_ptr<OpenOutline> remove(const OpenOutline& opened);
  /// False if it is the frontmost one already.
  bool bringToFront(const OpenOutline& opened);
  /// To be called when the outline's path has changed; returns the former one.
  std::string pathChanged(OpenOutline& opened);

  // Null where none is open.

  /// Links count as what they lead to.
  OpenOutline* findByPath(const std::string& path) const;
  OpenOutline* findByPersistentId(const std::string& id) const { return find(byId_, id); }
  OpenOutline* findByEditor(const std::string& id) const { return find(byEditor_, id); }

 private:
  using Index = std::unordered_map<std::string, OpenOutline*>;
  struct Paths {
    std::string standardised;
    std::string resolved;
  };

  static OpenOutline* find(const Index& index, const std::string& key);
  void index(OpenOutline& opened);
  std::string forgetPaths(const OpenOutline& opened);

  Outlines all_;
  Index byPath_;
  Index byResolvedPath_;
  Index byId_;
  Index byEditor_;
  std::unordered_map<const OpenOutline*, Paths> paths_;
};

}  // namespace vell::headless
