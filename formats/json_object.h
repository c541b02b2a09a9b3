#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "json/document.h"

namespace vell::formats {

/// How people lay out JSON: what is new in their file looks like what is there.
struct JsonStyle {
  std::string lineBreak = {};  ///< empty where all stands on one line
  std::string unit = {};       ///< blanks that a level is indented by
  std::string colon = ":";
  std::string comma = ",";      ///< between values on one line
  bool spreadsObjects = false;  ///< each member of a row stands on a line of its own
  bool spreadsValues = false;   ///< and so does what is in a row's arrays and objects
  bool hasPlainTexts = false;   ///< a text without styles is a string
};

/// Appends JSON without blanks in that style. With `spreads` each value stands on its own line; the line
/// break and the blanks of the line that it begins on are `indent`.
void layOut(std::string& out, std::string_view compact, const JsonStyle& style, bool spreads,
            std::string_view indent);

/// What separates a value from the one before it, or the first one from the bracket: as another was.
std::string separatorLike(std::string_view separator, bool isFirst, const JsonStyle& style);

/// The text of an object whose members can be changed one at a time; all else stays as it was written.
class JsonObject {
 public:
  /// `indent` is that of the line on which the object begins; empty where it does not begin a line.
  JsonObject(std::string_view text, const JsonStyle& style, std::string_view indent);

  std::size_t size() const { return members_.size(); }
  const std::string& key(std::size_t index) const { return members_[index].member.key; }
  const json::Node& value(std::size_t index) const { return members_[index].member.value; }
  std::string_view valueText(std::size_t index) const;
  /// The line break and the blanks before a member, or those before the object.
  std::string_view indentOf(std::size_t index) const;
  /// True if its members stand on lines of their own.
  bool isSpread() const;
  /// What stands between two members on one line, where any do.
  std::optional<std::string> comma() const;
  /// What stands between the first key and its value.
  std::string colon() const;

  /// The member that counts, of those with that key.
  std::optional<std::size_t> find(std::string_view key) const;
  /// To a value without blanks, which is laid out; or as it stands.
  void set(std::size_t index, std::string_view compact);
  void replace(std::size_t index, std::string text) { members_[index].now = std::move(text); }
  void remove(std::size_t index) { members_[index].isRemoved = true; }
  /// A new member stands last, before the list of rows where that is last.
  void append(std::string_view key, std::string_view compact);
  /// In place, or at the end where there is none.
  void set(std::string_view key, std::string_view compact);
  void remove(std::string_view key);
  /// Appends an empty list.
  void appendList(std::string_view key);

  /// The object as it is now, as far as the opening bracket of that list, and the rest. All of it comes first
  /// where it has no such list.
  std::pair<std::string, std::string> split(std::string_view list) const;
  std::string text() const { return split({}).first; }

 private:
  struct Part {
    json::Member member;
    std::size_t end;  ///< of its value
    std::optional<std::string> now = {};
    bool isRemoved = false;
  };

  std::string_view slice(std::size_t begin, std::size_t end) const {
    return document_.text().substr(begin, end - begin);
  }
  std::string_view gapBefore(std::size_t index) const;
  std::string newGap() const;

  json::Document document_;
  const JsonStyle& style_;
  std::string indent_;
  std::vector<Part> members_;
  std::vector<std::pair<std::string, std::string>> added_;
  std::string list_;  ///< key of a list that is appended
};

}  // namespace vell::formats
