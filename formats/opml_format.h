#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "formats/rows.h"

// What the reader and the writers of OPML agree on.
namespace vell::formats {

/// The attribute that holds a row's text: `title` stands in.
inline std::string_view textName(bool hasText) { return hasText ? "text" : "title"; }

/// Namespace declarations are no attributes of a row.
inline bool isNamespaceName(std::string_view name) { return name == "xmlns" || name.starts_with("xmlns:"); }

/// True for the names under which a row's other content stands.
inline bool isContentName(std::string_view name) {
  return name == "vell-text" || name == "vell-type" || name == "vell-id" || name == "vell-created" ||
         name == "vell-modified";
}

/// Attributes that XML cannot name stand in one that holds a JSON object. Where others stand between them
/// there are several, with a number from 2 on behind the name, so that all keep their order.
inline constexpr std::string_view divertedName = "vell-attributes";
/// The same for elements of the head, whose names may repeat.
inline constexpr std::string_view divertedElement = "vell-frontMatter";

/// The number of an attribute that holds diverted ones; 0 where it is another.
std::size_t divertedNumber(std::string_view name);

/// The attributes from `first` on under names that XML has; `diverted` is the greatest number in use.
std::vector<Attribute> xmlAttributes(const Attributes& attributes, std::size_t first, std::size_t diverted);
/// The whole row; with `tellsTimes` the times that are not what their absence says.
std::vector<Attribute> xmlAttributes(const Row& row, Timestamp created, bool tellsTimes);

/// Appends `<outline …` of a row; what ends the tag is up to the caller.
void appendOutlineTag(std::string& out, const std::vector<Attribute>& attributes, bool isAscii);

}  // namespace vell::formats
