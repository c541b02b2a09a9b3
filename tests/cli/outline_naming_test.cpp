#include <gtest/gtest.h>

#include <filesystem>

#include "tests/cli/run.h"
#include "tests/support/fake_application.h"
#include "tests/support/temporary_directory.h"

namespace vell::cli {
namespace {

using tests::FakeApplication;

/// An application that knows these outlines by their ids, and refuses others before it looks at the rest.
FakeApplication::Script application(const std::string& open, const std::string& refusal) {
  return [=](const std::string& request) {
    if (request.find("outline.list") != std::string::npos) return FakeApplication::result(open);
    if (request.find(R"("outline":"id-)") == std::string::npos)
      return FakeApplication::error(-32000, refusal);
    return FakeApplication::Reply{
        "{\"id\":1,\"result\":1}\n"
        R"({"method":"outline.observe","params":{"kind":"subscription.closed"}})"
        "\n"};
  };
}

/// The outlines that were asked for, in order; "list" for the list of them.
std::vector<std::string> asked(const FakeApplication& application) {
  std::vector<std::string> outlines;
  for (const std::string& request : application.requests()) {
    const std::string key = R"("outline":")";
    const std::size_t begin = request.find(key) + key.size();
    const bool isList = request.find("outline.list") != std::string::npos;
    outlines.push_back(isList ? "list" : request.substr(begin, request.find('"', begin) - begin));
  }
  return outlines;
}

struct Case {
  std::string line;
  std::string name;
  std::vector<std::string> asked;
  std::string err;
};

TEST(OutlineNaming, TakesTheNameOrThePathOfAnOpenOutlineWhereThereIsNoSuchId) {
  tests::TemporaryHome home;
  const std::string a = home.write("a/notes.md", ""), b = home.write("b/notes.md", "");
  const std::string shed = home.write("shed files.md", ""), link = home / "link.md";
  std::filesystem::create_symlink(shed, link);
  const std::string open = R"([{"displayName":"notes.md","fileURL":"file://)" + a +
                           R"(","persistentId":"id-a"},{"displayName":"notes.md","fileURL":"file://)" + b +
                           R"(","persistentId":"id-b"},{"displayName":"Untitled","fileURL":null,)" +
                           R"("persistentId":"id-u"},{"displayName":"Shed","fileURL":"file://)" +
                           home.path() + R"(/shed%20files.md","persistentId":"id-s"}])";
  const std::string several =
      "Error: 'notes.md' may be any of these open outlines; use an id:\n  id-a  notes.md  " + a +
      "\n  id-b  notes.md  " + b + "\n";
  const auto refused = [](const std::string& name) {
    return "Error: Vell error -32000: No outline " + name + ".";
  };
  const std::string lists = "`vell get outlines` lists the open outlines.\n";
  const Case cases[] = {
      {"get outline", "id-a", {"id-a"}, ""},
      {"get outline", "Untitled", {"Untitled", "list", "id-u"}, ""},
      {"create row x", "Shed", {"Shed", "list", "id-s"}, ""},
      {"delete rows 1", b, {b, "list", "id-b"}, ""},
      {"update editor --focus 1",
       home / "x/../shed files.md",
       {home / "x/../shed files.md", "list", "id-s"},
       ""},
      {"close outline", link, {link, "list", "id-s"}, ""},
      {"observe outline", "Untitled", {"Untitled", "list", "id-u"}, ""},
      {"move rows 1 --to 2", "notes.md", {"notes.md", "list"}, several},
      {"get outline",
       "untitlde",
       {"untitlde", "list"},
       refused("untitlde") + "\nHint: Did you mean 'Untitled'? " + lists},
      {"get outline", "xyzzy", {"xyzzy", "list"}, refused("xyzzy") + "\nHint: " + lists},
  };
  for (const auto& [line, name, expected, err] : cases) {
    const FakeApplication serving(application(open, "No outline " + name + "."));
    const Outcome outcome = run(line + " --outline '" + name + "'");
    EXPECT_EQ(asked(serving), expected) << line;
    EXPECT_EQ(outcome.err, err) << line;
    EXPECT_EQ(outcome.status, err.empty() ? 0 : 1) << line;
  }
}

// Nothing is sent again after any other answer.
TEST(OutlineNaming, KeepsErrorsThatAreNotAboutTheOutline) {
  tests::TemporaryHome home;
  const std::string open = R"([{"displayName":"Shed","fileURL":null,"persistentId":"id-s"}])";
  const struct {
    const char* open;
    const char* refusal;
    std::vector<std::string> asked;
  } cases[] = {
      {open.c_str(), "No row of Shed has that id", {"Shed"}},
      {open.c_str(), "The outline is read-only", {"Shed"}},
      {R"([{"displayName":"Shed","fileURL":null,"persistentId":"Shed"}])",
       "No row in outline Shed",
       {"Shed", "list"}},
      {"[]", "No outline Shed", {"Shed", "list"}},
      {"{}", "No outline Shed", {"Shed", "list"}},
  };
  for (const auto& [summaries, refusal, expected] : cases) {
    const FakeApplication serving(application(summaries, refusal));
    const Outcome outcome = run("delete rows 1 --outline Shed");
    EXPECT_EQ(asked(serving), expected) << refusal;
    EXPECT_EQ(outcome.err, std::string("Error: Vell error -32000: ") + refusal + "\n");
  }
}

}  // namespace
}  // namespace vell::cli
