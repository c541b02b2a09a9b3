#pragma once

#include <functional>
#include <string>

#include "formats/file_text.h"
#include "headless/storage/files.h"

namespace vell::headless {

/// A file to be replaced, if it still looks as expected.
struct SaveJob {
  std::string path;
  /// Makes the text; dropped as soon as it is made.
  std::function<formats::FileText()> encode;
  FileStamp expected;
  /// Where the text is kept if it cannot be written there.
  std::string spare;
};

struct SaveResult {
  /// `conflict`: the file is not as expected and was left alone. `failed`, and `unencoded` where there is no
  /// text to write: `fault` says why.
  enum class Kind { saved, conflict, failed, unencoded };
  Kind kind;
  FileStamp stamp;
  std::string fault;
  bool anew = false;            ///< `saved`: the expected file was gone
  std::size_t contentHash = 0;  ///< `saved`: of the text
};

/// The sentence that tells people where the text is that could not be saved.
std::string unsavedIn(const std::string& spare);

/// Encodes and writes; never throws.
SaveResult carryOut(SaveJob& job);

}  // namespace vell::headless
