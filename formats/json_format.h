#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include "formats/rows.h"
#include "json/document.h"
#include "json/writer.h"

// Rows and their parts as JSON.
namespace vell::formats {

/// One row in session shape without its children: what changes to rows are answered with.
void writeSessionRow(json::Writer& writer, const Row& row);
/// {"key":"value",…}
void writeAttributes(json::Writer& writer, const Attributes& attributes);
/// [{"string":"…","attrs":{…}},…]
void writeRuns(json::Writer& writer, const Text& text);

/// A JSON value that is not what stands for a row or its part.
class ShapeError : public std::runtime_error {
 public:
  ShapeError(const std::string& fault, const json::Node& node)
      : std::runtime_error(fault), offset_(node.offset()) {}
  /// Bytes from the start of the JSON text to the value.
  std::size_t offset() const { return offset_; }

 private:
  std::size_t offset_;
};

/// Rich text from an array of runs. Throws ShapeError.
Text readRuns(const json::Node& node);
/// Attributes from the text of an object of strings. Throws FormatError.
Attributes readAttributes(std::string_view text);

}  // namespace vell::formats
