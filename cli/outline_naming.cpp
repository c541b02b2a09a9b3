#include "cli/outline_naming.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "ipc/methods.h"
#include "outlines/location.h"
#include "outlines/resource_uri.h"
#include "text/edit_distance.h"

namespace vell::cli {
namespace {

using ipc::OutlineSummary;

/// Whether the application refuses the outline, not something else in the request. Its words are its own;
/// that it speaks of an outline and names the reference is all that is asked of them.
bool refusesOutline(const ipc::ClientError& refusal, const std::string& reference) {
  const std::string text = refusal.what();
  const bool ofOutline = text.find("outline") != text.npos || text.find("Outline") != text.npos;
  return refusal.kind() == ipc::ClientError::Kind::rpcError && ofOutline && text.find(reference) != text.npos;
}

bool isFileOf(const OutlineSummary& outline, const std::string& path) {
  const auto file = outlines::filePath(outline);
  std::error_code unreadable;
  return file && (*file == path || std::filesystem::equivalent(*file, path, unreadable));
}

/// One line about each outline.
std::string listed(const std::vector<const OutlineSummary*>& outlines) {
  std::string lines;
  for (const OutlineSummary* outline : outlines) {
    lines += "\n  " + outline->persistentId + "  " + outline->displayName;
    if (const auto file = outlines::filePath(*outline)) lines += "  " + *file;
  }
  return lines;
}

std::string hint(const std::string& reference, const std::vector<OutlineSummary>& open) {
  std::vector<std::string_view> names;
  for (const OutlineSummary& outline : open)
    names.insert(names.end(), {outline.displayName, outline.persistentId});
  const std::string_view meant = text::nearest(reference, names);
  const std::string nearby = meant.empty() ? "" : "Did you mean '" + std::string(meant) + "'? ";
  return "\nHint: " + nearby + "`vell get outlines` lists the open outlines.";
}

}  // namespace

std::vector<OutlineSummary> openOutlines(ipc::Application& application) {
  try {
    return ipc::decodeOutlineSummaries(application.request(ipc::OutlineList{}).result());
  } catch (const std::exception&) {
    return {};
  }
}

std::string namedOutline(const std::string& reference, ipc::Application& application,
                         const ipc::ClientError& refusal) {
  if (!refusesOutline(refusal, reference)) throw refusal;
  const auto open = openOutlines(application);
  const std::string path = outlines::absolutize(reference);
  std::vector<const OutlineSummary*> meant;
  for (const OutlineSummary& outline : open) {
    if (outline.persistentId == reference) throw refusal;
    if (outline.displayName == reference || isFileOf(outline, path)) meant.push_back(&outline);
  }
  if (meant.size() == 1) return meant.front()->persistentId;
  if (!meant.empty())
    throw std::runtime_error("'" + reference +
                             "' may be any of these open outlines; use an id:" + listed(meant));
  if (open.empty()) throw refusal;
  throw std::runtime_error(refusal.what() + hint(reference, open));
}

}  // namespace vell::cli
