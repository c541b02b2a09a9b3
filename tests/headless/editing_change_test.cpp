#include <gtest/gtest.h>

#include <functional>

#include "formats/inline_markdown.h"
#include "headless/editing/arrange_rows.h"
#include "headless/editing/create_rows.h"
#include "headless/editing/problem.h"
#include "headless/editing/update_rows.h"
#include "headless/server/answers.h"
#include "tests/formats/support.h"

namespace vell::headless {
namespace {

constexpr Timestamp changedAt = 1'790'000'000'000 + 5000;

/// An outline with an edit under way; rows are called by their persistent ids.
class Bench {
 public:
  explicit Bench(std::string_view rows) { formats::readAs("vell", rows, outline); }

  const Row* operator[](std::string_view id) const {
    return id == "root" ? &outline.root() : outline.findPersistent(id);
  }
  std::vector<const Row*> rows(std::initializer_list<std::string_view> ids) const {
    std::vector<const Row*> found;
    for (const std::string_view id : ids) found.push_back((*this)[id]);
    return found;
  }
  std::string text() const { return formats::writeAll("vell", outline, true); }

  Outline outline;
  Edit edit{outline, changedAt};
};

struct ChangeCase {
  const char* before;
  std::function<void(Bench&)> change;
  const char* after;    ///< null: the change is refused
  const char* problem;  ///< null: it is made
};

constexpr const char* tree = "a {#a}\n\tb {#b}\n\tc {#c}\n\t\td {#d}\n\te {#e}\nf {#f}\n";

DestinationRequest below(const Row* parent, const char* position = nullptr) {
  DestinationRequest request;
  request.parent = parent;
  if (position) request.position = position;
  return request;
}
DestinationRequest before(const Row* row) { return {nullptr, std::nullopt, row, nullptr}; }
DestinationRequest after(const Row* row) { return {nullptr, std::nullopt, nullptr, row}; }

void create(Bench& bench, const char* markdown, const DestinationRequest& request = {}) {
  createRow(bench.edit, markdown, resolve(bench.outline, request));
}
void createMany(Bench& bench, const char* markdown, const DestinationRequest& request = {}) {
  createRows(bench.edit, markdown, resolve(bench.outline, request));
}

const ChangeCase createCases[] = {
    {"", [](Bench& b) { create(b, ""); }, "{created=2026-09-21T14:13:25Z}\n", nullptr},
    {"", [](Bench& b) { create(b, " \t\n"); }, "{created=2026-09-21T14:13:25Z}\n", nullptr},
    {"", [](Bench& b) { create(b, "## **x** {#p type=task color=red}\r\n"); },
     "[ ] **x** {#p color=red created=2026-09-21T14:13:25Z}\n", nullptr},
    {"", [](Bench& b) { create(b, "## x"); }, "# x {created=2026-09-21T14:13:25Z}\n", nullptr},
    {"", [](Bench& b) { create(b, "a\nb"); }, nullptr,
     "The markdown of one row must be a single line; use vell_create_rows (vell create rows) for several "
     "rows"},
    {"", [](Bench& b) { create(b, "a\n\n"); }, nullptr,
     "The markdown of one row must be a single line; use vell_create_rows (vell create rows) for several "
     "rows"},
    // An id goes over to the new row.
    {"a {#p}\n", [](Bench& b) { create(b, "b {#p}"); },
     "a {modified=2026-09-21T14:13:25Z}\nb {#p created=2026-09-21T14:13:25Z}\n", nullptr},
    // Many rows stay together, in order, with what is below them.
    {"x {#x}\ny\n", [](Bench& b) { createMany(b, "---\n- a\n  - b\n\n# c\nd\n", after(b["x"])); },
     "x {#x}\n--- {created=2026-09-21T14:13:25Z}\n- a {created=2026-09-21T14:13:25Z}\n"
     "\t- b {created=2026-09-21T14:13:25Z}\n# c {created=2026-09-21T14:13:25Z}\n"
     "\td {created=2026-09-21T14:13:25Z}\ny\n",
     nullptr},
    {"", [](Bench& b) { createMany(b, "\n  \n"); }, "", nullptr},
    // The front matter of a whole document is no row.
    {"", [](Bench& b) { createMany(b, "---\nid: x\ntitle: T\n---\n\na\n"); },
     "a {created=2026-09-21T14:13:25Z}\n", nullptr},
    // Ids that read as another kind of reference.
    {"", [](Bench& b) { create(b, "a {#12}"); }, nullptr,
     "The persistent id \"12\" would be taken for a session id"},
    {"", [](Bench& b) { createMany(b, "- a\n  - b {#/p}\n"); }, nullptr,
     "The persistent id \"/p\" would be taken for a path"},
    {"", [](Bench& b) { createMany(b, "a {#@p}"); }, nullptr,
     "The persistent id \"@p\" would be taken for @selection or @focused"},
    // Places.
    {"", [](Bench& b) { create(b, "x", below(nullptr, "1")); }, nullptr,
     "There is no position 1: the row has 0 children; use start, end or 0 to 0"},
    {"", [](Bench& b) { create(b, "x", below(nullptr, "-1")); }, nullptr,
     "There is no position \"-1\"; use start, end or an index from 0"},
    {"", [](Bench& b) { create(b, "x", below(nullptr, "strat")); }, nullptr,
     "There is no position \"strat\" (did you mean \"start\"?); use start, end or an index from 0"},
    {"", [](Bench& b) { create(b, "x", below(nullptr, "99999999999999999999")); }, nullptr,
     "There is no position 99999999999999999999: the row has 0 children; use start, end or 0 to 0"},
    {"", [](Bench& b) { create(b, "x", after(b["root"])); }, nullptr,
     "Nothing can stand beside the root; name a row below it"},
    {"a {#a}\n",
     [](Bench& b) {
       create(b, "x", {nullptr, {}, b["a"], b["a"]});
     },
     nullptr, "Both before and after are given; use one of them"},
};

void move(Bench& b, std::initializer_list<std::string_view> ids, const DestinationRequest& to) {
  moveRows(b.edit, b.rows(ids), to);
}
void remove(Bench& b, std::initializer_list<std::string_view> ids, std::size_t count) {
  EXPECT_EQ(deleteRows(b.edit, b.rows(ids)), count);
}

const ChangeCase arrangeCases[] = {
    {tree, [](Bench& b) { move(b, {"f"}, below(b["a"], "start")); },
     "a {#a}\n\tf {#f}\n\tb {#b}\n\tc {#c}\n\t\td {#d}\n\te {#e}\n", nullptr},
    {tree,
     [](Bench& b) {
       move(b, {"f", "b"}, after(b["d"]));
     },
     "a {#a}\n\tc {#c}\n\t\td {#d}\n\t\tf {#f}\n\t\tb {#b}\n\te {#e}\n", nullptr},
    // Within one parent the index counts those that stay, and what is between is skipped.
    {tree, [](Bench& b) { move(b, {"b"}, below(b["a"], "1")); },
     "a {#a}\n\tc {#c}\n\t\td {#d}\n\tb {#b}\n\te {#e}\nf {#f}\n", nullptr},
    {tree,
     [](Bench& b) {
       move(b, {"e", "c"}, after(b["b"]));
     },
     "a {#a}\n\tb {#b}\n\te {#e}\n\tc {#c}\n\t\td {#d}\nf {#f}\n", nullptr},
    {tree,
     [](Bench& b) {
       move(b, {"b", "b", "d"}, before(b["a"]));
     },
     "b {#b}\nd {#d}\na {#a}\n\tc {#c}\n\te {#e}\nf {#f}\n", nullptr},
    // A row below another one stays in there.
    {tree,
     [](Bench& b) {
       move(b, {"d", "c"}, below(nullptr));
     },
     "a {#a}\n\tb {#b}\n\te {#e}\nf {#f}\nc {#c}\n\td {#d}\n", nullptr},
    {tree, [](Bench& b) { move(b, {"a"}, below(b["d"])); }, nullptr,
     "Row \"a\" cannot be moved into itself or a row below it"},
    {tree,
     [](Bench& b) {
       move(b, {"f", "c"}, below(b["c"]));
     },
     nullptr, "Row \"c\" cannot be moved into itself or a row below it"},
    {tree, [](Bench& b) { move(b, {"a"}, before(b["d"])); }, nullptr,
     "Row \"a\" cannot be moved into itself or a row below it"},
    {tree, [](Bench& b) { move(b, {"b"}, before(b["b"])); }, nullptr,
     "Row \"b\" cannot be moved beside itself"},
    {tree,
     [](Bench& b) {
       move(b, {"b", "root"}, below(b["f"]));
     },
     nullptr, "The root cannot be moved; name rows below it"},
    {tree, [](Bench& b) { move(b, {"b"}, below(b["a"], "3")); }, nullptr,
     "There is no position 3: the row has 2 children; use start, end or 0 to 2"},
    {tree,
     [](Bench& b) {
       remove(b, {"d", "c", "c", "f"}, 3);
     },
     "a {#a}\n\tb {#b}\n\te {#e}\n", nullptr},
    {tree,
     [](Bench& b) {
       remove(b, {"a", "f", "d"}, 6);
     },
     "", nullptr},
    {tree, [](Bench& b) { remove(b, {}, 0); }, tree, nullptr},
    {tree,
     [](Bench& b) {
       remove(b, {"b", "root"}, 0);
     },
     nullptr, "The root cannot be deleted; name rows below it"},
};

/// Updates and expects that the answer's fieldErrors are these.
void update(Bench& b, std::initializer_list<std::string_view> ids, const RowUpdate& what,
            const std::vector<FieldError>& errors = {}) {
  for (const UpdatedRow& row : updateRows(b.edit, b.rows(ids), what)) EXPECT_EQ(row.fieldErrors, errors);
}

RowUpdate update(std::optional<Text> RowUpdate::*field, const char* markdown) {
  RowUpdate update;
  update.*field = formats::parseInline(markdown);
  return update;
}

const ChangeCase updateCases[] = {
    {"a {#a}\n", [](Bench& b) { update(b, {"a"}, update(&RowUpdate::text, "- **x** {#p}")); },
     "\\- **x** {#p\\} {#a modified=2026-09-21T14:13:25Z}\n", nullptr},
    {"**a** {#a}\n", [](Bench& b) { update(b, {"a"}, update(&RowUpdate::append, "_b_")); },
     "**a**_b_ {#a modified=2026-09-21T14:13:25Z}\n", nullptr},
    {"*b {#a}\n", [](Bench& b) { update(b, {"a"}, update(&RowUpdate::prepend, "a\\*")); },
     "a**b {#a modified=2026-09-21T14:13:25Z}\n", nullptr},
    // The same text is no change.
    {"a {#a}\n", [](Bench& b) { update(b, {"a"}, update(&RowUpdate::text, "a")); }, "a {#a}\n", nullptr},
    // A row named twice changes once.
    {"a {#a}\nb {#b}\n",
     [](Bench& b) {
       update(b, {"a", "b", "a"}, update(&RowUpdate::append, "!"));
     },
     "a! {#a modified=2026-09-21T14:13:25Z}\nb! {#b modified=2026-09-21T14:13:25Z}\n", nullptr},
    {"a {#a}\n", [](Bench& b) { update(b, {"a"}, {.type = "hr"}); },
     "--- {#a modified=2026-09-21T14:13:25Z}\n", nullptr},
    {"a {#a}\n",
     [](Bench& b) {
       update(b, {"a"}, {.text = Text("x"), .type = "hr"}, {{"text", "A row of type hr has no text"}});
     },
     "--- {#a modified=2026-09-21T14:13:25Z}\n", nullptr},
    {"a {#a}\n",
     [](Bench& b) {
       update(
           b, {"a"}, {.append = Text("x"), .type = "root"},
           {{"type",
             "There is no row type \"root\"; use one of body, heading, task, note, quote, code, hr, ordered, "
             "unordered"}});
     },
     "ax {#a modified=2026-09-21T14:13:25Z}\n", nullptr},
    {"a {#a}\n",
     [](Bench& b) {
       update(
           b, {"a"}, {.type = "tsak"},
           {{"type",
             "There is no row type \"tsak\" (did you mean \"task\"?); use one of body, heading, task, note, "
             "quote, code, hr, ordered, unordered"}});
     },
     "a {#a}\n", nullptr},
    {"a {#a k=1 l=2 m=3}\n",
     [](Bench& b) {
       update(b, {"a"},
              {.attributes = {{"l", std::nullopt}, {"k", "9"}, {"n", ""}, {"", "x"}, {"o", std::nullopt}}},
              {{"attributes", "An attribute's name cannot be empty"}});
     },
     "a {#a k=9 m=3 n=\"\" modified=2026-09-21T14:13:25Z}\n", nullptr},
    {"a {#a}\nb {#b}\n", [](Bench& b) { update(b, {"a"}, {.persistentId = "b"}); },
     "a {#b modified=2026-09-21T14:13:25Z}\nb {modified=2026-09-21T14:13:25Z}\n", nullptr},
    {"a {#a}\n",
     [](Bench& b) {
       update(b, {"a"}, {.persistentId = "12"}, {{"persistentId", "\"12\" would be taken for a session id"}});
       update(b, {"a"}, {.persistentId = std::string("n\0x", 3)},
              {{"persistentId", "\"n…\" holds a NUL character"}});
       update(b, {"a"}, {.persistentId = "/x"}, {{"persistentId", "\"/x\" would be taken for a path"}});
       update(b, {"a"}, {.persistentId = "(x"}, {{"persistentId", "\"(x\" would be taken for a path"}});
       update(b, {"a"}, {.persistentId = "@x"},
              {{"persistentId", "\"@x\" would be taken for @selection or @focused"}});
       update(b, {"a"}, {.persistentId = ""}, {{"persistentId", "A persistent id cannot be empty"}});
     },
     "a {#a}\n", nullptr},
    {"a {#a}\n",
     [](Bench& b) {
       update(b, {"root"},
              {.prepend = Text("x"), .type = "task", .attributes = {{"k", "v"}}, .persistentId = "p"},
              {{"type", "The root has no other type"},
               {"prepend", "The root has no text"},
               {"attributes", "The root has no attributes"},
               {"persistentId", "The root goes by the outline's own id"}});
     },
     "a {#a}\n", nullptr},
    {"a {#a}\nb {#b}\n",
     [](Bench& b) {
       update(b, {"a", "b"}, {.text = Text("x"), .persistentId = "p"});
     },
     nullptr, "persistentId requires exactly one row, but there are 2"},
    {"a {#a}\n", [](Bench& b) { update(b, {"a"}, {.text = Text("x"), .append = Text("y")}); }, nullptr,
     "text, append and prepend exclude one another; give one of them"},
};

/// Makes the change, takes it back and makes it again; or sees it refused whole.
void check(const ChangeCase& row) {
  Bench bench(row.before);
  const std::string start = bench.text();
  try {
    row.change(bench);
    ASSERT_EQ(row.problem, nullptr) << bench.text();
  } catch (const Problem& problem) {
    ASSERT_TRUE(row.problem) << problem.what();
    EXPECT_STREQ(problem.what(), row.problem);
    EXPECT_TRUE(bench.edit.empty());
    EXPECT_EQ(bench.text(), start);
    return;
  }
  const std::string changed = bench.text();
  EXPECT_EQ(changed, row.after);
  std::vector<Change> changes = bench.edit.take();
  undo(bench.outline, changes);
  EXPECT_EQ(bench.text(), start);
  redo(bench.outline, changes);
  EXPECT_EQ(bench.text(), changed);
}

TEST(Change, CreatesRows) {
  for (const ChangeCase& row : createCases) check(row);
}

TEST(Change, MovesAndDeletesRows) {
  for (const ChangeCase& row : arrangeCases) check(row);
}

TEST(Change, UpdatesRows) {
  for (const ChangeCase& row : updateCases) check(row);
}

TEST(Change, AnswersTellRowsAndWhatWasRefused) {
  Bench bench("a {#a}\n");
  const auto updated = updateRows(bench.edit, bench.rows({"a"}), {.persistentId = "7"});
  EXPECT_EQ(updatedRowsAnswer(updated),
            R"([{"row":{"id":2,"persistentId":"a","type":"body","text":[{"string":"a"}],)"
            R"("created":"2026-09-21T14:13:20Z","modified":"2026-09-21T14:13:20Z"},)"
            R"("fieldErrors":{"persistentId":"\"7\" would be taken for a session id"}}])");
}

}  // namespace
}  // namespace vell::headless
