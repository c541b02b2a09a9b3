#include <algorithm>
#include <utility>

#include "formats/attribute_list.h"

namespace vell::formats {
namespace {

/// Reads the braces; false where they are no trailer or say something else after them.
bool says(std::string_view trailer, Times times, const RowTrailer& wanted) {
  RowTrailer read;
  return takeTrailer(trailer, times, read) && trailer.empty() && read.persistentId == wanted.persistentId &&
         read.type == wanted.type && read.created == wanted.created && read.modified == wanted.modified &&
         read.attributes == wanted.attributes;
}

/// The item alone, in its own braces, as a trailer.
RowTrailer meaning(std::string_view item, Times times) {
  const std::string braces = "{" + std::string(item) + "}";
  std::string_view line = braces;
  RowTrailer trailer;
  takeTrailer(line, times, trailer);
  return trailer;
}

/// What of `wanted` belongs in the place of an item that says `item`, taken out of `wanted`.
RowTrailer takeSuccessor(const RowTrailer& item, RowTrailer& wanted) {
  RowTrailer successor;
  if (!item.persistentId.empty()) std::swap(successor.persistentId, wanted.persistentId);
  if (item.type) std::swap(successor.type, wanted.type);
  if (!item.created.empty()) std::swap(successor.created, wanted.created);
  if (!item.modified.empty()) std::swap(successor.modified, wanted.modified);
  for (const Attribute& entry : item.attributes) {
    if (const std::string* value = wanted.attributes.find(entry.key)) {
      successor.attributes.set(entry.key, *value);
      wanted.attributes.remove(entry.key);
    }
  }
  return successor;
}

void appendItems(std::string& out, Times times, const RowTrailer& trailer) {
  std::string braces;
  appendTrailer(braces, times, trailer);
  if (!braces.empty()) out.append(braces, 1, braces.size() - 2);
}

}  // namespace

std::string rewriteTrailer(std::string_view trailer, Times times, const RowTrailer& now) {
  std::string plain;
  appendTrailer(plain, times, now);
  if (trailer.empty() || now.empty()) return plain;
  if (says(trailer, times, now)) return std::string(trailer);
  RowTrailer left = now;
  std::string out = "{";
  AttributeListReader reader(trailer);
  std::size_t from = 1;
  const bool isList = reader.read([&](ListItem&&) {
    const bool isFirst = from == 1;
    std::string_view item = trailer.substr(from, reader.length() - from);
    from = reader.length();
    const std::string_view blanks = item.substr(0, std::min(item.find_first_not_of(" \t"), item.size()));
    item.remove_prefix(blanks.size());
    const RowTrailer successor = takeSuccessor(meaning(item, times), left);
    if (successor.empty()) return;
    if (isFirst || out.size() > 1) out += blanks;
    if (says("{" + std::string(item) + "}", times, successor)) {
      out += item;
    } else {
      appendItems(out, times, successor);
    }
  });
  if (!isList) return plain;
  if (!left.empty() && out.size() > 1) out += ' ';
  appendItems(out, times, left);
  out += trailer.substr(from);
  return says(out, times, now) ? out : plain;
}

}  // namespace vell::formats
