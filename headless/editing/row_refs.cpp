#include "headless/editing/row_refs.h"

#include <algorithm>
#include <charconv>

#include "headless/editing/problem.h"

namespace vell::headless {
namespace {

bool isPath(const std::string& ref) { return !ref.empty() && ref.front() == '/'; }

bool isSessionId(const std::string& ref) {
  return !ref.empty() && std::all_of(ref.begin(), ref.end(), [](char c) { return c >= '0' && c <= '9'; });
}

/// Hardly anybody's identifier, but somebody's path without its beginning.
bool looksLikePath(const std::string& ref) {
  return ref == "." || ref == ".." || ref.find_first_of("/(@*") != std::string::npos ||
         ref.find("::") != std::string::npos;
}

const Row* findSession(const Outline& outline, const std::string& digits) {
  SessionId id = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), id);
  return error == std::errc() ? outline.find(id) : nullptr;
}

}  // namespace

std::vector<const Row*> RowRefs::rows(const std::vector<std::string>& refs) const {
  std::vector<const Row*> found;
  for (const std::string& ref : refs) {
    if (!isPath(ref)) {
      found.push_back(&named(ref));
      continue;
    }
    const auto matches = paths_.rows(opened_, ref);
    found.insert(found.end(), matches.begin(), matches.end());
  }
  return found;
}

const Row& RowRefs::row(const std::string& ref) const {
  if (!isPath(ref)) return named(ref);
  const auto matches = paths_.rows(opened_, ref);
  if (matches.empty())
    throw Problem("The path " + ref + " selects no row of \"" + opened_.displayName() + "\"");
  return *matches.front();
}

const Row& RowRefs::named(const std::string& ref) const {
  const Outline& outline = opened_.outline();
  if (ref == "@focused") return opened_.editor().focused();
  if (ref == "@selection") {
    if (outline.rowCount() == 0)
      throw Problem("Nothing is selected: \"" + opened_.displayName() + "\" has no rows");
    return opened_.editor().head();
  }
  const bool session = isSessionId(ref);
  const Row* row = session ? findSession(outline, ref) : outline.findPersistent(ref);
  if (row != nullptr) return *row;
  throw Problem("No row of \"" + opened_.displayName() + "\" has the " +
                (session ? "session" : "persistent") + " id " + (session ? ref : "\"" + ref + "\"") +
                (looksLikePath(ref) ? " (a path begins with \"/\")" : ""));
}

}  // namespace vell::headless
