#pragma once

#include <functional>
#include <map>
#include <string>

#include "headless/storage/disk_writer.h"
#include "headless/storage/open_outline.h"
#include "headless/storage/scheduler.h"

namespace vell::headless {

/// Hears of what the saver did to an outline unasked.
class SaverListener {
 public:
  virtual ~SaverListener() = default;
  /// Its rows are others than before.
  virtual void reloaded(OpenOutline& opened) = 0;
  /// It is kept in another file than before.
  virtual void moved(OpenOutline& opened) = 0;
};

/// Brings changed outlines to disk shortly after each change, and follows what others write into their files.
///
/// A file that somebody else changed is never overwritten: where we have no changes of our own the outline is
/// read anew; else ours go into a file beside it, "name (conflict <time>).ext", and the outline is read anew.
class Saver {
 public:
  /// Gets a line for people: what was saved elsewhere, what could not be saved.
  using Report = std::function<void(const std::string&)>;

  Saver(Scheduler& scheduler, Report report, SaverListener& listener);

  void report(const std::string& line) const { report_(line); }
  /// Saves the outline soon, if it has changed since it was last saved.
  void changed(OpenOutline& opened);
  /// On disk, as far as it can be, when it returns.
  void flush(OpenOutline& opened);
  /// Why the outline could not be saved; empty where it could.
  std::string fault(const OpenOutline& opened) const;
  /// Writes what the outline holds to another path. Throws Problem.
  static void saveCopy(const OpenOutline& opened, const std::string& path);
  /// Keeps the outline in a new file at `path` from now on; the former file stays. Throws Problem, with
  /// nothing changed, also where there is a file at `path`.
  void saveAs(OpenOutline& opened, const std::string& path);
  /// Reads the outline anew where its file is no longer what it was and nothing of ours would be lost.
  void refresh(OpenOutline& opened);
  /// Forgets an outline that is about to go; changes not yet on their way to disk are dropped.
  void forget(OpenOutline& opened);

 private:
  /// Long enough for a burst of changes to share one write, short enough for nobody to miss it.
  static constexpr std::chrono::milliseconds usualPace{100};

  struct State {
    bool scheduled = false;
    bool writing = false;
    Scheduler::Timer timer{};
    std::string lastFault;
    FileStamp unreadable{};                       ///< what somebody wrote that is no outline
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
  Report report_;
  SaverListener& listener_;
  std::map<const OpenOutline*, State> states_;
  DiskWriter writer_;
};

}  // namespace vell::headless
