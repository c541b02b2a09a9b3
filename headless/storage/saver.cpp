#include "headless/storage/saver.h"

#include <algorithm>
#include <ctime>
#include <filesystem>

#include "headless/editing/problem.h"
#include "headless/storage/paths.h"

namespace vell::headless {
namespace {

using std::chrono::milliseconds;

/// Rows that are encoded within a few milliseconds.
constexpr std::size_t quicklyEncoded = 5'000;
constexpr milliseconds retryPace{2'000};

std::string encoded(const OpenOutline& opened, const formats::Format& format) {
  return formats::fileText(format, opened.outline());
}

std::string encoded(const OpenOutline& opened) { return encoded(opened, opened.format()); }

std::string conflictPath(const std::string& path) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char time[40];
  std::strftime(time, sizeof time, "%Y-%m-%d %H.%M.%S", &local);
  const std::filesystem::path original(path);
  std::error_code error;
  for (int n = 1;; ++n) {
    const std::string mark =
        " (conflict " + std::string(time) + (n > 1 ? " " + std::to_string(n) : std::string()) + ")";
    const std::string end = mark + original.extension().string();
    const std::string name = fittedName("", original.stem().string(), end);
    std::string candidate = (original.parent_path() / name).string();
    if (!std::filesystem::exists(candidate, error)) return candidate;
  }
}

}  // namespace

void Saver::changed(OpenOutline& opened) {
  if (!opened.isDirty()) return;
  State& state = states_[&opened];
  const auto now = Scheduler::Clock::now();
  if (!state.changedAt) state.changedAt = now;
  if (state.scheduled || state.writing) return;
  schedule(opened, std::max(*state.changedAt + usualPace - now, Scheduler::Clock::duration(0)));
}

void Saver::schedule(OpenOutline& opened, Scheduler::Clock::duration delay) {
  State& state = states_.at(&opened);
  state.scheduled = true;
  state.timer = scheduler_.after(delay, [this, outline = &opened] { save(*outline); });
}

void Saver::save(OpenOutline& opened) {
  State& state = states_.at(&opened);
  state.scheduled = false;
  try {
    startWriting(opened, state);
  } catch (const std::exception& failure) {
    retry(opened, "Cannot save " + opened.storagePath() + ": " + failure.what() + keep(opened, state.spare));
  }
}

/// What the outline holds without regard to its source, which may be what fails. Tells where it is.
std::string Saver::keep(const OpenOutline& opened, const std::string& spare) {
  try {
    std::string text;
    opened.format().write(opened.outline(), formats::placeAll(opened.outline()), false, text);
    replaceFile(spare, text, 0600);
    return unsavedIn(spare);
  } catch (const std::exception&) {
    return {};
  }
}

void Saver::startWriting(OpenOutline& opened, State& state) {
  locate(opened);
  if (state.spare.empty()) state.spare = container_.pathForUnsaved(fileName(opened.storagePath()));
  SaveJob job{opened.storagePath(), encoder(opened), opened.stamp(), state.spare};
  state.writing = true;
  state.changedAt.reset();
  const std::uint64_t revision = opened.outline().revision();
  writer_.write(std::move(job), [this, outline = &opened, revision](const SaveResult& result) {
    finish(*outline, revision, result);
  });
}

/// Encodes a small outline at once; a large one on the writer's thread, as a reader that changes wait for.
std::function<std::string()> Saver::encoder(OpenOutline& opened) {
  if (opened.outline().rowCount() <= quicklyEncoded)
    return [bytes = std::make_shared<std::string>(encoded(opened))] { return std::move(*bytes); };
  opened.outline().number();  // what is encoded is only read
  opened.users()->enter(Use::reading);
  // Destroyed with the job's encoder, whether that was called or not.
  const std::shared_ptr<Users> reading(opened.users().get(),
                                       [&scheduler = scheduler_, users = opened.users()](Users*) {
                                         scheduler.post([users] { users->leave(Use::reading); });
                                       });
  return [&opened, reading] { return encoded(opened); };
}

void Saver::finish(OpenOutline& opened, std::uint64_t revision, const SaveResult& result) {
  State& state = states_.at(&opened);
  state.writing = false;
  switch (result.kind) {
    case SaveResult::Kind::saved:
      state.lastFault.clear();
      opened.markSaved(revision, result.stamp, result.contentHash);
      if (result.anew && !state.gone) events_.report(opened.storagePath() + " was gone and is written again");
      state.gone = false;
      events_.saved(opened);
      return changed(opened);
    case SaveResult::Kind::conflict:
      return settleConflict(opened);
    case SaveResult::Kind::failed:
      return retry(opened, result.fault);
    case SaveResult::Kind::unencoded:
      return retry(opened,
                   "Cannot save " + opened.storagePath() + ": " + result.fault + keep(opened, state.spare));
  }
}

void Saver::settleConflict(OpenOutline& opened) {
  if (opened.acceptTouch()) return changed(opened);
  if (opened.users()->count() > 0) return schedule(opened, usualPace);
  try {
    const std::string bytes = encoded(opened);
    const Copy copy = writeConflictCopy(opened, bytes);
    states_[&opened].conflictCopy = copy.path;
    events_.report(opened.storagePath() + " was changed by another program: our changes are in " + copy.path);
    if (opened.reload()) return events_.reloaded(opened);
    opened.moveTo(copy.path, opened.format(), copy.stamp, hashOf(bytes));
    events_.moved(opened);
  } catch (const std::exception& failure) {
    retry(opened, failure.what());
  }
}

/// Beside the file, or in the container where its folder takes none.
Saver::Copy Saver::writeConflictCopy(const OpenOutline& opened, const std::string& bytes) const {
  const std::string beside = conflictPath(opened.storagePath());
  try {
    return {beside, replaceFile(beside, bytes)};
  } catch (const Problem&) {
    const std::string rescued = container_.pathForRescued(fileName(beside));
    return {rescued, replaceFile(rescued, bytes, 0600)};
  }
}

void Saver::flush(OpenOutline& opened) {
  writer_.drain();
  const auto found = states_.find(&opened);
  if (found != states_.end() && found->second.scheduled) scheduler_.cancel(found->second.timer);
  if (found != states_.end()) found->second.scheduled = false;
  if (!opened.isDirty()) return;
  states_[&opened];
  save(opened);
  writer_.drain();
}

std::string Saver::fault(const OpenOutline& opened) const {
  const auto found = states_.find(&opened);
  return found != states_.end() ? found->second.lastFault : std::string();
}

std::vector<std::string> Saver::faults(const OpenOutline& opened) const {
  const auto found = states_.find(&opened);
  if (found == states_.end()) return {};
  const State& state = found->second;
  const FileStamp now = stampOf(opened.storagePath());
  std::vector<std::string> faults;
  if (!state.lastFault.empty()) faults.push_back(state.lastFault);
  if (state.gone && now == FileStamp())
    faults.emplace_back("The file is gone; the next change writes it again");
  if (now != FileStamp() && now == state.unreadable)
    faults.emplace_back("Another program changed the file, and it can no longer be read");
  if (!state.conflictCopy.empty() && stampOf(state.conflictCopy) != FileStamp())
    faults.push_back("Another program changed the file: our changes are in " + state.conflictCopy);
  return faults;
}

std::string Saver::spare(const OpenOutline& opened) const {
  const auto found = states_.find(&opened);
  return found != states_.end() ? found->second.spare : std::string();
}

void Saver::saveAs(OpenOutline& opened, const std::string& path) {
  flush(opened);
  const formats::Format& format = fileFormat(path);
  const std::string bytes = encoded(opened, format);
  const FileStamp stamp = createFile(path, bytes);
  forget(opened);
  opened.moveTo(path, format, stamp, hashOf(bytes));
}

void Saver::follow(OpenOutline& opened, const std::string& path) {
  const auto found = states_.find(&opened);
  if (found != states_.end() && found->second.writing) return;
  if (locate(opened) != FileStamp()) return;
  const FileStamp there = stampOf(path);
  if (there.file != opened.stamp().file) return;
  opened.rename(path, there);
  events_.moved(opened);
}

void Saver::refresh(OpenOutline& opened) {
  if (opened.isDirty()) return;
  const FileStamp now = locate(opened);
  if (now == opened.stamp()) return;
  if (now == FileStamp()) return reportGone(opened);
  State& state = states_[&opened];
  state.gone = false;
  if (now == state.unreadable) return;
  if (opened.acceptTouch()) return events_.saved(opened);
  if (opened.reload()) return events_.reloaded(opened);
  state.unreadable = now;
  events_.report(opened.storagePath() + " was changed by another program and can no longer be read");
}

/// The stamp that the file has now, the default one where it is gone. Follows a file that was renamed.
FileStamp Saver::locate(OpenOutline& opened) {
  const FileStamp now = stampOf(opened.storagePath());
  const platform::FileIdentity known = opened.stamp().file;
  if (opened.stamp() == FileStamp() || now.file == known) return now;
  const auto place = renamedFile(opened.storagePath(), known);
  if (!place) return now;
  const FileStamp there = stampOf(*place);
  opened.rename(*place, there);
  events_.moved(opened);
  return there;
}

void Saver::reportGone(OpenOutline& opened) {
  State& state = states_[&opened];
  if (state.gone) return;
  state.gone = true;
  events_.gone(opened);
}

void Saver::forget(OpenOutline& opened) {
  writer_.drain();
  const auto found = states_.find(&opened);
  if (found == states_.end()) return;
  if (found->second.scheduled) scheduler_.cancel(found->second.timer);
  states_.erase(found);
}

void Saver::retry(OpenOutline& opened, const std::string& fault) {
  State& state = states_.at(&opened);
  schedule(opened, retryPace);
  if (fault == state.lastFault) return;
  state.lastFault = fault;
  events_.report(fault);
}

}  // namespace vell::headless
