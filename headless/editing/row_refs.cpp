#include "headless/editing/row_refs.h"

#include <algorithm>
#include <charconv>

#include "evaluation/evaluate.h"
#include "headless/access.h"
#include "headless/editing/editor_functions.h"
#include "headless/editing/problem.h"
#include "outline_path/parse.h"

namespace vell::headless {
namespace {

/// A file may hold ids that begin with a bracket, though no row can be given one.
bool isPath(const std::string& ref, const Outline& outline) {
  return ref.starts_with('/') || (ref.starts_with('(') && outline.findPersistent(ref) == nullptr);
}

bool isSessionId(std::string_view ref) {
  return !ref.empty() && std::all_of(ref.begin(), ref.end(), [](char c) { return c >= '0' && c <= '9'; });
}

/// Probably a path whose first "/" is missing.
bool looksLikePath(const std::string& ref) {
  return ref == "." || ref == ".." || ref.find_first_of("/(@*") != std::string::npos ||
         ref.find("::") != std::string::npos;
}

/// What else an unknown reference may have been meant to be.
std::string otherReading(const std::string& ref) {
  constexpr std::string_view words[] = {"@selection", "@focused"};
  const std::string word = ref.starts_with('@') ? didYouMean(ref, words) : "";
  return word.empty() && looksLikePath(ref) ? " (a path begins with \"/\")" : word;
}

const Row* findSession(const Outline& outline, const std::string& digits) {
  SessionId id = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), id);
  return error == std::errc() ? outline.find(id) : nullptr;
}

}  // namespace

std::string persistentIdFault(std::string_view id) {
  if (id.empty()) return "A persistent id cannot be empty";
  const std::size_t nul = id.find('\0');
  if (nul != std::string_view::npos)
    return "\"" + std::string(id.substr(0, nul)) + "…\" holds a NUL character";
  const std::string quoted = "\"" + std::string(id) + "\"";
  if (isSessionId(id)) return quoted + " would be taken for a session id";
  if (id.front() == '/' || id.front() == '(') return quoted + " would be taken for a path";
  if (id.front() == '@') return quoted + " would be taken for @selection or @focused";
  return {};
}

std::vector<const Row*> selectRows(const Outline& outline, const Editor& editor, std::string_view path) {
  const auto parsed = outline_path::parse(path, {.allowValueExpression = true});
  if (parsed.error) throw Problem(outline_path::render(*parsed.error, path));
  const EditorFunctions functions(outline, editor);
  const evaluation::SystemClock clock;
  // Perhaps called on another thread than this one, which holds the application.
  const auto pause = [hold = ApplicationHold::current()] {
    if (hold != nullptr && hold->isAbandoned()) throw Abandoned();
  };
  const evaluation::Environment environment{clock, &functions, {.pause = pause}};
  try {
    std::vector<const Row*> rows;
    beside([&] {
      outline_path::onStackFor(
          path, [&] { rows = evaluation::evaluateRows(*parsed.expression, outline, environment); });
    });
    return rows;
  } catch (const evaluation::EvaluationError& error) {
    throw Problem("The path " + std::string(path) + " cannot be evaluated: " + error.what());
  }
}

std::vector<const Row*> RowRefs::rows(const std::vector<std::string>& refs) const {
  std::vector<const Row*> found;
  for (const std::string& ref : refs) {
    if (!isPath(ref, outline_)) {
      found.push_back(&named(ref));
      continue;
    }
    const auto matches = selectRows(outline_, editor_, ref);
    found.insert(found.end(), matches.begin(), matches.end());
  }
  return found;
}

const Row& RowRefs::row(const std::string& ref) const {
  if (!isPath(ref, outline_)) return named(ref);
  const auto matches = selectRows(outline_, editor_, ref);
  if (matches.empty()) throw Problem("The path " + ref + " selects no row of \"" + name_ + "\"");
  return *matches.front();
}

const Row& RowRefs::named(const std::string& ref) const {
  if (ref == "@focused") return editor_.focused();
  if (ref == "@selection") {
    if (outline_.rowCount() == 0) throw Problem("Nothing is selected: \"" + name_ + "\" has no rows");
    if (!editor_.hasSelection()) throw Problem("Nothing is selected in \"" + name_ + "\"");
    return editor_.head();
  }
  const bool session = isSessionId(ref);
  const Row* row = session ? findSession(outline_, ref) : outline_.findPersistent(ref);
  if (row != nullptr) return *row;
  throw Problem("No row of \"" + name_ + "\" has the " +
                (session ? "session id " + ref : "persistent id \"" + ref + "\"") + otherReading(ref));
}

}  // namespace vell::headless
