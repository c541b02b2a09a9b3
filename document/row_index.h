#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace vell::document {

class Row;

/// Finds rows by their persistent ids; looks at rows only where the hash agrees.
/// The rows must outlive the index, and their ids must not change while they are in it.
class RowIndex {
 public:
  /// Null where no row has it.
  Row* find(std::string_view id) const;
  /// False, with nothing changed, where a row with that id is in the index.
  bool insert(Row& row);
  /// The row must be in the index.
  void erase(const Row& row);

 private:
  struct Slot {
    Row* row = nullptr;
    std::size_t hash = 0;
  };

  std::size_t home(std::size_t hash) const { return hash & (slots_.size() - 1); }
  std::size_t after(std::size_t slot) const { return (slot + 1) & (slots_.size() - 1); }
  void grow();

  std::vector<Slot> slots_;  ///< a power of two, at most three quarters used; neighbours take what collides
  std::size_t used_ = 0;
};

}  // namespace vell::document
