#pragma once

#include <functional>
#include <map>
#include <string>

#include "headless/storage/disk_writer.h"
#include "headless/storage/open_outline.h"
#include "headless/storage/scheduler.h"

namespace vell::headless {

/// Saves changed outlines shortly after each change, and follows what other programs write into their files.
///
/// A file that another program changed is never overwritten. Unsaved changes of ours go into a file beside
/// it, "name (conflict <time>).ext", and the outline is read anew.
class Saver {
 public:
  /// Called when something happens that nobody asked for.
  struct Events {
    /// A line for people: what was saved elsewhere, what could not be saved.
    std::function<void(const std::string&)> report;
    /// The outline's rows were read anew.
    std::function<void(OpenOutline&)> reloaded;
    /// The outline is kept in another file from now on.
    std::function<void(OpenOutline&)> moved;
  };

  Saver(Scheduler& scheduler, Events events)
      : scheduler_(scheduler), events_(std::move(events)), writer_(scheduler) {}

  /// Saves the outline soon, if it has changed since it was last saved.
  void changed(OpenOutline& opened);
  /// Saves the outline now; it is on disk when this returns, unless that fails.
  void flush(OpenOutline& opened);
  /// Why the outline could not be saved; empty where it could.
  std::string fault(const OpenOutline& opened) const;
  /// Writes what the outline holds to another path. Throws Problem.
  static void saveCopy(const OpenOutline& opened, const std::string& path);
  /// Keeps the outline in a new file at `path` from now on; the former file stays. Throws Problem, with
  /// nothing changed, also where there is a file at `path`.
  void saveAs(OpenOutline& opened, const std::string& path);
  /// Reads the outline anew if its file has changed and the outline has no unsaved changes.
  void refresh(OpenOutline& opened);
  /// Forgets an outline that is about to be closed; changes that are not being written yet are dropped.
  void forget(OpenOutline& opened);

 private:
  /// A burst of changes within this time shares one write.
  static constexpr std::chrono::milliseconds usualPace{100};

  struct State {
    bool scheduled = false;
    bool writing = false;
    Scheduler::Timer timer{};
    std::string lastFault;
    FileStamp unreadable{};                       ///< the stamp of a content that is no outline
    Scheduler::Clock::duration pace = usualPace;  ///< between a change and its saving
  };

  void save(OpenOutline& opened);
  struct Saved {
    std::uint64_t revision;
    std::size_t contentHash;
  };
  void finish(OpenOutline& opened, const Saved& saved, const SaveResult& result);
  void settleConflict(OpenOutline& opened);
  void schedule(OpenOutline& opened, Scheduler::Clock::duration delay);
  void reportOnce(State& state, const std::string& fault);

  Scheduler& scheduler_;
  Events events_;
  std::map<const OpenOutline*, State> states_;
  DiskWriter writer_;
};

}  // namespace vell::headless
