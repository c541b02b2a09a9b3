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

/// Keeps what could not be saved, and returns the sentence that tells people where it is; nothing where it
/// cannot be kept either.
std::string keepUnsaved(const std::string& spare, const Pieces& content);

/// Encodes and writes; never throws.
SaveResult carryOut(SaveJob& job);

}  // namespace vell::headless
