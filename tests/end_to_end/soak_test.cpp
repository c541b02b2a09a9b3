#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <random>
#include <thread>

#include "ipc/methods.h"
#include "ipc/vell_client.h"
#include "json/document.h"
#include "json/writer.h"
#include "tests/end_to_end/application.h"

namespace vell::tests {
namespace {

using std::chrono::milliseconds;

constexpr int sessions = 8;
constexpr const char* rootId = "1";
/// The thread sanitizer does not know the engine of scripts.
const bool withScripts = std::getenv("VELL_SOAK_WITHOUT_SCRIPTS") == nullptr;
constexpr std::size_t mostRows = 60;
constexpr std::size_t mostSteps = 200;  // fewer than the application keeps
constexpr std::size_t rowBytes = 320;   // what a deleted row may leave behind: its id is never given again

class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}
  std::size_t below(std::size_t end) { return engine_() % end; }
  template <class Values>
  auto& of(Values& values) {
    return values[below(std::size(values))];
  }

 private:
  std::mt19937 engine_;
};

struct ModelRow {
  std::string id;
  std::string persistentId;
  std::string text;
  std::vector<ModelRow> children;
};

ModelRow rowOf(const json::Node& answer) {
  ModelRow row;
  if (const auto id = answer.find("id")) row.id = std::to_string(id->integer().value());
  if (const auto id = answer.find("persistentId")) row.persistentId = id->string().value();
  if (const auto text = answer.find("text"))
    for (const json::Node& run : text->elements()) row.text += run.find("string")->string().value();
  if (const auto children = answer.find("children"))
    for (const json::Node& child : children->elements()) row.children.push_back(rowOf(child));
  return row;
}

std::string picture(const ModelRow& top, bool withIds = true, const std::string& indent = "") {
  std::string text;
  for (const ModelRow& row : top.children) {
    text += indent + (withIds ? row.id + " " : "") + row.persistentId + ": " + row.text + "\n";
    text += picture(row, withIds, indent + "  ");
  }
  return text;
}

/// Where a row stands in a model, and the path that selects it.
struct Place {
  ModelRow* parent;
  std::size_t index;
  std::string path;
  ModelRow& row() const { return parent->children[index]; }
};

void listPlaces(ModelRow& top, const std::string& path, std::vector<Place>& out) {
  for (std::size_t i = 0; i < top.children.size(); ++i) {
    out.push_back({&top, i, path + "/*[" + std::to_string(i) + "]"});
    listPlaces(top.children[i], std::string(out.back().path), out);
  }
}

template <class Record>
std::unique_ptr<json::Document> call(ipc::VellClient& client, const Record& record) {
  return std::make_unique<json::Document>(client.call(Record::method, record.toJson()));
}

/// One outline of the application and what it must hold: each change is made to both under one lock.
class SoakedOutline {
 public:
  SoakedOutline(std::string outline, std::string editor)
      : outline_(std::move(outline)), editor_(std::move(editor)) {}

  const std::string& id() const { return outline_; }
  /// One random read or change.
  void step(ipc::VellClient& client, Random& random);
  /// The application's rows are the model's; their session ids only until it starts anew.
  void check(ipc::VellClient& client) {
    const std::lock_guard lock(mutex_);
    EXPECT_EQ(picture(rows(client)), picture(model_));
  }
  void checkAfterRestart(ipc::VellClient& client, std::string editor) {
    ModelRow now = rows(client);
    EXPECT_EQ(picture(now, false), picture(model_, false));
    model_ = std::move(now);
    editor_ = std::move(editor);
    undo_.clear();
    redo_.clear();
  }
  std::size_t created() const { return created_; }

 private:
  ModelRow rows(ipc::VellClient& client) const {
    const auto answer = call(client, ipc::OutlineGet{.format = "session", .outline = outline_});
    ModelRow top;
    for (const json::Node& row : answer->root().find("rows")->elements()) top.children.push_back(rowOf(row));
    return top;
  }
  std::vector<Place> places() {
    std::vector<Place> all;
    listPlaces(model_, "", all);
    return all;
  }
  static std::string reference(const Place& place, Random& random) {
    const ModelRow& row = place.row();
    const std::string choices[] = {row.id, row.persistentId.empty() ? row.id : row.persistentId, place.path};
    return random.of(choices);
  }
  std::string newText(Random& random);
  /// The id of a row, or "" for the root.
  std::string anyParent(Random& random) {
    const auto all = places();
    return all.empty() || random.below(5) == 0 ? "" : random.of(all).row().id;
  }
  Place find(const std::string& id);
  ModelRow& rowWith(const std::string& id) { return id.empty() ? model_ : find(id).row(); }
  std::string parentReference(const std::string& id, Random& random) {
    return id.empty() ? rootId : reference(find(id), random);
  }
  /// Inserts the row at any place among the children; returns its index.
  static std::size_t insert(ModelRow row, ModelRow& parent, Random& random) {
    const std::size_t index = random.below(parent.children.size() + 1);
    parent.children.insert(parent.children.begin() + static_cast<std::ptrdiff_t>(index), std::move(row));
    return index;
  }
  void changes() {
    undo_.push_back(model_);
    if (undo_.size() > mostSteps) undo_.pop_front();
    redo_.clear();
  }

