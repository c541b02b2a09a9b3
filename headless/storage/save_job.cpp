#include "headless/storage/save_job.h"

#include "headless/editing/problem.h"

namespace vell::headless {
namespace {

/// Tells where the text is that could not be saved; nothing where it cannot be kept either.
std::string keep(const SaveJob& job, const Pieces& content) {
  try {
    replaceFile(job.spare, content, 0600);
    return unsavedIn(job.spare);
  } catch (const std::exception&) {
    return {};
  }
}

}  // namespace

SaveResult carryOut(SaveJob& job) {
  std::optional<formats::FileText> text;
  try {
    text = job.encode();
    job.encode = nullptr;  // and what it held
  } catch (const std::exception& failure) {
    return {SaveResult::Kind::unencoded, {}, failure.what()};
  }
  const Pieces content = text->pieces();
  try {
    const auto replaced = replaceExpected(job.path, content, job.expected, job.spare);
    if (!replaced) return {SaveResult::Kind::conflict, {}, {}};
    removeFile(job.spare);
    const bool anew = replaced->anew && job.expected != FileStamp();
    return {SaveResult::Kind::saved, replaced->stamp, {}, anew, hashOf(content)};
  } catch (const std::exception& failure) {
    return {SaveResult::Kind::failed, {}, failure.what() + keep(job, content)};
  }
}

std::string unsavedIn(const std::string& spare) { return ". What is not saved is in " + spare; }

}  // namespace vell::headless
