#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "headless/editing/editor.h"

namespace vell::headless {

/// The rows that the outline path selects, in document order. The editor answers the functions that ask for
/// focus, folds and selection. Throws Problem for a path that is not valid, selects a value or takes too
/// long.
std::vector<const Row*> selectRows(const Outline& outline, const Editor& editor, std::string_view path);

/// Why no row can have that persistent id: it would read as another kind of reference. Empty if a row can.
std::string persistentIdFault(std::string_view id);

/// Finds the rows that a client calls by session id, persistent id, outline path, "@selection" or "@focused".
/// Throws Problem for a reference that names nothing.
class RowRefs {
 public:
  /// `name` is what messages call the outline.
  RowRefs(const Outline& outline, const Editor& editor, std::string name)
      : outline_(outline), editor_(editor), name_(std::move(name)) {}

  /// The rows of all references in their order; a path may add several or none.
  std::vector<const Row*> rows(const std::vector<std::string>& refs) const;
  /// The row of one reference; of a path, the first that it selects.
  const Row& row(const std::string& ref) const;

 private:
  const Row& named(const std::string& ref) const;

  const Outline& outline_;
  const Editor& editor_;
  std::string name_;
};

}  // namespace vell::headless
