#pragma once

#include <gtest/gtest.h>

#include <string_view>

#include "tests/formats/changed_file.h"

namespace vell::formats {

/// A change to a file and the file behind it.
struct UpdateCase {
  const char* about;
  std::string_view source;
  void (*change)(ChangedFile& rows);
  std::string_view written;
};

/// Checks that the change is written so and that undoing it writes the source.
inline void checkUpdate(std::string_view format, const UpdateCase& row) {
  ChangedFile file(format, row.source);
  row.change(file);
  EXPECT_EQ(file.written(), row.written) << row.about;
  file.undo();
  EXPECT_EQ(file.written(), row.source) << row.about;
}

}  // namespace vell::formats