  void create(ipc::VellClient& client, Random& random);
  void update(ipc::VellClient& client, Random& random, bool byScript);
  void move(ipc::VellClient& client, Random& random);
  void remove(ipc::VellClient& client, Random& random);
  void readOne(ipc::VellClient& client, Random& random);
  void swap(ipc::VellClient& client, const char* command, std::deque<ModelRow>& from,
            std::deque<ModelRow>& to);

  std::string outline_;
  std::string editor_;
  std::mutex mutex_;
  ModelRow model_;
  std::deque<ModelRow> undo_;
  std::deque<ModelRow> redo_;
  std::size_t created_ = 0;
  std::size_t texts_ = 0;
};

/// No two are equal, so that each update is a change.
std::string SoakedOutline::newText(Random& random) {
  static const std::string words[] = {"brown", "fox", "über", "日本", "x"};
  std::string text = "t" + std::to_string(++texts_);
  for (std::size_t count = random.below(random.below(20) == 0 ? 200 : 5); count > 0; --count)
    text += " " + random.of(words);
  return text;
}

Place SoakedOutline::find(const std::string& id) {
  const auto all = places();
  return *std::find_if(all.begin(), all.end(), [&](const Place& place) { return place.row().id == id; });
}

void SoakedOutline::create(ipc::VellClient& client, Random& random) {
  ModelRow row;
  row.text = newText(random);
  if (random.below(4) == 0) row.persistentId = "p" + std::to_string(texts_);
  const std::string trailer = row.persistentId.empty() ? "" : " {#" + row.persistentId + "}";
  const std::string parent = anyParent(random), sent = parentReference(parent, random);
  const std::string markdown = row.text + trailer;
  changes();
  ModelRow& below = rowWith(parent);
  const std::size_t index = insert(std::move(row), below, random);
  const auto answer =
      call(client, ipc::RowCreate{.markdown = markdown,
                                  .outline = outline_,
                                  .place = {.parent = sent, .position = std::to_string(index)}});
  below.children[index].id = rowOf(answer->root()).id;
  ++created_;
}

void SoakedOutline::update(ipc::VellClient& client, Random& random, bool byScript) {
  const auto all = places();
  const Place& place = random.of(all);
  const std::string text = newText(random);
  if (byScript) {
    call(client, ipc::ScriptEvaluate{.script = "const row = vell.outlines.find(({id}) => id === " +
                                               json::quoted(outline_) + ").row(" + place.row().id +
                                               "); row.text = 'soon'; row.text = " + json::quoted(text)});
  } else {
    call(client, ipc::RowUpdate{.rows = {reference(place, random)},
                                .outline = outline_,
                                .text = ipc::StyledRuns{R"([{"string":)" + json::quoted(text) + "}]"}});
  }
  changes();
  place.row().text = text;
}

void SoakedOutline::move(ipc::VellClient& client, Random& random) {
  const auto all = places();
  const Place& from = random.of(all);
  const std::string parent = anyParent(random);
  if (!parent.empty() && find(parent).path.starts_with(from.path)) return;
  const std::string row = reference(from, random), to = parentReference(parent, random);
  const ModelRow before = model_;
  ModelRow moved = std::move(from.row());
  from.parent->children.erase(from.parent->children.begin() + static_cast<std::ptrdiff_t>(from.index));
  const std::size_t index = insert(std::move(moved), rowWith(parent), random);
  if (picture(model_) == picture(before)) return;
  call(client, ipc::RowMove{.rows = {row}, .to = to, .position = std::to_string(index), .outline = outline_});
  undo_.push_back(before);
  redo_.clear();
}

void SoakedOutline::remove(ipc::VellClient& client, Random& random) {
  const auto all = places();
  const Place& place = random.of(all);
  call(client, ipc::RowDelete{.rows = {reference(place, random)}, .outline = outline_});
  changes();
  place.parent->children.erase(place.parent->children.begin() + static_cast<std::ptrdiff_t>(place.index));
}

void SoakedOutline::readOne(ipc::VellClient& client, Random& random) {
  const auto all = places();
  const Place& place = random.of(all);
  const auto answer = call(client, ipc::OutlineGet{.rowRefs = {{reference(place, random)}},
                                                   .format = "session",
                                                   .shape = "flat",
                                                   .rows = true,
                                                   .outline = outline_});
  const auto rows = answer->root().elements();
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rowOf(rows[0]).text, place.row().text);
}

/// Undoes or redoes one step.
void SoakedOutline::swap(ipc::VellClient& client, const char* command, std::deque<ModelRow>& from,
                         std::deque<ModelRow>& to) {
  if (from.empty()) return;
  call(client, ipc::CommandPerform{.editor = editor_, .ids = {command}});
  to.push_back(std::exchange(model_, std::move(from.back())));
  from.pop_back();
}

