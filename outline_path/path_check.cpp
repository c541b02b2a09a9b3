#include "outline_path/path_check.h"

#include "outline_path/with_parse.h"

namespace vell::outline_path {

std::string_view cookbook() {
  return R"cookbook(Outline Path Cookbook
=====================

Pass `path` to parse-validate an expression. Omit `path` to view this
cookbook. OutlinePath is XPath-LIKE — same vibes, important differences:

  • Predicates are **bare** after a step (separated by whitespace).
    They are NOT wrapped in `[ ... ]`.  Brackets are SLICE syntax only.
  • String literals use **double quotes** (`"foo"`).  Single quotes don't parse.
  • A relative path needs a leading axis (`.a`, `./a`, `..`).  Bare `a`
    on its own is not a valid path.

# Common shapes
  //*                          every row in the outline (`/` absolute + `/` axis + `*` type)
  //heading                    every heading anywhere
  //task                       every task anywhere
  /*                           direct children of root (top-level rows)
  /heading                     top-level headings only
  ..                           parent (relative)
  .                            self (relative)

# Type tests (after an axis, as the step's filter)
  row   body   heading   blockquote   codeblock   note
  unordered   ordered   task   hr   run   *
  Examples: //blockquote   //heading   //task   //*

# Axes
  //                           any descendant (descendant-or-self::)
  /                            child:: — also marks an absolute path at the start
  ..                           parent::
  .                            self::
  ancestor::                   no shortcut
  ancestor-or-self::           no shortcut
  descendant::                 (use //  for descendant-or-self::)
  following::                  every node after, in document order
  following-sibling::          siblings after
  preceding::                  every node before, in document order
  preceding-sibling::          siblings before
  run::                        descend into a row's text runs

# Predicates — bare, attached to a step after whitespace
  //*  @done                   row has the @done attribute
  //task  @done = "true"       attribute equals literal (double quotes!)
  //*  @at < 20                numeric comparison
  //*  "TODO"                  contains text "TODO" (bare string)
  //heading  not @done         negation
  //task  @done and @priority = 1
  //*  @done or @cancelled
  //*  (@a or @b) and @c       grouping with parens

# Relation operators (binary, inside a comparison predicate)
  =   !=   <   >   <=   >=
  contains   beginswith   endswith   matches
  Modifier goes RIGHT AFTER the operator (before the right-hand value):
    [s] case-sensitive   [i] case-insensitive   [n] numeric   [d] date
    optional trailing `l` for locale-aware, e.g. `[il]`
  Example: //*  @name =[i] "Foo"
  Example: //*  @name contains[i] "x"

# Slices — `[N]` (index) or `[start:end]` (range)
  //task[0]                    first matched task
  //task[-1]                   last matched task
  //task[1:5]                  range (start inclusive, end exclusive)
  //task[:3]                   first three
  //task[3:]                   from index 3 onwards
  //task  @done[0]             predicate then slice on the same step

# Set operations (combine two path expressions; whitespace required around the keyword)
  //heading union //task
  //* except //hr
  //task intersect //*  @done

# Step composition (chain steps with `/`)
  //heading/following-sibling::*    siblings after each heading
  //task  @done/..                  parents of done tasks
  /child::row/child::task           verbose form of /*/task
  parent::task                      relative — parent step toward a task

# Functions — `name(arg, ...)`, evaluated as values
  count(//*)                                  row count
  Functions in a predicate must appear in a comparison:
    //*  count(child::*) > 0                  rows with at least one child
    //*  focused-branch() = true              when run in editor context (see below)

  Editor-context functions (only meaningful inside a live editor — e.g.
  Vell's filter bar — and they return booleans, so compare them):
    focused-root() = true        the focused row
    focused-branch() = true      any row in the focused subtree
    focused-level()              depth from focused row (very large if outside)
    expanded() = true            row has at least one visible child
    collapsed() = true           row has no visible children
    filter-match() = true        row directly matches the active filter
    filter-match-ancestor() = true   row is an ancestor of a filter match
    selection() = "caret"|"range"|"block"   selection lives on this row
    selection-ancestor() / selection-descendant()
    drop-indicator() = "on"|"above"|"below" during a drag

# Notes
- A standalone `/` at the start is the absolute-path marker.  A `/` inside
  a step is the child-axis shortcut.  So `//x` is absolute + descendant `x`;
  `/x` is absolute + child `x`; `x` alone is not a valid path.
- The parse tree returned on success is the most useful feedback — read it
  to see how your expression was interpreted (axis kind, type test, predicate).)cookbook";
}

std::string checkOutlinePath(std::string_view text) {
  constexpr std::string_view blanks = " \t\n\v\f\r";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return std::string(cookbook());
  const std::size_t last = text.find_last_not_of(blanks);
  return OutlinePathWithParse(std::string(text.substr(first, last - first + 1)),
                              {.allowValueExpression = true, .trace = true})
      .compactDescription();
}

}  // namespace vell::outline_path
