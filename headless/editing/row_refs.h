#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "headless/storage/open_outline.h"

namespace vell::headless {

/// Answers row references that begin with "/". Implemented where paths are evaluated.
class PathEvaluator {
 public:
  virtual ~PathEvaluator() = default;
  /// The rows that the path selects, in document order. Throws Problem for a path that is not valid or
  /// selects a value instead of rows.
  virtual std::vector<const Row*> rows(const OpenOutline& opened, std::string_view path) const = 0;
};

/// Finds the rows that a client calls by session id, persistent id, path, "@selection" or "@focused". Throws
/// Problem for what names nothing.
class RowRefs {
 public:
  RowRefs(const OpenOutline& opened, const PathEvaluator& paths) : opened_(opened), paths_(paths) {}

  /// The rows of all references in their order; a path may add several or none.
  std::vector<const Row*> rows(const std::vector<std::string>& refs) const;
  /// A path must select something; its first row is taken.
  const Row& row(const std::string& ref) const;

 private:
  const Row& named(const std::string& ref) const;

  const OpenOutline& opened_;
  const PathEvaluator& paths_;
};

}  // namespace vell::headless