void SoakedOutline::step(ipc::VellClient& client, Random& random) {
  const std::size_t choice = random.below(100);
  if (choice < 10) {  // while others change it
    rows(client);
    return;
  }
  const std::lock_guard lock(mutex_);
  const std::size_t count = places().size();
  if (count == 0 || (choice < 30 && count < mostRows)) return create(client, random);
  if (choice < 45) return remove(client, random);
  if (choice < 60) return update(client, random, false);
  if (choice < 70) return move(client, random);
  if (choice < 78) return swap(client, "edit:undo", undo_, redo_);
  if (choice < 82) return swap(client, "edit:redo", redo_, undo_);
  if (choice < 83 && withScripts) return update(client, random, true);
  readOne(client, random);
}

using Outlines = std::vector<std::unique_ptr<SoakedOutline>>;

/// All sessions for that time, each with a connection of its own; then the outlines must be the models.
void work(const Outlines& outlines, milliseconds time, unsigned& seed) {
  const auto end = std::chrono::steady_clock::now() + time;
  std::vector<std::thread> threads;
  threads.reserve(sessions);
  for (int session = 0; session < sessions; ++session) {
    threads.emplace_back([&, own = ++seed] {
      Random random(own);
      ipc::VellClient client;
      try {
        while (std::chrono::steady_clock::now() < end && !testing::Test::HasFailure())
          random.of(outlines)->step(client, random);
      } catch (const std::exception& error) {
        ADD_FAILURE() << error.what();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  ipc::VellClient client;
  for (const auto& outline : outlines) outline->check(client);
}

std::map<std::string, std::string> editors(ipc::VellClient& client) {
  std::map<std::string, std::string> ofOutlines;
  const auto answer = call(client, ipc::EditorList{});
  for (const json::Node& editor : answer->root().elements())
    ofOutlines[editor.find("outlineId")->string().value()] = editor.find("id")->string().value();
  return ofOutlines;
}

/// What a process uses, as /proc tells; nothing on systems without it.
struct Usage {
  std::ptrdiff_t descriptors = 0;
  std::size_t kilobytes = 0;

  explicit Usage(pid_t process) {
    const std::filesystem::path directory = "/proc/" + std::to_string(process);
    std::ifstream status(directory / "status");
    if (!status) return;
    for (std::string word; kilobytes == 0 && status >> word;)
      if (word == "VmRSS:") status >> kilobytes;
    descriptors = std::distance(std::filesystem::directory_iterator(directory / "fd"), {});
  }
};

/// Waits until the process holds no more descriptors than before.
Usage settled(pid_t process, const Usage& before) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  Usage usage(process);
  while (usage.descriptors > before.descriptors && std::chrono::steady_clock::now() < deadline)
    usage = Usage(process);
  return usage;
}

/// VELL_SOAK_SECONDS=60 asks for more than what runs by default, and for memory that stays: with sanitizers
/// it grows.
TEST(Soak, EightSessionsLeaveWhatTheModelSays) {
  const char* seconds = std::getenv("VELL_SOAK_SECONDS");
  constexpr int rounds = 5;
  const milliseconds round(1'000 * (seconds ? std::atoi(seconds) : 2) / rounds);
  const char* chosen = std::getenv("VELL_SOAK_SEED");
  unsigned seed = chosen ? static_cast<unsigned>(std::atoi(chosen)) : 1;

  const TemporaryHome home;
  const std::vector<std::string> files = {home.write("a.vell", ""), home.write("b.md", "")};
  Outlines outlines;
  {
    Application application(files);
    ipc::VellClient client;
    for (const auto& [outline, editor] : editors(client))
      outlines.push_back(std::make_unique<SoakedOutline>(outline, editor));
    ASSERT_EQ(outlines.size(), files.size());
    work(outlines, round, seed);
    EXPECT_EQ(application.stop().status, 0);
  }
  Application application(files);
  {
    ipc::VellClient client;
    for (const auto& outline : outlines) outline->checkAfterRestart(client, editors(client)[outline->id()]);
  }
  const auto created = [&] {
    std::size_t sum = 0;
    for (const auto& outline : outlines) sum += outline->created();
    return sum;
  };
  const Usage idle = settled(application.process(), Usage(application.process()));
  for (int i = 0; i < 2; ++i) work(outlines, round, seed);
  const Usage warm = settled(application.process(), idle);
  const std::size_t createdWarm = created();
  for (int i = 0; i < 2; ++i) work(outlines, round, seed);
  const Usage after = settled(application.process(), idle);
  EXPECT_LE(after.descriptors, idle.descriptors);
  if (seconds != nullptr) {
    EXPECT_LE(after.kilobytes, warm.kilobytes + 2'048 + (created() - createdWarm) * rowBytes / 1'024)
        << idle.kilobytes << " kB at first, " << created() << " rows created, " << created() - createdWarm
        << " of them since " << warm.kilobytes << " kB were in use";
  }
  EXPECT_EQ(application.stop().status, 0);
}

}  // namespace
}  // namespace vell::tests
