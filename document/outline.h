#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "document/row.h"
#include "document/source.h"

namespace vell::document {

/// A document: a tree of rows below a root row, and what is known about the whole.
///
///   Outline outline;
///   Row* milk = outline.create(RowType::task, Text("Milk"), currentTime());
///   outline.insert(*milk, outline.root());           // last child of the root
///   for (const Row* row = outline.root().firstChild(); row; row = nextInOrder(row, &outline.root())) …
///
/// These are the bare operations that readers use; none of them sets `modified`. Later changes go through an
/// Edit (headless/editing/edit.h), which records them for undo. Several threads may read at once while none
/// changes anything.
class Outline {
 public:
  /// The first row that is created gets the id `firstId`, at least 2, the next ones those that follow.
  explicit Outline(SessionId firstId = 2);
  Outline(const Outline&) = delete;
  Outline& operator=(const Outline&) = delete;

  /// The outline's own persistent id; empty until its file or the application gives one.
  const std::string& persistentId() const { return persistentId_; }
  void setPersistentId(std::string_view id) { persistentId_ = id; }
  /// Document metadata ("title", "author", …) in the file's order.
  const Attributes& frontMatter() const { return frontMatter_; }
  void setFrontMatter(Attributes frontMatter) { frontMatter_ = std::move(frontMatter); }
  Timestamp created() const { return created_; }
  /// The root's times as well.
  void setCreated(Timestamp time) { created_ = root_->created_ = root_->modified_ = time; }

  /// What the rows were read from; null where they were made here.
  const Source* source() const { return source_.get(); }
  Source* source() { return source_.get(); }
  void setSource(std::unique_ptr<Source> source) { source_ = std::move(source); }

  /// The root: type `root`, no text, session id 1, not counted as a row of the document.
  Row& root() { return *root_; }
  const Row& root() const { return *root_; }
  /// Rows in the tree, without the root.
  std::size_t rowCount() const { return rowCount_; }

  /// The row of that session id if it is in the tree now (the root is), else null.
  Row* find(SessionId id);
  const Row* find(SessionId id) const;
  /// The row in the tree that holds that persistent id, else null.
  Row* findPersistent(std::string_view id);
  const Row* findPersistent(std::string_view id) const;
  /// The changeable form of a row of this outline.
  Row& mutableRow(const Row& row) { return const_cast<Row&>(row); }

  /// Takes over everything that the other outline holds, and leaves it what this one held.
  void exchangeWith(Outline& other);
  /// Rows in the tree or outside it, without the root.
  std::size_t heldRows() const { return heldRows_; }
  /// The id of the next row that is created.
  SessionId nextId() const { return firstId_ + static_cast<SessionId>(rows_.size() - 1); }

  /// A new row outside the tree; `modified` is `created`. Throws std::length_error when 2^32 ids are used up.
  Row* create(RowType type, Text text, Timestamp created);
  /// Puts a row (with the subtree it has) under `parent`, before that child or last. The row must be outside
  /// the tree. Rows of it whose persistent id is in use lose it.
  void insert(Row& row, Row& parent, Row* before = nullptr);
  /// Takes a row with its subtree out of the tree. The rows stay alive until they are discarded.
  void remove(Row& row);
  /// Frees a row that is outside the tree, with its subtree; nothing where it was freed already.
  void discard(SessionId row);

  void setType(Row& row, RowType type);
  void setText(Row& row, Text text);
  void setAttributes(Row& row, Attributes attributes);
  /// "" removes it. The id must not be held by another row in the tree.
  void setPersistentId(Row& row, std::string_view id);
  void setTimes(Row& row, Timestamp created, Timestamp modified);

  /// Makes Row::order(), orderEnd(), index() and level() valid, and the list below. Does nothing if the
  /// structure has not changed since the last call.
  void number() const;
  /// All rows by their order, the root first; those below a row stand from its order() + 1 to its orderEnd().
  const std::vector<const Row*>& rowsInOrder() const { return rowsInOrder_; }
  /// Grows with every change of any kind.
  std::uint64_t revision() const { return revision_; }

 private:
  /// Makes the numbers for one reader at a time.
  struct Numbering {
    std::mutex mutex;
    std::atomic<bool> valid = false;

    Numbering() = default;
    Numbering(Numbering&&) noexcept {}
    Numbering& operator=(Numbering&&) noexcept {
      valid = false;
      return *this;
    }
  };

  Outline(Outline&&) = default;
  Outline& operator=(Outline&&) = default;
  std::unique_ptr<Row>& rowOf(SessionId id) { return rows_[id == rootId ? 0 : id - firstId_ + 1]; }
  void contentChanges(const Row& row);
  void enterTree(Row& top);
  void leaveTree(Row& top);
  void structureChanged();

  std::string persistentId_;
  Attributes frontMatter_;
  Timestamp created_ = 0;
  std::unique_ptr<Source> source_;
  static constexpr SessionId rootId = 1;
  SessionId firstId_;
  /// The root, then all that were created, null where freed; their ids follow one another from `firstId_`.
  std::vector<std::unique_ptr<Row>> rows_;
  Row* root_;
  std::size_t heldRows_ = 0;
  std::size_t rowCount_ = 0;
  std::unordered_map<std::string_view, Row*> persistentIds_;  ///< of the rows in the tree
  std::uint64_t revision_ = 0;
  mutable Numbering numbering_;
  mutable std::vector<const Row*> rowsInOrder_;
};

}  // namespace vell::document
