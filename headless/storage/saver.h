#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "headless/storage/background.h"
#include "headless/storage/container.h"
#include "headless/storage/open_outline.h"
#include "headless/storage/save_job.h"
#include "headless/storage/scheduler.h"

namespace vell::headless {

/// Saves changed outlines shortly after each change, and follows what other programs do to their files: a
/// file that was renamed is followed, one that was removed is written again with the next change.
///
/// A file that another program changed is never overwritten. Unsaved changes of ours go into a file beside
/// it, "name (conflict <time>).ext", and the outline is read anew. What cannot be saved is kept in the
/// container and tried again.
///
/// Files are read and written beside the application. While an outline is encoded others read it; while it
/// is read anew it has no other users.
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
      : scheduler_(scheduler), container_(container), events_(std::move(events)), background_(scheduler) {}

  /// Saves the outline soon, if it has changed since it was last saved. To be called while nobody is at work
  /// on a change of it.
  void changed(OpenOutline& opened);
  /// Writes the file of a new outline in the place of an empty one. Throws Problem.
  static void create(OpenOutline& opened);
  /// Saves the outline now; it is on disk when this returns, unless that fails. The caller must be its only
  /// user.
  void flush(OpenOutline& opened);
  /// Whether the outline's file is being written or read.
  bool isWorking(const OpenOutline& opened) const;
  /// Why the outline could not be saved; empty where it could.
  std::string fault(const OpenOutline& opened) const;
  /// What people should know of how the outline is kept: that it cannot be saved, that its file is gone or
  /// can no longer be read, where changes of ours are that met those of another program.
  std::vector<std::string> faults(const OpenOutline& opened) const;
  /// Where the container keeps what could not be saved.
  std::string spare(const OpenOutline& opened) const;
  /// Keeps the outline in a new file at `path` from now on; the former file stays. Throws Problem, with
  /// nothing changed, also where there is a file at `path`. The caller must be its only user.
  void saveAs(OpenOutline& opened, const std::string& path);
  /// Looks whether the outline's file was renamed; it may be at `path` now.
  void follow(OpenOutline& opened, const std::string& path);
  /// Begins to read the outline anew if its file has changed and the outline has no unsaved changes. Nobody
  /// must be using it; nobody can until that is done.
  void refresh(OpenOutline& opened);
  /// Frees what nobody uses any more, beside the application.
  void free(std::shared_ptr<void> unused);
  /// Forgets an outline that is about to be closed; changes that are not being written yet are dropped.
  void forget(OpenOutline& opened);

 private:
  /// A burst of changes within this time shares one write.
  static constexpr std::chrono::milliseconds usualPace{50};

  struct State {
    bool scheduled = false;
    bool overdue = false;   ///< scheduled again, since somebody was at work on a change
    bool working = false;   ///< the file is being written or read
    bool flushing = false;  ///< the outline's only user waits for the file
    Scheduler::Timer timer{};
    std::optional<Scheduler::Clock::time_point> changedAt;  ///< the first change that is not being saved
    std::string lastFault;
    std::string spare;
    std::string conflictCopy;
    bool gone = false;       ///< the file is, and that was reported
    FileStamp unreadable{};  ///< the stamp of a content that is no outline
  };

  /// A file that others have changed while there were changes of ours.
  struct Conflict {
    Rereading theirs;
    // Ours, in a file of its own.
    std::string path{};
    FileStamp stamp{};
    std::size_t contentHash = 0;
    std::string fault{};  ///< why there is none
  };

  /// That of an outline which had nothing to save or read yet where there is none.
  const State& stateOf(const OpenOutline& opened) const;
  void schedule(OpenOutline& opened, Scheduler::Clock::duration delay);
  void cancelTimer(State& state);
  void onTimer(OpenOutline& opened);
  void save(OpenOutline& opened);
  void startWriting(OpenOutline& opened, State& state);
  std::function<formats::FileText()> encoder(OpenOutline& opened, const std::string& spare);
  void finish(OpenOutline& opened, std::uint64_t revision, const SaveResult& result);
  void changedMeanwhile(OpenOutline& opened);
  void retry(OpenOutline& opened, const std::string& fault);
  void waitForWork(const OpenOutline& opened);

  void readAnew(OpenOutline& opened, const FileStamp& now);
  void takeOver(OpenOutline& opened, FileRows rows);
  void settleConflict(OpenOutline& opened);
  void keepOurs(const OpenOutline& opened, Conflict& conflict) const;
  void finishConflict(OpenOutline& opened, Conflict& conflict);
  FileStamp locate(OpenOutline& opened);
  void reportGone(OpenOutline& opened);

  Scheduler& scheduler_;
  const Container& container_;
  Events events_;
  std::map<const OpenOutline*, State> states_;
  Background background_;
};

}  // namespace vell::headless
