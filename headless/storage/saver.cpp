#include "headless/storage/saver.h"

#include <algorithm>
#include <filesystem>

#include "evaluation/clock.h"
#include "headless/access.h"
#include "headless/editing/problem.h"
#include "headless/storage/paths.h"
#include "platform/allocator.h"

namespace vell::headless {
namespace {

using std::chrono::milliseconds;

/// Rows that are encoded within a few milliseconds.
constexpr std::size_t quicklyEncoded = 1'000;
constexpr milliseconds retryPace{2'000};

formats::FileText encoded(const OpenOutline& opened, const formats::Format& format) {
  return formats::fileText(format, opened.outline());
}

/// What the outline holds without regard to its source, which may be what fails. Tells where it is.
std::string keep(const OpenOutline& opened, const std::string& spare) {
  try {
    std::string text;
    opened.format().write(opened.outline(), formats::placeAll(opened.outline()), false, text);
    return keepUnsaved(spare, {text});
  } catch (const std::exception&) {
    return {};
  }
}

/// Sets a flag for as long as it lives.
struct Raised {
  explicit Raised(bool& toSet) : flag(toSet) { flag = true; }
  ~Raised() { flag = false; }
  Raised(const Raised&) = delete;
  Raised& operator=(const Raised&) = delete;

  bool& flag;
};

std::string conflictPath(const std::string& path) {
  std::string time = evaluation::wallClockText(evaluation::SystemClock().now());
  std::replace(time.begin(), time.end(), ':', '.');
  const std::filesystem::path original(path);
  std::error_code error;
  for (int n = 1;; ++n) {
    const std::string mark = " (conflict " + time + (n > 1 ? " " + std::to_string(n) : std::string()) + ")";
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
  if (state.overdue) {
    cancelTimer(state);
    return save(opened);
  }
  if (state.scheduled || state.working) return;
  schedule(opened, std::max(*state.changedAt + usualPace - now, Scheduler::Clock::duration(0)));
}

void Saver::schedule(OpenOutline& opened, Scheduler::Clock::duration delay) {
  State& state = states_.at(&opened);
  state.scheduled = true;
  state.timer = scheduler_.after(delay, [this, outline = &opened] { onTimer(*outline); });
}

void Saver::cancelTimer(State& state) {
  if (state.scheduled) scheduler_.cancel(state.timer);
  state.scheduled = state.overdue = false;
}

void Saver::onTimer(OpenOutline& opened) {
  State& state = states_.at(&opened);
  state.scheduled = state.overdue = false;
  opened.users()->isChanging() ? changedMeanwhile(opened) : save(opened);
}

void Saver::save(OpenOutline& opened) {
  State& state = states_.at(&opened);
  if (!opened.isDirty() || state.working) return;
  try {
    startWriting(opened, state);
  } catch (const std::exception& failure) {
    retry(opened, "Cannot save " + opened.storagePath() + ": " + failure.what());
  }
}

void Saver::startWriting(OpenOutline& opened, State& state) {
  locate(opened);
  if (state.spare.empty()) state.spare = container_.pathForUnsaved(fileName(opened.storagePath()));
  const auto job = std::make_shared<SaveJob>(
      SaveJob{opened.storagePath(), encoder(opened, state.spare), opened.stamp(), state.spare});
  const auto result = std::make_shared<SaveResult>();
  const std::uint64_t revision = opened.outline().revision();
  background_.run([job, result] { *result = carryOut(*job); },
                  [this, &opened, revision, result] { finish(opened, revision, *result); });
  state.working = true;
  state.changedAt.reset();
}

/// Encodes a small outline at once; a large one beside the application, as a reader that changes wait for.
std::function<formats::FileText()> Saver::encoder(OpenOutline& opened, const std::string& spare) {
  auto encode = [&opened, spare] {
    try {
      return encoded(opened, opened.format());
    } catch (const std::exception& failure) {
      throw Problem(failure.what() + keep(opened, spare));
    }
  };
  if (opened.outline().rowCount() <= quicklyEncoded)
    return [text = std::make_shared<formats::FileText>(encode())] { return std::move(*text); };
  opened.users()->enter(Use::reading);
  // Destroyed with the job's encoder, whether that was called or not.
  const std::shared_ptr<Users> reading(opened.users().get(),
                                       [&scheduler = scheduler_, users = opened.users()](Users*) {
                                         scheduler.post([users] { users->leave(Use::reading); });
                                       });
  return [encode, reading] { return encode(); };
}

void Saver::finish(OpenOutline& opened, std::uint64_t revision, const SaveResult& result) {
  State& state = states_.at(&opened);
  state.working = false;
  switch (result.kind) {
    case SaveResult::Kind::saved:
      state.lastFault.clear();
      opened.markSaved(revision, result.stamp, result.contentHash);
      if (result.anew && !state.gone) events_.report(opened.storagePath() + " was gone and is written again");
      state.gone = false;
      events_.saved(opened);
      return changedMeanwhile(opened);
    case SaveResult::Kind::conflict:
      return settleConflict(opened);
    case SaveResult::Kind::failed:
      return retry(opened, result.fault);
    case SaveResult::Kind::unencoded:
      return retry(opened, "Cannot save " + opened.storagePath() + ": " + result.fault);
  }
}

/// A change that somebody is at work on is saved with its end, or, where it comes to nothing, a moment later.
void Saver::changedMeanwhile(OpenOutline& opened) {
  if (!opened.users()->isChanging()) return changed(opened);
  states_.at(&opened).overdue = true;
  schedule(opened, usualPace);
}

void Saver::settleConflict(OpenOutline& opened) {
  State& state = states_.at(&opened);
  if (!state.flushing && opened.users()->count() > 0) return schedule(opened, usualPace);
  const auto conflict = std::make_shared<Conflict>(Conflict{Rereading(opened)});
  background_.run(
      [this, &opened, conflict] {
        conflict->theirs.run();
        if (!conflict->theirs.isSame()) keepOurs(opened, *conflict);
      },
      [this, &opened, conflict] { finishConflict(opened, *conflict); });
  opened.users()->enter(Use::changing);
  state.working = true;
}

/// In a file beside the other one, or in the container where its folder takes none.
void Saver::keepOurs(const OpenOutline& opened, Conflict& conflict) const {
  try {
    const formats::FileText text = encoded(opened, opened.format());
    const Pieces content = text.pieces();
    conflict.contentHash = hashOf(content);
    conflict.path = conflictPath(opened.storagePath());
    try {
      conflict.stamp = replaceFile(conflict.path, content);
    } catch (const Problem&) {
      conflict.path = container_.pathForRescued(fileName(conflict.path));
      conflict.stamp = replaceFile(conflict.path, content, 0600);
    }
  } catch (const std::exception& failure) {
    conflict.fault = failure.what();
  }
}

void Saver::finishConflict(OpenOutline& opened, Conflict& conflict) {
  states_.at(&opened).working = false;
  opened.users()->leave(Use::changing);
  if (conflict.theirs.isSame()) {
    opened.acceptTouch(conflict.theirs.stamp());
    return changedMeanwhile(opened);
  }
  if (!conflict.fault.empty()) return retry(opened, conflict.fault);
  states_.at(&opened).conflictCopy = conflict.path;
  events_.report(opened.storagePath() + " was changed by another program: our changes are in " +
                 conflict.path);
  if (auto rows = conflict.theirs.takeRows()) return takeOver(opened, std::move(*rows));
  opened.moveTo(conflict.path, opened.format(), conflict.stamp, conflict.contentHash);
  events_.moved(opened);
}

void Saver::create(OpenOutline& opened) {
  const formats::FileText text = encoded(opened, opened.format());
  const Pieces content = text.pieces();
  FileStamp stamp;
  beside([&] { stamp = replaceFile(opened.storagePath(), content); });
  opened.markSaved(opened.outline().revision(), stamp, hashOf(content));
}

void Saver::flush(OpenOutline& opened) {
  waitForWork(opened);
  for (int attempt = 0; attempt < 3 && opened.isDirty(); ++attempt) {
    State& state = states_[&opened];
    cancelTimer(state);
    const Raised flushing(state.flushing);
    save(opened);
    waitForWork(opened);
  }
}

const Saver::State& Saver::stateOf(const OpenOutline& opened) const {
  static const State untouched;
  const auto found = states_.find(&opened);
  return found != states_.end() ? found->second : untouched;
}

bool Saver::isWorking(const OpenOutline& opened) const { return stateOf(opened).working; }

/// Until the outline's file is neither written nor read.
void Saver::waitForWork(const OpenOutline& opened) {
  if (!isWorking(opened)) return;
  ApplicationHold* const hold = ApplicationHold::current();
  if (hold == nullptr) return background_.drain();
  while (isWorking(opened)) hold->waitForOthers();
}

std::string Saver::fault(const OpenOutline& opened) const { return stateOf(opened).lastFault; }

std::vector<std::string> Saver::faults(const OpenOutline& opened) const {
  const State& state = stateOf(opened);
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

std::string Saver::spare(const OpenOutline& opened) const { return stateOf(opened).spare; }

void Saver::saveAs(OpenOutline& opened, const std::string& path) {
  flush(opened);
  const formats::Format& format = fileFormat(path);
  std::size_t contentHash = 0;
  FileStamp stamp;
  beside([&] {
    const formats::FileText text = encoded(opened, format);
    const Pieces content = text.pieces();
    contentHash = hashOf(content);
    stamp = createFile(path, content);
  });
  forget(opened);
  opened.moveTo(path, format, stamp, contentHash);
}

void Saver::follow(OpenOutline& opened, const std::string& path) {
  if (isWorking(opened)) return;
  if (locate(opened) != FileStamp()) return;
  const FileStamp there = stampOf(path);
  if (there.file != opened.stamp().file) return;
  opened.rename(path, there);
  events_.moved(opened);
}

void Saver::refresh(OpenOutline& opened) {
  if (opened.isDirty() || isWorking(opened)) return;
  const FileStamp now = locate(opened);
  if (now != FileStamp() && stateOf(opened).gone) states_.at(&opened).gone = false;
  if (now == opened.stamp()) return;
  if (now == FileStamp()) return reportGone(opened);
  if (now != states_[&opened].unreadable) readAnew(opened, now);
}

void Saver::readAnew(OpenOutline& opened, const FileStamp& now) {
  State& state = states_.at(&opened);
  const auto reading = std::make_shared<Rereading>(opened);
  background_.run(
      [reading] { reading->run(); },
      [this, &opened, &state, reading, now] {
        state.working = false;
        opened.users()->leave(Use::changing);
        if (reading->isSame()) {
          opened.acceptTouch(reading->stamp());
          return events_.saved(opened);
        }
        if (auto rows = reading->takeRows()) return takeOver(opened, std::move(*rows));
        state.unreadable = now;
        events_.report(opened.storagePath() + " was changed by another program and can no longer be read");
      });
  opened.users()->enter(Use::changing);
  state.working = true;
}

void Saver::takeOver(OpenOutline& opened, FileRows rows) {
  free(opened.takeOver(std::move(rows)));
  events_.reloaded(opened);
}

void Saver::free(std::shared_ptr<void> unused) {
  background_.run(
      [unused = std::move(unused)]() mutable {
        unused.reset();
        platform::returnFreedMemory();
      },
      nullptr);
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
  waitForWork(opened);
  const auto found = states_.find(&opened);
  if (found == states_.end()) return;
  cancelTimer(found->second);
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
