#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "formats/rows.h"

namespace vell::formats {

/// `key: value` lines about the document: an unquoted `id` is the outline's persistent id and, where times
/// are kept, `created` its creation time; all other keys are front matter. Keys and values may be JSON
/// strings. A value may go on over further lines that begin with a blank, "-" or "#"; it is kept as it
/// stands.
class DocumentHeader {
 public:
  explicit DocumentHeader(bool keepsTimes) : keepsTimes_(keepsTimes) {}

  /// False where the line is no header line.
  bool readLine(std::string_view line);
  /// Hands what was read to the outline. False where the creation time is none.
  bool finish(Outline& outline) const;

  void write(std::string& out, const Outline& outline) const;

 private:
  struct Line {
    std::string key;
    std::string value;
    bool quotedKey;
  };

  bool isReserved(std::string_view key) const { return key == "id" || (keepsTimes_ && key == "created"); }

  bool keepsTimes_;
  std::vector<Line> lines_;
};

}  // namespace vell::formats
