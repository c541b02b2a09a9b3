#include "headless/storage/save_job.h"

namespace vell::headless {

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
    return {SaveResult::Kind::failed, {}, failure.what() + keepUnsaved(job.spare, content)};
  }
}

std::string keepUnsaved(const std::string& spare, const Pieces& content) {
  try {
    replaceFile(spare, content, 0600);
    return ". What is not saved is in " + spare;
  } catch (const std::exception&) {
    return {};
  }
}

}  // namespace vell::headless
