#include "outlines/resource_uri.h"

#include "text/percent_encoding.h"

namespace vell::outlines {

namespace {

/// Beside letters and digits.
constexpr std::string_view pathSegmentAllowed = "!$&'()*+,-.:=@_~";

}  // namespace

std::string encodePathSegment(std::string_view text) {
  return text::percentEncoded(text, pathSegmentAllowed);
}

std::optional<std::string> filePath(const ipc::OutlineSummary& outline) {
  constexpr std::string_view scheme = "file://";
  if (!outline.fileURL || outline.fileURL->rfind(scheme, 0) != 0) return outline.fileURL;
  const std::size_t begin = outline.fileURL->find('/', scheme.size());  // behind the host, which may be empty
  if (begin == std::string::npos) return std::nullopt;
  const std::string path = outline.fileURL->substr(begin);
  return text::percentDecoded(path).value_or(path);
}

std::string resourceURI(const ipc::OutlineSummary& outline) {
  if (const auto path = filePath(outline)) return "vell://file/" + encodePathSegment(*path);
  return "vell://outline/" + encodePathSegment(outline.persistentId);
}

}  // namespace vell::outlines
