#include "headless/storage/saver.h"

#include <algorithm>
#include <ctime>
#include <filesystem>

#include "headless/editing/problem.h"

namespace vell::headless {
namespace {

using std::chrono::milliseconds;

/// The longest pause between two writes of an outline that takes long to write.
constexpr milliseconds slowestPace{2'000};
constexpr milliseconds retryPace{2'000};

std::string encoded(const OpenOutline& opened, const formats::Format& format) {
  return formats::fileText(format, opened.outline());
}

std::string encoded(const OpenOutline& opened) { return encoded(opened, opened.format()); }

std::string conflictPath(const std::string& path) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char text[40];
  const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%d %H.%M.%S", &local);
  const std::filesystem::path original(path);
  const std::string base =
      (original.parent_path() / original.stem()).string() + " (conflict " + std::string(text, length);
  std::string candidate = base + ")" + original.extension().string();
  for (int n = 2; std::filesystem::exists(candidate); ++n)
    candidate = base + " " + std::to_string(n) + ")" + original.extension().string();
  return candidate;
}

}  // namespace

void Saver::changed(OpenOutline& opened) {
  if (!opened.isDirty()) return;
  State& state = states_[&opened];
  if (!state.scheduled && !state.writing) schedule(opened, state.pace);
}

void Saver::schedule(OpenOutline& opened, Scheduler::Clock::duration delay) {
  State& state = states_.at(&opened);
  state.scheduled = true;
  state.timer = scheduler_.after(delay, [this, outline = &opened] { save(*outline); });
}

void Saver::save(OpenOutline& opened) {
  State& state = states_.at(&opened);
  state.scheduled = false;
  state.writing = true;
  const auto start = Scheduler::Clock::now();
  SaveJob job{opened.storagePath(), encoded(opened), opened.stamp()};
  const auto effort = Scheduler::Clock::now() - start;
  state.pace = std::clamp<Scheduler::Clock::duration>(effort * 10, usualPace, slowestPace);
  const Saved saved{opened.outline().revision(), hashOf(job.bytes)};
  writer_.write(std::move(job), [this, outline = &opened, saved](const SaveResult& result) {
    finish(*outline, saved, result);
  });
}

void Saver::finish(OpenOutline& opened, const Saved& saved, const SaveResult& result) {
  State& state = states_.at(&opened);
  state.writing = false;
  switch (result.kind) {
    case SaveResult::Kind::saved:
      state.lastFault.clear();
      opened.markSaved(saved.revision, result.stamp, saved.contentHash);
      return changed(opened);
    case SaveResult::Kind::conflict:
      return settleConflict(opened);
    case SaveResult::Kind::failed:
      reportOnce(state, result.fault);
      return schedule(opened, retryPace);
  }
}

void Saver::settleConflict(OpenOutline& opened) {
  if (opened.acceptTouch()) return changed(opened);
  const std::string copy = conflictPath(opened.storagePath());
  State& state = states_.at(&opened);
  try {
    const std::string bytes = encoded(opened);
    const FileStamp stamp = replaceFile(copy, bytes);
    events_.report(opened.storagePath() + " was changed by another program: our changes are in " + copy);
    if (opened.reload()) return events_.reloaded(opened);
    opened.moveTo(copy, stamp, hashOf(bytes));
    events_.moved(opened);
  } catch (const Problem& problem) {
    reportOnce(state, problem.what());
    schedule(opened, retryPace);
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

void Saver::saveCopy(const OpenOutline& opened, const std::string& path) {
  replaceFile(path, encoded(opened), 0600);
}

void Saver::saveAs(OpenOutline& opened, const std::string& path) {
  flush(opened);
  const std::string bytes = encoded(opened, fileFormat(path));
  const FileStamp stamp = createFile(path, bytes);
  forget(opened);
  opened.moveTo(path, stamp, hashOf(bytes));
}

void Saver::refresh(OpenOutline& opened) {
  if (opened.isDirty()) return;
  const FileStamp now = stampOf(opened.storagePath());
  if (now == opened.stamp() || now == FileStamp()) return;
  State& state = states_[&opened];
  if (now == state.unreadable) return;
  if (opened.acceptTouch()) return;
  if (opened.reload()) return events_.reloaded(opened);
  state.unreadable = now;
  events_.report(opened.storagePath() + " was changed by another program and can no longer be read");
}

void Saver::forget(OpenOutline& opened) {
  writer_.drain();
  const auto found = states_.find(&opened);
  if (found == states_.end()) return;
  if (found->second.scheduled) scheduler_.cancel(found->second.timer);
  states_.erase(found);
}

void Saver::reportOnce(State& state, const std::string& fault) {
  if (fault == state.lastFault) return;
  state.lastFault = fault;
  events_.report(fault);
}

}  // namespace vell::headless
