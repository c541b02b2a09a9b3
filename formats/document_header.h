#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/rows.h"

namespace vell::formats {

/// Whose rules hold: those of `.vell`, or those of YAML, which other programs read in markdown.
enum class HeaderKind { vell, yaml };

/// `key: value` lines about the document: an unquoted `id` is the outline's persistent id and, in `.vell`,
/// `created` its creation time; all other keys are front matter. Keys and values may be JSON
/// strings. A value may go on over further lines that begin with a blank, "-", "#" or a closing bracket, in
/// YAML over any that tell no key; it is kept as it stands.
class DocumentHeader {
 public:
  explicit DocumentHeader(HeaderKind kind) : kind_(kind) {}

  /// False where the line is no header line.
  bool readLine(std::string_view line);
  /// False where only comments were read.
  bool hasKeys() const { return !lines_.empty(); }
  /// Hands what was read to the outline. False where the creation time is none.
  bool finish(Outline& outline) const;

  void write(std::string& out, const Outline& outline) const;
  /// The lines of a header that the outline was read from as they are to be now: only those of keys whose
  /// value has changed since are written anew, and new keys follow. The id is written only where there was
  /// one.
  std::string update(std::string_view lines, const Outline& outline) const;
  /// True if the lines of a header have that key.
  bool tells(std::string_view lines, std::string_view key) const;

 private:
  struct Line {
    std::string key;
    std::string value;
    bool quotedKey = false;
    std::size_t keyLength = 0;  ///< with the colon
  };

  static std::optional<Line> keyLine(std::string_view line);

  /// Where one key stands in a header.
  struct Entry {
    Line line = {};             ///< no key: what stands before the first one
    std::size_t begin = 0;      ///< of its key
    std::size_t valueFrom = 0;  ///< behind the colon and the blanks there
    std::size_t valueTo = 0;    ///< without the blank lines and comments that follow
    std::size_t end = 0;
  };
  std::vector<Entry> takeApart(std::string_view lines) const;
  std::string valueOver(std::string_view before, std::string_view value) const;
  const std::string* valueIn(const Line& line, const std::string& id, const Attributes& frontMatter) const;
  bool isVell() const { return kind_ == HeaderKind::vell; }
  bool isReserved(const Line& line) const { return !line.quotedKey && isReserved(line.key); }
  bool isReserved(std::string_view key) const { return key == "id" || (isVell() && key == "created"); }

  HeaderKind kind_;
  std::vector<Line> lines_;
};

/// The value of a key as YAML reads it back as this very string. `before` is the value that stood there: a
/// number, a date, "true" or "null" stays without quotes where another one stood without them.
std::string yamlValue(std::string_view value, std::string_view before);

}  // namespace vell::formats
