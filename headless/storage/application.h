#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "document/timestamp.h"
#include "headless/editing/transaction.h"
#include "headless/storage/container.h"
#include "headless/storage/folders.h"
#include "headless/storage/known_files.h"
#include "headless/storage/open_outline.h"
#include "headless/storage/outline_list.h"
#include "headless/storage/saver.h"

namespace vell::headless {

/// Is told what happens to the open outlines, on the application's thread.
class ApplicationListener {
 public:
  virtual ~ApplicationListener() = default;
  /// Rows or the editor changed.
  virtual void outlineChanged(OpenOutline& opened) = 0;
  virtual void outlineClosing(OpenOutline& opened) = 0;
  /// The list of open outlines, their order or a summary changed.
  virtual void listChanged() = 0;
};

struct ApplicationSettings {
  /// The directory for files of the application's own; it must exist.
  std::string container;
  /// Takes lines for people about what nobody asked for just now.
  std::function<void(const std::string&)> report;
  /// What the application calls itself to scripts.
  std::string version = "dev";
  /// The executable that evaluates scripts: vell-headless.
  std::string scriptProgram{};
  /// Takes lines that people may miss; `report` takes them where there is none.
  std::function<void(const std::string&)> log{};
};

/// The open outlines, frontmost first: opening, finding, saving and closing them. One outline per file, one
/// editor per outline. Not safe for use by several threads.
class Application {
 public:
  /// The scheduler must outlive the application.
  Application(Scheduler& scheduler, ApplicationSettings settings);

  ~Application();

  /// Opens the file, or finds it open, and brings it to front. Throws Problem.
  OpenOutline& open(const std::string& path);
  /// The same behind the open ones.
  OpenOutline& openBehind(const std::string& path);
  /// Opens the outline files below the folder behind the open ones, and from now on those that come; closes
  /// those that go, unless they have unsaved changes. Returns how many there are now. Throws Problem.
  std::size_t serveFolder(const std::string& path);
  const Folders& folders() const { return folders_; }
  /// Why the file could not be opened when that was last tried; nothing once it is open or has changed.
  std::optional<std::string> refusal(const std::string& path) const;
  /// Opens a new outline, which is kept in the container in that format, and brings it to front.
  OpenOutline& newUntitled(const formats::Format& format);
  /// Opens the untitled outlines of earlier runs, behind the open ones.
  void reopenUntitled();
  void bringToFront(const OpenOutline& outline);
  /// Keeps the outline in a new file from now on, in the format of its name; "Untitled" files are removed,
  /// others stay. Throws Problem, also if there is a file at `path`.
  void saveAs(OpenOutline& outline, const std::string& path);
  /// Saves the outline and closes it; an untitled outline stays in the container, from where its persistent
  /// id opens it again. `discard` drops unsaved changes and the file of an untitled outline. Throws Problem
  /// if the outline cannot be saved.
  void close(OpenOutline& outline, bool discard);
  /// Saves every outline. One that cannot be saved in its place is saved in the container. False if even
  /// that failed.
  bool saveAll();

  const OutlineList::Outlines& outlines() const { return outlines_.all(); }
  // Null where none is open.
  OpenOutline* findByPath(const std::string& path) const { return outlines_.findByPath(path); }
  OpenOutline* findByPersistentId(const std::string& id) const { return outlines_.findByPersistentId(id); }
  OpenOutline* findByEditor(const std::string& id) const { return outlines_.findByEditor(id); }

  /// The outline of that persistent id, the frontmost one where none is given. Throws Problem.
  OpenOutline& outline(const std::optional<std::string>& persistentId);
  /// The outline whose editor has that id, the frontmost one where none is given. Throws Problem.
  OpenOutline& outlineOfEditor(const std::optional<std::string>& editorId);

  const ApplicationSettings& settings() const { return settings_; }
  /// When it started.
  document::Timestamp since() const { return since_; }
  /// A line for people.
  void report(const std::string& line) const { settings_.report(line); }
  /// The same where nothing is amiss.
  void log(const std::string& line) const { settings_.log ? settings_.log(line) : settings_.report(line); }
  /// What people should know of how an outline is kept, a sentence each.
  std::vector<std::string> faults(const OpenOutline& opened) const { return saver_.faults(opened); }

  /// Begins to read the outline anew where another program has changed its file, and nobody is at work on it.
  void refresh(OpenOutline& opened);
  /// Begins changes to an outline. Committing them calls `changed`.
  Transaction begin(OpenOutline& opened, History::Group group = History::noGroup);
  /// Saves changes of rows and notifies the listener; called after every change of rows or editor.
  void changed(OpenOutline& opened);
  /// The listener must outlive the application or be removed.
  void setListener(ApplicationListener* listener) { listener_ = listener; }

 private:
  /// A file that could not be opened, as it was then.
  struct Refusal {
    FileStamp stamp;
    std::string reason;
  };

  void moved(OpenOutline& opened);
  void notifyChanged(OpenOutline& opened);
  void notifyListChanged();
  bool isKeptByUs(const OpenOutline& outline) const;
  OpenOutline& frontmost();
  void followFiles();
  OpenOutline* findRenamed(const std::string& path);
  std::unique_ptr<OpenOutline> read(const std::string& path);
  void removeAbandonedBeside(const std::string& path);
  void identify(OpenOutline& opened);
  void reportIdFault(const OpenOutline& opened) const;
  OpenOutline& add(std::unique_ptr<OpenOutline> opened);
  OpenOutline& addBehind(std::unique_ptr<OpenOutline> opened);
  OpenOutline* findOpen(const std::string& path);
  bool take(FoundFile file);
  void takeNew(std::vector<FoundFile> files);
  void gone(const OpenOutline& opened);
  void closeGone(const std::string& path);
  void setAside(OpenOutline& outline);
  bool rescue(const OpenOutline& outline);
  void rescueLeftovers();

  Scheduler& scheduler_;
  Scheduler::Timer filesTimer_{};
  ApplicationSettings settings_;
  document::Timestamp since_ = document::currentTime();
  Container container_;
  KnownFiles knownFiles_;
  OutlineList outlines_;
  std::map<std::string, Refusal> refusals_;  ///< by standardised path
  std::set<std::string> tidied_;             ///< folders in which nothing abandoned is left
  ApplicationListener* listener_ = nullptr;
  Saver saver_;
  Folders folders_;
};

}  // namespace vell::headless
