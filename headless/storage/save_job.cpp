#include "headless/storage/save_job.h"

#include "headless/editing/problem.h"

namespace vell::headless {
namespace {

/// Tells where the bytes are that could not be saved; nothing where they cannot be kept either.
std::string keep(const SaveJob& job, const std::string& bytes) {
  try {
    replaceFile(job.spare, bytes, 0600);
    return unsavedIn(job.spare);
  } catch (const std::exception&) {
    return {};
  }
}

}  // namespace

SaveResult carryOut(SaveJob& job) {
  std::string bytes;
  try {
    bytes = job.encode();
    job.encode = nullptr;  // and what it held
  } catch (const std::exception& failure) {
    return {SaveResult::Kind::unencoded, {}, failure.what()};
  }
  try {
    const auto replaced = replaceExpected(job.path, bytes, job.expected, job.spare);
    if (!replaced) return {SaveResult::Kind::conflict, {}, {}};
    removeFile(job.spare);
    const bool anew = replaced->anew && job.expected != FileStamp();
    return {SaveResult::Kind::saved, replaced->stamp, {}, anew, hashOf(bytes)};
  } catch (const std::exception& failure) {
    return {SaveResult::Kind::failed, {}, failure.what() + keep(job, bytes)};
  }
}

std::string unsavedIn(const std::string& spare) { return ". What is not saved is in " + spare; }

}  // namespace vell::headless
