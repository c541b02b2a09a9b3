// How much longer `vell-headless` takes with a hundred times as much to do, and beside sqlite3 and jq.

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <utility>

#include "bench/clock.h"
#include "bench/outline_server.h"
#include "bench/rounds.h"
#include "bench/rows.h"
#include "formats/format.h"

namespace vell::bench {
namespace {

constexpr int rounds = 3;

/// By the rows of their outlines, while the row is measured.
std::map<int, std::unique_ptr<OutlineServer>> servers;

OutlineServer& serverWith(int rows) {
  auto& server = servers[rows];
  if (!server) server = std::make_unique<OutlineServer>(rows);
  return *server;
}

OutlineServer& openedWith(int rows, const std::string& extension = "vell") {
  OutlineServer& server = serverWith(rows);
  server.open(server.file(extension));
  return server;
}

double openFile(const std::string& extension, int rows) {
  OutlineServer& server = serverWith(rows);
  const std::string file = server.file(extension);
  const double seconds = secondsFor(1, [&] { server.open(file); });
  server.close();
  return seconds;
}

double read(const std::string& format, int rows) {
  OutlineServer& server = openedWith(rows);
  return secondsFor(1, [&] { server.call("outline.get", R"({"format":")" + format + R"("})"); });
}

/// The last of so many changes of an outline that was just opened.
double saveChange(const std::string& extension, int changes, int rows) {
  OutlineServer& server = openedWith(rows, extension);
  double seconds = 0;
  while (changes-- > 0)
    seconds = secondsFor(1, [&] { server.awaitSaved(server.file(extension), [&] { server.change(); }); });
  server.close();
  return seconds;
}

enum class Step { create, remove, undo };

/// In a large outline that many rows come, go and come back; the seconds of the step that is asked for.
double createAndDelete(Step wanted, int outlineRows, int rows) {
  OutlineServer& server = openedWith(outlineRows);
  std::string markdown = "- new";
  for (int i = 1; i < rows; ++i) markdown += "\\n\\t- row " + std::to_string(i);
  const auto step = [&](const std::string& method, const std::string& params) {
    double seconds = 0;
    server.awaitSaved(server.file("vell"),
                      [&] { seconds = secondsFor(1, [&] { server.call(method, params); }); });
    return seconds;
  };
  const std::string last = R"({"rows":["/*[-1]"]})";
  const double creating = step("row.createMany", R"({"markdown":")" + markdown + R"(","position":"end"})");
  const double deleting = step("row.delete", last);
  const double undoing = step("command.perform", R"({"ids":["edit:undo"]})");
  step("row.delete", last);
  return wanted == Step::create ? creating : wanted == Step::remove ? deleting : undoing;
}

double openFiles(int count) {
  OutlineServer server(0);
  std::vector<std::string> files;
  for (int i = 0; i < count; ++i) {
    files.push_back(server.stage().path("note-" + std::to_string(i) + ".md"));
    writeOutlineFile(files.back(), 20);
  }
  return secondsFor(1, [&] {
    for (const std::string& file : files) server.open(file);
  });
}

double observeChange(int rows) {
  OutlineServer& server = openedWith(rows);
  Observers observers(server, 100);
  return secondsFor(1, [&] {
    server.change();
    observers.await(1);
  });
}

/// Measures a work at two sizes, in turn.
void compare(Table& table, const std::string& work, int few, int many,
             const std::function<double(int)>& measure, const std::string& things = " rows") {
  const auto times =
      medians({{"many", [&] { return measure(many); }}, {"few", [&] { return measure(few); }}}, rounds);
  table.add({work + ", " + std::to_string(many) + things, times[0], "vell, " + std::to_string(few) + things,
             times[1], atMost(1.1), Unit::seconds, static_cast<double>(many) / few});
}

void growthUpTo(Table& table, int most) {
  const int least = most / 100;
  for (const std::string extension : {"vell", "md", "opml", "json", "txt"})
    compare(table, "open ." + extension, least, most, [&](int rows) { return openFile(extension, rows); });
  for (const formats::Format& format : formats::formats()) {
    const std::string name(format.name);
    compare(table, "read as " + name, least, most, [&](int rows) { return read(name, rows); });
  }
  compare(table, "first change of .vell on disk", least, most,
          [](int rows) { return saveChange("vell", 1, rows); });
  for (const std::string extension : {"vell", "md", "opml", "json", "txt"})
    compare(table, "next change of ." + extension + " on disk", least, most,
            [&](int rows) { return saveChange(extension, 2, rows); });
  constexpr std::pair<const char*, Step> steps[] = {
      {"create", Step::create}, {"delete", Step::remove}, {"undo: bring back", Step::undo}};
  for (const auto& step : steps)
    compare(table, step.first, most / 1'000, most / 10,
            [&](int rows) { return createAndDelete(step.second, most, rows); });
  compare(table, "open one by one", most / 50'000, most / 500, openFiles, " files");
  compare(table, "100 observers get a change", most / 1'000, most / 10, observeChange);
}

/// The same question in three languages.
struct Filter {
  const char* path;
  const char* sql;
  const char* jq;
};

constexpr Filter filters[] = {
    {R"(//task @done = "true" and @priority < 3)",
     "select text from rows where type = 'task' and done = 'true' and priority < 3 order by id",
     R"(select(.type == "task" and .attributes.done == "true" and (.attributes.priority // "9" | tonumber) < 3))"},
    {R"(//* @text contains "needle")", "select text from rows where instr(text, 'needle') order by id",
     R"(select(.type and ([.text[].string] | add | contains("needle"))))"},
    {"//heading/task @priority",
     R"(select task.text from rows task join rows heading on task.parent = heading.id
         where heading.type = 'heading' and task.type = 'task' and task.priority is not null order by task.id)",
     R"(select(.type == "heading") | .children[]? | select(.type == "task" and .attributes.priority))"},
};

/// A database with a table of a server's rows, the attributes that are asked for in columns.
std::string databaseOf(const OutlineServer& server) {
  std::string database = server.stage().path("rows.db");
  if (std::filesystem::exists(database)) return database;
  document::Outline outline;
  std::ifstream in(server.file("vell"), std::ios::binary);
  formats::readFile(*formats::formatNamed("vell"), {std::istreambuf_iterator<char>(in), {}}, {}, outline);
  const auto value = [](const std::string* text) { return text ? "'" + *text + "'" : std::string("null"); };
  std::ofstream sql(database + ".sql");
  sql << "create table rows (id integer primary key, parent, type, text, done, priority integer);\nbegin;\n";
  const document::Row* root = &outline.root();
  for (const document::Row* row = root->firstChild(); row; row = nextInOrder(row, root)) {
    sql << "insert into rows values (" << row->id() << "," << row->parent()->id() << ",'" << name(row->type())
        << "','" << row->text().string() << "'," << value(row->attributes().find("done")) << ","
        << value(row->attributes().find("priority")) << ");\n";
  }
  sql << "commit;\n" << std::flush;
  run({"sqlite3", database, ".read " + database + ".sql"});
  return database;
}

/// Whole processes, which print the text of each row.
void filtersBesideOthers(Table& table, int rows) {
  const OutlineServer& server = openedWith(rows);
  const Stage& stage = server.stage();
  const std::string database = databaseOf(server);
  const std::string json = server.file("json");
  stage.enter();
  for (const Filter& filter : filters) {
    const auto process = [&](const std::string& printed, const Command& command) {
      return [&stage, printed, command] { return run(command, stage.path(printed)).seconds; };
    };
    const Command ours = vell({"get", "outline", "rows", filter.path, "-o", "txt", "--shape", "flat"});
    const std::string jq = ".. | objects | " + std::string(filter.jq) + " | [.text[].string] | add";
    const auto times = medians({{"vell", process("ours", ours)},
                                {"sqlite3", process("sqlite3", {"sqlite3", database, filter.sql})},
                                {"jq", process("jq", {"jq", "-r", jq, json}), 1}},
                               rounds);
    const auto size = [&](const char* printed) { return std::filesystem::file_size(stage.path(printed)); };
    const bool isSame = size("ours") == size("sqlite3") + 1 || size("ours") == size("sqlite3");  // a line end
    if (!isSame || size("sqlite3") != size("jq"))
      throw std::runtime_error(std::string("not the same rows: ") + filter.path);
    table.add({filter.path, times[0], "sqlite3, " + std::to_string(rows) + " rows", times[1], Target{}});
    table.add({filter.path, times[0], "jq, " + std::to_string(rows) + " rows", times[2], atLeast(10)});
  }
}

/// One row changes, by a command, until that is on disk.
void updateBesideSqlite(Table& table, int rows) {
  const OutlineServer& server = openedWith(rows);
  const std::string database = databaseOf(server);
  server.stage().enter();
  const auto ours = [&] {
    const auto update = [] { run(vell({"update", "rows", "/*[7]", "--append", " more"})); };
    return secondsFor(1, [&] { server.awaitSaved(server.file("vell"), update); });
  };
  const auto theirs = [&] {
    const char* update = "pragma synchronous = full; update rows set text = text || ' more' where id = 7";
    return run({"sqlite3", database, update}).seconds;
  };
  const auto times = medians({{"vell", ours}, {"sqlite3", theirs}}, rounds);
  const std::string work = "update one of " + std::to_string(rows) + " rows, on disk";
  table.add({work, times[0], "sqlite3, synchronous = full", times[1], Target{}});
}

void measureUpTo(Table& table, int most) {
  growthUpTo(table, most);
  filtersBesideOthers(table, most / 10);
  for (const int rows : {most / 100, most}) updateBesideSqlite(table, rows);
  servers.clear();
}

}  // namespace

void growth(Table& table) { measureUpTo(table, 1'000'000); }

void growthQuick(Table& table) { measureUpTo(table, 100'000); }

}  // namespace vell::bench
