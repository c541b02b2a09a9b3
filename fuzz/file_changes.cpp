// A file that is read, changed row by row and written reads back as the rows that the outline holds, and is
// as it was once the changes are undone. The input is a text; what follows a zero byte says which
// changes.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>

#include "tests/formats/changed_file.h"

using namespace vell::formats;

namespace {

void require(const std::string& fault, const ChangedFile& file) {
  if (fault.empty()) return;
  std::fprintf(stderr, "%s%s\n", file.story().c_str(), fault.c_str());
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  const std::size_t zero = input.find('\0');
  const std::string text = input.substr(0, zero);
  const std::string changes = zero == std::string::npos
                                  ? std::string(text.rbegin(), text.rend()).substr(0, 12)
                                  : input.substr(zero + 1);
  std::optional<ChangedFile> file;
  try {
    file.emplace(VELL_FORMAT, text);
  } catch (const FormatError&) {
    return 0;
  }
  require(file->differs(), *file);
  const bool readsBack = !file->isFaulty();
  for (std::size_t at = 0; at + 2 < changes.size() && at < 24 && file->outline().rowCount() > 0; at += 3) {
    const auto number = [&](std::size_t byte) { return static_cast<unsigned char>(changes[at + byte]); };
    file->change(number(0) % file->outline().rowCount(), static_cast<ChangeKind>(number(1) % changeKinds),
                 number(2));
    if (readsBack) require(file->readsOtherwise(), *file);
  }
  file->undo();
  require(file->differs(), *file);
  return 0;
}
