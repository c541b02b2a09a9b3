#include "outlines/resource_uri.h"

namespace vell::outlines {

namespace {

constexpr std::string_view pathSegmentAllowed =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789!$&'()*+,-.:=@_~";
constexpr std::string_view hexDigits = "0123456789ABCDEF";

std::optional<unsigned> hexValue(char digit) {
  const char upper = digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit;
  const std::size_t value = hexDigits.find(upper);
  return value == std::string_view::npos ? std::nullopt : std::optional(static_cast<unsigned>(value));
}

std::string percentDecoded(std::string_view text) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto high = i + 2 < text.size() && text[i] == '%' ? hexValue(text[i + 1]) : std::nullopt;
    const auto low = high ? hexValue(text[i + 2]) : std::nullopt;
    decoded += low ? static_cast<char>(*high * 16 + *low) : text[i];
    if (low) i += 2;
  }
  return decoded;
}

}  // namespace

std::string encodePathSegment(std::string_view text) {
  std::string encoded;
  for (const char c : text) {
    if (pathSegmentAllowed.find(c) != std::string_view::npos) {
      encoded += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    encoded += '%';
    encoded += hexDigits[byte >> 4];
    encoded += hexDigits[byte & 15];
  }
  return encoded;
}

std::optional<std::string> filePath(const ipc::OutlineSummary& outline) {
  constexpr std::string_view scheme = "file://";
  if (!outline.fileURL || outline.fileURL->rfind(scheme, 0) != 0) return outline.fileURL;
  const std::size_t path = outline.fileURL->find('/', scheme.size());  // behind the host, which may be empty
  return path == std::string::npos ? std::nullopt
                                   : std::optional(percentDecoded(outline.fileURL->substr(path)));
}

std::string resourceURI(const ipc::OutlineSummary& outline) {
  if (const auto path = filePath(outline)) return "vell://file/" + encodePathSegment(*path);
  return "vell://outline/" + encodePathSegment(outline.persistentId);
}

}  // namespace vell::outlines
