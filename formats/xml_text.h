#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vell::formats {

/// How a text becomes part of an XML document.
struct XmlStyle {
  char quote = '"';
  bool isAscii = false;  ///< characters beyond ASCII become references
  /// What stands in its place: references to entities of the document's own (`&company;`) stay as they are.
  std::string_view before = {};
};

/// Appends a text as it stands in an attribute or an element. Characters that no XML text can hold are
/// replaced by U+FFFD; blanks that readers would change become references.
void appendXml(std::string& out, std::string_view text, const XmlStyle& style = {});

/// True for a name that an attribute or element can have without a prefix.
bool isXmlName(std::string_view name);

/// A start tag whose attributes can be changed one at a time; all else stays as it was written.
class XmlTag {
 public:
  /// `<name …>` or `<name …/>` of a document that could be read.
  XmlTag(std::string_view tag, bool isAscii);

  std::size_t size() const { return attributes_.size(); }
  std::string_view name(std::size_t index) const { return attributes_[index].name; }
  /// What the attribute said.
  const std::string& value(std::size_t index) const { return attributes_[index].value; }
  void set(std::size_t index, const std::string& value);
  void remove(std::size_t index) { attributes_[index].isRemoved = true; }
  void append(std::string_view name, std::string_view value);

  /// The attribute of that name that counts: the last one, where some program repeats it.
  std::optional<std::size_t> find(std::string_view name) const;
  /// In place, or at the end where there is none.
  void set(std::string_view name, const std::string& value);
  void remove(std::string_view name);

  /// The tag as it is now; with `opens` it does not close its element.
  std::string text(bool opens) const;

 private:
  struct Part {
    std::string_view blanks;  ///< before it
    std::string_view name;
    std::string_view assigned;  ///< "=" with the blanks around it
    std::string_view quoted;
    std::string value;
    std::optional<std::string> now = {};
    bool isRemoved = false;
  };

  void scan(std::string_view tag);
  void decode(std::string_view tag);

  bool isAscii_;
  std::string_view start_;  ///< "<name"
  std::vector<Part> attributes_;
  std::string_view blanks_;  ///< before the end
  bool closesItself_ = false;
  std::vector<std::pair<std::string, std::string>> added_;
};

/// How pugixml is to read values.
extern const unsigned xmlValues;
/// A value that it read: references to what is no character are U+FFFD.
std::string xmlValue(const char* read);

/// Bytes of the start tag that the text begins with.
std::size_t xmlTagLength(std::string_view text);

}  // namespace vell::formats
