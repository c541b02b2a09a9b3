#include <string_view>

#include "headless/commands/actions.h"

namespace vell::headless::actions {
namespace {

/// The same text with every run's style passed through `restyle`.
template <typename Restyle>
Text restyled(const Text& text, Restyle restyle) {
  Text result;
  text.forEachRun([&](std::string_view string, Attributes attrs) {
    restyle(attrs);
    result.append(string, std::move(attrs));
  });
  return result;
}

bool isAll(const Text& text, std::string_view key) {
  bool all = true;
  text.forEachRun(
      [&](std::string_view, const Attributes& attrs) { all = all && attrs.find(key) != nullptr; });
  return all;
}

template <typename Restyle>
bool restyleSelected(Transaction& transaction, Restyle restyle) {
  bool changed = false;
  for (const Row* row : transaction.editor().selectedRows()) {
    Text text = restyled(row->text(), restyle);
    changed |= !(text == row->text());
    transaction.edit().setText(*row, std::move(text));
  }
  return changed;
}

/// Off where all of the selected text has it, else on.
bool toggle(Transaction& transaction, std::string_view key) {
  bool all = true;
  for (const Row* row : transaction.editor().selectedRows()) all = all && isAll(row->text(), key);
  return restyleSelected(transaction, [&](Attributes& attrs) {
    if (all) {
      attrs.remove(key);
    } else if (attrs.find(key) == nullptr) {
      attrs.set(key, "");
    }
  });
}

}  // namespace

bool setSelectedType(Transaction& transaction, RowType type) {
  bool changed = false;
  for (const Row* row : transaction.editor().selectedRows()) {
    changed |= row->type() != type;
    transaction.edit().setType(*row, type);
  }
  return changed;
}

bool toggleStrong(Transaction& transaction) { return toggle(transaction, "strong"); }
bool toggleEm(Transaction& transaction) { return toggle(transaction, "em"); }
bool toggleCode(Transaction& transaction) { return toggle(transaction, "code"); }
bool toggleStrikethrough(Transaction& transaction) { return toggle(transaction, "s"); }
bool toggleMark(Transaction& transaction) { return toggle(transaction, "mark"); }

bool clearStyles(Transaction& transaction) {
  return restyleSelected(transaction, [](Attributes& attrs) { attrs = {}; });
}

}  // namespace vell::headless::actions
