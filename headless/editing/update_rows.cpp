#include "headless/editing/update_rows.h"

#include <unordered_map>

#include "headless/editing/problem.h"
#include "headless/editing/row_refs.h"

namespace vell::headless {
namespace {

/// ` (did you mean "…"?); use one of …`
std::string advice(const std::string& type) {
  std::vector<std::string_view> names;
  std::string list;
  for (const RowType known : document::rowTypes) {
    names.push_back(name(known));
    list.append(list.empty() ? "" : ", ").append(name(known));
  }
  return didYouMean(type, names) + "; use one of " + list;
}

/// Applies one update to rows, one at a time.
class RowUpdater {
 public:
  RowUpdater(Edit& edit, const RowUpdate& update) : edit_(edit), update_(update) {}

  std::vector<FieldError> apply(const Row& row) {
    errors_.clear();
    if (row.type() == RowType::root) {
      rejectForRoot();
    } else {
      setType(row);
      setText(row);
      setAttributes(row);
    }
    setPersistentId(row);
    return std::move(errors_);
  }

 private:
  void reject(std::string field, std::string message) {
    errors_.push_back({std::move(field), std::move(message)});
  }
  void rejectForRoot();
  void setType(const Row& row);
  void setText(const Row& row);
  void setAttributes(const Row& row);
  void setPersistentId(const Row& row);
  const char* textField() const { return update_.text ? "text" : update_.append ? "append" : "prepend"; }
  bool hasText() const { return update_.text || update_.append || update_.prepend; }

  Edit& edit_;
  const RowUpdate& update_;
  std::vector<FieldError> errors_;
};

void RowUpdater::rejectForRoot() {
  if (update_.type) reject("type", "The root has no other type");
  if (hasText()) reject(textField(), "The root has no text");
  if (!update_.attributes.empty()) reject("attributes", "The root has no attributes");
}

void RowUpdater::setType(const Row& row) {
  if (!update_.type) return;
  if (const auto type = document::rowType(*update_.type)) return edit_.setType(row, *type);
  reject("type", "There is no row type \"" + *update_.type + "\"" + advice(*update_.type));
}

void RowUpdater::setText(const Row& row) {
  if (!hasText()) return;
  if (!carriesText(row.type())) {
    return reject(textField(), "A row of type " + std::string(name(row.type())) + " has no text");
  }
  Text text = update_.text ? *update_.text : update_.prepend ? *update_.prepend : row.text();
  if (update_.append) text.append(*update_.append);
  if (update_.prepend) text.append(row.text());
  edit_.setText(row, std::move(text));
}

void RowUpdater::setAttributes(const Row& row) {
  if (update_.attributes.empty()) return;
  Attributes attributes = row.attributes();
  for (const auto& [key, value] : update_.attributes) {
    if (key.empty()) {
      reject("attributes", "An attribute's name cannot be empty");
    } else if (key == "done" && value) {
      attributes.setFirst(key, *value);  // where the formats write it as the task's mark
    } else if (value) {
      attributes.set(key, *value);
    } else {
      attributes.remove(key);
    }
  }
  edit_.setAttributes(row, std::move(attributes));
}

void RowUpdater::setPersistentId(const Row& row) {
  if (!update_.persistentId) return;
  std::string refusal = persistentIdFault(*update_.persistentId);
  if (row.type() == RowType::root) refusal = "The root goes by the outline's own id";
  if (!refusal.empty()) return reject("persistentId", std::move(refusal));
  edit_.setPersistentId(row, *update_.persistentId);
}

void check(const std::vector<const Row*>& rows, const RowUpdate& update) {
  if (update.text.has_value() + update.append.has_value() + update.prepend.has_value() > 1) {
    throw Problem("text, append and prepend exclude one another; give one of them");
  }
  if (update.persistentId && rows.size() != 1) {
    throw Problem("persistentId requires exactly one row, but there are " + std::to_string(rows.size()));
  }
}

}  // namespace

std::vector<UpdatedRow> updateRows(Edit& edit, const std::vector<const Row*>& rows, const RowUpdate& update) {
  check(rows, update);
  RowUpdater updater(edit, update);
  std::vector<UpdatedRow> updated;
  std::unordered_map<const Row*, std::size_t> entries;
  for (const Row* row : rows) {
    const auto [entry, isNew] = entries.emplace(row, updated.size());
    updated.push_back({row, isNew ? updater.apply(*row) : updated[entry->second].fieldErrors});
  }
  return updated;
}

}  // namespace vell::headless
