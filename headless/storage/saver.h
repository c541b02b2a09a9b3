#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "headless/storage/container.h"
#include "headless/storage/disk_writer.h"
#include "headless/storage/open_outline.h"
#include "headless/storage/scheduler.h"

namespace vell::headless {

/// Saves changed outlines shortly after each change, and follows what other programs do to their files: a
/// file that was renamed is followed, one that was removed is written again with the next change.
///
/// A file that another program changed is never overwritten. Unsaved changes of ours go into a file beside
/// it, "name (conflict <time>).ext", and the outline is read anew. What cannot be saved is kept in the
/// container and tried again.
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
    /// The outline was saved: its file may be a new one under the same name.
    std::function<void(OpenOutline&)> saved;
    /// The file of an outline without unsaved changes is no longer there; once for as long as it is not.
    std::function<void(OpenOutline&)> gone;
  };

  Saver(Scheduler& scheduler, const Container& container, Events events)
      : scheduler_(scheduler), container_(container), events_(std::move(events)), writer_(scheduler) {}

  /// Saves the outline soon, if it has changed since it was last saved.
  void changed(OpenOutline& opened);
  /// Saves the outline now; it is on disk when this returns, unless that fails.
  void flush(OpenOutline& opened);
  /// Why the outline could not be saved; empty where it could.
  std::string fault(const OpenOutline& opened) const;
  /// What people should know of how the outline is kept: that it cannot be saved, that its file is gone or
  /// can no longer be read, where changes of ours are that met those of another program.
  std::vector<std::string> faults(const OpenOutline& opened) const;
  /// Where the container keeps what could not be saved.
  std::string spare(const OpenOutline& opened) const;
  /// Keeps the outline in a new file at `path` from now on; the former file stays. Throws Problem, with
  /// nothing changed, also where there is a file at `path`.
  void saveAs(OpenOutline& opened, const std::string& path);
  /// Looks whether the outline's file was renamed; it may be at `path` now.
  void follow(OpenOutline& opened, const std::string& path);
  /// Reads the outline anew if its file has changed and the outline has no unsaved changes.
  void refresh(OpenOutline& opened);
  /// Forgets an outline that is about to be closed; changes that are not being written yet are dropped.
  void forget(OpenOutline& opened);

 private:
  /// A burst of changes within this time shares one write.
  static constexpr std::chrono::milliseconds usualPace{50};

  struct State {
    bool scheduled = false;
    bool writing = false;
    Scheduler::Timer timer{};
    std::optional<Scheduler::Clock::time_point> changedAt;  ///< the first change that is not being saved
    std::string lastFault;
    std::string spare;
    std::string conflictCopy;
    bool gone = false;       ///< the file is, and that was reported
    FileStamp unreadable{};  ///< the stamp of a content that is no outline
  };

  struct Copy {
    std::string path;
    FileStamp stamp;
  };

  void save(OpenOutline& opened);
  void startWriting(OpenOutline& opened, State& state);
  void finish(OpenOutline& opened, std::uint64_t revision, const SaveResult& result);
  void settleConflict(OpenOutline& opened);
  Copy writeConflictCopy(const OpenOutline& opened, const std::string& bytes) const;
  void schedule(OpenOutline& opened, Scheduler::Clock::duration delay);
  void retry(OpenOutline& opened, const std::string& fault);
  std::function<std::string()> encoder(OpenOutline& opened);
  static std::string keep(const OpenOutline& opened, const std::string& spare);
  FileStamp locate(OpenOutline& opened);
  void reportGone(OpenOutline& opened);

  Scheduler& scheduler_;
  const Container& container_;
  Events events_;
  std::map<const OpenOutline*, State> states_;
  DiskWriter writer_;
};

}  // namespace vell::headless
