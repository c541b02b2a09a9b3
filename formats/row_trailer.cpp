#include "formats/row_trailer.h"

#include "formats/attribute_list.h"
#include "formats/inline_syntax.h"

namespace vell::formats {
namespace {

void takeItem(RowTrailer& trailer, ListItem item, Times times) {
  if (!item.quotedKey) {
    if (item.key == "#") return void(trailer.persistentId = std::move(item.value));
    if (item.key == "type") {
      trailer.type = document::rowType(item.value);
      if (trailer.type) return;
    }
    if (times == Times::kept && item.key == "created") return void(trailer.created = std::move(item.value));
    if (times == Times::kept && item.key == "modified") return void(trailer.modified = std::move(item.value));
  }
  trailer.attributes.set(item.key, item.value);
}

bool readTrailer(std::string_view list, Times times, RowTrailer& trailer) {
  AttributeListReader reader(list);
  const bool isList = reader.read([&](ListItem item) { takeItem(trailer, std::move(item), times); });
  return isList && reader.length() == list.size();
}

}  // namespace

bool takeTrailer(std::string_view& line, Times times, RowTrailer& trailer) {
  const std::string_view whole = trimEnd(line);
  if (!whole.ends_with('}')) return false;
  for (std::size_t at = whole.rfind('{'); at != std::string_view::npos; at = whole.rfind('{', at - 1)) {
    RowTrailer read;
    if ((at == 0 || isBlank(whole[at - 1])) && readTrailer(whole.substr(at), times, read)) {
      trailer = std::move(read);
      line = trimEnd(whole.substr(0, at));
      return true;
    }
    if (at == 0) break;
  }
  return false;
}

void appendTrailer(std::string& out, Times times, const RowTrailer& trailer) {
  if (trailer.empty()) return;
  const std::string_view reserved = times == Times::kept ? " type created modified " : " type ";
  char before = '{';
  const auto separate = [&] {
    out += before;
    before = ' ';
  };
  if (!trailer.persistentId.empty()) separate(), appendListId(out, trailer.persistentId);
  if (trailer.type) separate(), appendListItem(out, "type", name(*trailer.type));
  for (const Attribute& entry : trailer.attributes) {
    separate();
    appendListItem(out, entry.key, entry.value, reserved);
  }
  if (!trailer.created.empty()) separate(), appendListItem(out, "created", trailer.created);
  if (!trailer.modified.empty()) separate(), appendListItem(out, "modified", trailer.modified);
  out += '}';
}

}  // namespace vell::formats
