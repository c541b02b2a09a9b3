#include "headless/editing/result_json.h"

#include "formats/json_text.h"
#include "formats/json_writer.h"

namespace vell::headless {

void appendRows(std::string& out, const std::vector<const Row*>& rows) {
  out += '[';
  for (std::size_t index = 0; index < rows.size(); ++index) {
    if (index > 0) out += ',';
    formats::appendSessionRow(out, *rows[index]);
  }
  out += ']';
}

void appendUpdatedRows(std::string& out, const std::vector<UpdatedRow>& rows) {
  out += '[';
  for (const UpdatedRow& updated : rows) {
    if (&updated != &rows.front()) out += ',';
    out += "{\"row\":";
    formats::appendSessionRow(out, *updated.row);
    Attributes errors;
    for (const FieldError& error : updated.fieldErrors) errors.set(error.field, error.message);
    if (!errors.empty()) {
      out += ",\"fieldErrors\":";
      formats::appendJsonObject(out, errors);
    }
    out += '}';
  }
  out += ']';
}

}  // namespace vell::headless
