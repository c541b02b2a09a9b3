#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "formats/rows.h"

namespace vell::formats {

/// One item of a braced list: `#id`, `key=value`, `"any key"="any value"`. Quoted forms are JSON strings.
struct ListItem {
  std::string key;  ///< "#" for an id
  std::string value;
  bool quotedKey = false;
};

/// Reads a braced list of items that blanks separate: `{#milk type=task color="dark red"}`. At least one
/// item.
class AttributeListReader {
 public:
  /// `text` begins with "{".
  explicit AttributeListReader(std::string_view text) : text_(text) {}

  /// Calls `take(ListItem&&)` for each item. False where the text is no such list (items may have been
  /// taken).
  template <class Take>
  bool read(Take&& take) {
    if (!open()) return false;
    do {
      std::optional<ListItem> item = nextItem();
      if (!item) return false;
      take(std::move(*item));
    } while (!close());
    return true;
  }
  /// Bytes that the list took, its braces included.
  std::size_t length() const { return at_; }

 private:
  bool open();
  bool close();
  void skipBlanks();
  std::optional<ListItem> nextItem();
  std::optional<std::string> word();

  std::string_view text_;
  std::size_t at_ = 0;
};

/// Appends `key=value`, quoting what must be; a key in `reserved` (a list like " type created ") is quoted
/// too.
void appendListItem(std::string& out, std::string_view key, std::string_view value,
                    std::string_view reserved = {});
/// Appends `#id`, with the id quoted where it must be.
void appendListId(std::string& out, std::string_view id);

/// Takes a JSON string literal off the front of `text` and decodes it; none, and nothing taken, where there
/// is none.
std::optional<std::string> takeJsonString(std::string_view& text);

/// What stands in braces at the end of a row's line: `{#milk type=task color=red}`.
struct RowTrailer {
  std::string persistentId;
  std::optional<RowType> type;
  std::optional<std::size_t> depth;  ///< only where the format does not keep times
  std::string created;               ///< as written; only where the format keeps times
  std::string modified;              ///< likewise
  Attributes attributes;

  bool empty() const {
    return persistentId.empty() && !type && !depth && created.empty() && modified.empty() &&
           attributes.empty();
  }
};

/// Takes the trailer off the end of the line, with the blanks before it. False where the line has none.
/// Unquoted keys mean what they say: `type` the row's type and, where times are kept, `created` and
/// `modified`, elsewhere `depth`.
bool takeTrailer(std::string_view& line, Times times, RowTrailer& trailer);

/// Appends the trailer in braces; nothing when it is empty.
void appendTrailer(std::string& out, Times times, const RowTrailer& trailer);

/// The trailer `now` in braces as it is written over `trailer`, the braces of before: items that still say
/// the same stay as they are written, with the blanks before them; the others are changed in place or go, and
/// new ones follow. Empty where nothing is left to say.
std::string rewriteTrailer(std::string_view trailer, Times times, const RowTrailer& now);

}  // namespace vell::formats
