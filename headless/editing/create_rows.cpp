#include "headless/editing/create_rows.h"

#include <utility>

#include "formats/format.h"
#include "headless/access.h"
#include "headless/editing/problem.h"
#include "headless/editing/row_refs.h"

namespace vell::headless {
namespace {

std::string_view withoutLineEnd(std::string_view line) {
  if (line.ends_with('\n')) line.remove_suffix(1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

void refuseIds(const Outline& outline) {
  for (const Row* row = &outline.root(); row; row = nextInOrder(row, &outline.root())) {
    if (row->persistentId().empty()) continue;
    if (const std::string fault = persistentIdFault(row->persistentId()); !fault.empty())
      throw Problem("The persistent id " + fault);
  }
}

}  // namespace

std::vector<const Row*> createRows(Edit& edit, std::string_view markdown, const Destination& destination) {
  Outline read;
  formats::readMarkdownRows(markdown, {edit.now(), throwIfAbandoned}, read);
  refuseIds(read);
  std::vector<const Row*> created;
  created.reserve(read.rowCount());
  for (const Row* row = read.root().firstChild(); row; row = row->next()) {
    throwIfAbandoned();
    Row& copy = copyRow(edit, *row, PersistentIds::taken, created);
    edit.insert(copy, *destination.parent, destination.before);
  }
  return created;
}

const Row& createRow(Edit& edit, std::string_view markdown, const Destination& destination) {
  const std::string_view line = withoutLineEnd(markdown);
  if (line.find_first_of("\r\n") != std::string_view::npos) {
    throw Problem(
        "The markdown of one row must be a single line; use vell_create_rows (vell create rows) for several "
        "rows");
  }
  const std::vector<const Row*> created = createRows(edit, line, destination);
  if (!created.empty()) return *created.front();
  Row& blank = edit.make({});
  edit.insert(blank, *destination.parent, destination.before);
  return blank;
}

Row& copyRow(Edit& edit, const Row& top, PersistentIds ids, std::vector<const Row*>& made) {
  std::vector<std::pair<const Row*, Row*>>
      copies;  // of the row at hand and those above it: no recursion, rows may be deep
  Row* first = nullptr;
  for (const Row* row = &top; row != nullptr; row = nextInOrder(row, &top)) {
    const std::string persistentId = ids == PersistentIds::taken ? row->persistentId() : "";
    Row& copy = edit.make({row->type(), row->text(), row->attributes(), persistentId});
    made.push_back(&copy);
    while (!copies.empty() && copies.back().first != row->parent()) copies.pop_back();
    if (copies.empty()) {
      first = &copy;
    } else {
      edit.attach(copy, *copies.back().second);
    }
    copies.emplace_back(row, &copy);
  }
  return *first;
}

}  // namespace vell::headless
