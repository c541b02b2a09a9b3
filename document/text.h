#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "document/attributes.h"

namespace vell::document {

/// A stretch of text with one style. Standard keys: "strong", "em", "code", "s", "mark" (value ""), "a" (the
/// link's target), "base" ("sub" or "sup"); any other pair is kept as it is. Keys stand in byte order.
struct Run {
  std::string string;
  Attributes attrs;

  bool operator==(const Run&) const = default;
};

/// A row's text: UTF-8 tiled by runs, in canonical form: no run is empty and neighbours differ in style, so
/// that equal looks are equal values.
class Text {
 public:
  Text() = default;
  explicit Text(std::string plain) : string_(std::move(plain)) {}
  explicit Text(const std::vector<Run>& runs);

  const std::string& string() const { return string_; }
  bool empty() const { return string_.empty(); }
  bool isPlain() const { return spans_.empty(); }
  std::vector<Run> runs() const;

  void append(std::string_view string, Attributes attrs = {});
  void append(const Text& other);

  /// Calls `visit(std::string_view string, const Attributes& attrs)` for each run in order.
  template <class Visit>
  void forEachRun(Visit&& visit) const;

  bool operator==(const Text& other) const = default;

 private:
  struct Span {
    std::size_t length;  ///< bytes
    Attributes attrs;

    bool operator==(const Span&) const = default;
  };

  std::string string_;
  std::vector<Span> spans_;  ///< empty when no run is styled
};

template <class Visit>
void Text::forEachRun(Visit&& visit) const {
  const std::string_view all = string_;
  if (isPlain()) {
    if (!all.empty()) visit(all, Attributes());
    return;
  }
  std::size_t offset = 0;
  for (const Span& span : spans_) {
    visit(all.substr(offset, span.length), span.attrs);
    offset += span.length;
  }
}

}  // namespace vell::document
