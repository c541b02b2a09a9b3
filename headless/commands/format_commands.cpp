#include <string_view>

#include "headless/commands/commands.h"

namespace vell::headless {
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

template <RowType type>
bool format(Transaction& transaction) {
  bool changed = false;
  for (const Row* row : transaction.editor().selectedRows()) {
    changed |= row->type() != type;
    transaction.edit().setType(*row, type);
  }
  return changed;
}

bool clearStyles(Transaction& transaction) {
  return restyleSelected(transaction, [](Attributes& attrs) { attrs = {}; });
}

}  // namespace

std::vector<Command> formatCommands() {
  // clang-format off
  return {
      {"format:body",                 format<RowType::body>},
      {"format:clear-styles",         clearStyles},
      {"format:code",                 format<RowType::code>},
      {"format:heading",              format<RowType::heading>},
      {"format:hr",                   format<RowType::hr>},
      {"format:note",                 format<RowType::note>},
      {"format:ordered",              format<RowType::ordered>},
      {"format:quote",                format<RowType::quote>},
      {"format:task",                 format<RowType::task>},
      {"format:toggle-bold",          [](Transaction& t) { return toggle(t, "strong"); }},
      {"format:toggle-highlight",     [](Transaction& t) { return toggle(t, "mark"); }},
      {"format:toggle-inline-code",   [](Transaction& t) { return toggle(t, "code"); }},
      {"format:toggle-italic",        [](Transaction& t) { return toggle(t, "em"); }},
      {"format:toggle-strikethrough", [](Transaction& t) { return toggle(t, "s"); }},
      {"format:unordered",            format<RowType::unordered>},
  };
  // clang-format on
}

}  // namespace vell::headless
