#include "tests/formats/row_changes.h"

#include <gtest/gtest.h>

#include "formats/inline_markdown.h"

namespace vell::formats {

Text RowChanges::parse(std::string_view markdown) { return parseInline(markdown); }

void checkUpdate(std::string_view format, const UpdateCase& row) {
  RowChanges rows(format, row.source);
  row.change(rows);
  EXPECT_EQ(rows.written(), row.written) << row.about;
  EXPECT_EQ(rows.undone(), row.source) << row.about;
}

}  // namespace vell::formats
