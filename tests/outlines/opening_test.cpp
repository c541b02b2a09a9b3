#include "outlines/opening.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>

#include "ipc/vell_client.h"
#include "outlines/creation.h"
#include "outlines/location.h"
#include "platform/identifier_index.h"
#include "tests/support/bundle.h"
#include "tests/support/fake_application.h"
#include "tests/support/temporary_directory.h"

namespace vell::outlines {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using tests::FakeApplication;
using Reply = FakeApplication::Reply;

const std::string summary = R"({"displayName":"a","fileURL":"file:///a.vell","persistentId":"P"})";

/// An application in which the outline is open from the `openFrom`th look-up on; before, it gives
/// `otherwise`.
FakeApplication::Script application(int openFrom, const Reply& otherwise = FakeApplication::result("null")) {
  auto lookUps = std::make_shared<int>(0);
  return [=](const std::string& request) {
    if (request.find("bringToFront") != std::string::npos) return FakeApplication::result("{}");
    return ++*lookUps >= openFrom ? FakeApplication::result(summary) : otherwise;
  };
}

std::string find(const std::string& path) {
  return R"("method":"outline.findByPath","params":{"path":")" + path + "\"}}";
}
const std::string raise = R"("method":"outline.bringToFront","params":{"outline":"P"}})";

class Opening : public testing::Test {
 protected:
  tests::TemporaryHome home;
  tests::Bundle bundle{"echo \"$1\" > $dir/part && mv $dir/part $dir/launched\n"};
  std::string file = home.write("a.vell", "");
  ipc::ReconnectingClient client;
  OpenOptions options{.timeout = 60, .onPoll = {}, .bundle = bundle.path()};

  std::string open(const std::string& target) {
    try {
      return openOutline(client, target, options).bytes();
    } catch (const OpenError& error) {
      return error.what();
    }
  }
};

TEST_F(Opening, AnOpenOutlineIsRaisedAndNothingIsLaunched) {
  options.bundle = "/nowhere.app";
  const FakeApplication fake(application(1));
  EXPECT_EQ(open(file), summary);
  EXPECT_THAT(fake.requests(), ElementsAre(EndsWith(find(file)), EndsWith(raise)));
  EXPECT_EQ(open("id:P"), summary);
  EXPECT_THAT(fake.requests()[2],
              EndsWith(R"("method":"outline.findByPersistentId","params":{"persistentId":"P"}})"));
}

TEST_F(Opening, AnythingButASummaryMeansNotOpenYet) {
  for (const Reply& otherwise :
       {FakeApplication::result("null"), FakeApplication::result("{}"), FakeApplication::result("[]"),
        FakeApplication::result("\"P\""), FakeApplication::result(R"({"persistentId":null})"),
        FakeApplication::error(-32000, "not open"), Reply{"", true}}) {
    const FakeApplication fake(application(2, otherwise));
    EXPECT_EQ(open(file), summary) << otherwise.bytes;
    EXPECT_EQ(bundle.await("launched"), file + "\n");
    EXPECT_THAT(fake.requests(), ElementsAre(EndsWith(find(file)), EndsWith(find(file)), EndsWith(raise)));
  }
}

TEST_F(Opening, WaitsForAnApplicationThatStartsMeanwhile) {
  std::unique_ptr<FakeApplication> fake;
  std::vector<double> polls;
  options.onPoll = [&](double waited) {
    polls.push_back(waited);
    if (polls.size() == 3) fake = std::make_unique<FakeApplication>(application(2));
  };
  EXPECT_EQ(open(file), summary);
  EXPECT_EQ(bundle.await("launched"), file + "\n");
  EXPECT_EQ(polls.size(), 4U);
  EXPECT_TRUE(std::is_sorted(polls.begin(), polls.end()));
}

TEST_F(Opening, EndsAtOnceWhenTheApplicationHasRefusedTheFile) {
  const Reply refused = FakeApplication::result(R"({"refused":"it is not a text"})");
  const FakeApplication fake(application(1000, refused));
  EXPECT_EQ(open(file), "Vell could not open " + file + ": it is not a text");
  EXPECT_EQ(bundle.await("launched"), file + "\n");  // what was refused before is tried again
  EXPECT_THAT(fake.requests(), ElementsAre(EndsWith(find(file)), EndsWith(find(file))));
}

TEST_F(Opening, StopsWhereThePollSaysSo) {
  struct Cancelled {};
  options.onPoll = [](double) { throw Cancelled(); };
  EXPECT_THROW(open(file), Cancelled);
}

TEST_F(Opening, GivesUpWhenTheTimeIsOver) {
  options.timeout = 0.05;
  EXPECT_EQ(open(file), "Timed out waiting for Vell to open: " + file);
  platform::IdentifierIndex().put({"P", file});
  EXPECT_EQ(open("id:P"), "Timed out waiting for Vell to open persistentId: P");
}

TEST_F(Opening, SaysWhatCannotBeOpened) {
  const FakeApplication fake(application(1000));
  EXPECT_EQ(open(home / "missing"), "File not found: " + (home / "missing"));
  const std::string nul(1, '\0');
  for (const std::string& target : {home.path() + nul, "id:P" + nul})
    EXPECT_EQ(open(target), "A path or id holds no NUL character");
  const std::string here = std::filesystem::current_path().string() + "/";
  const std::pair<std::string, std::string> rows[] = {
      {"", "the path is empty"},
      {"missing.vell", here + "missing.vell"},
      {"P-1", here + "P-1 (for a persistent id write id:P-1)"},
      {"~/a.vell", here + "~/a.vell (write the path: " + (home / "a.vell") + ")"},
      {"file://" + home.path() + "/a%20b.vell",
       here + "file:" + home.path() + "/a%20b.vell (write the path: " + (home / "a b.vell") + ")"},
      {"file://", here + "file: (write a path)"},
  };
  for (const auto& [target, message] : rows) EXPECT_EQ(open(target), "File not found: " + message) << target;
  EXPECT_EQ(open(home.path()), "Vell could not open " + home.path() + ": it is a folder");
  EXPECT_THAT(fake.requests(), ElementsAre());
  EXPECT_EQ(open("id:P"), "No outline found with persistentId: P");
  platform::IdentifierIndex().put({"P", home / "gone"});
  EXPECT_EQ(open("id:P"), "File not found: " + (home / "gone"));
  options.bundle = "/nowhere.app";
  EXPECT_EQ(open(file), "Vell could not open " + file + ": cannot read /nowhere.app/Contents/Info.plist");
  options.bundle.reset();
  EXPECT_THAT(open(file), StartsWith("vell CLI is not running inside a Vell.app bundle (executable: /"));
}

TEST_F(Opening, APersistentIdLeadsToTheFirstFileThatIsThere) {
  platform::IdentifierIndex().put({"P", file});
  platform::IdentifierIndex().put({"P", home / "gone"});
  const FakeApplication fake(application(3));
  EXPECT_EQ(open("id:P"), summary);
  EXPECT_EQ(bundle.await("launched"), file + "\n");
  EXPECT_THAT(fake.requests(), ElementsAre(HasSubstr("findByPersistentId"), EndsWith(find(file)),
                                           EndsWith(find(file)), EndsWith(raise)));
}

class Creating : public Opening {
 protected:
  std::string path = home / "new.opml";
  std::string created() {
    try {
      return createOutlineFile(client, path, "opml", options).bytes();
    } catch (const std::runtime_error& error) {
      return error.what();
    }
  }
};

TEST_F(Creating, WritesTheEmptyOutlineAndOpensIt) {
  const FakeApplication fake([rest = application(2)](const std::string& request) {
    return request.find("newContent") == std::string::npos ? rest(request)
                                                           : FakeApplication::result(R"("<opml\/>\n")");
  });
  EXPECT_EQ(created(), summary);
  EXPECT_THAT(fake.requests()[0], EndsWith(R"("method":"outline.newContent","params":{"format":"opml"}})"));
  EXPECT_EQ(std::filesystem::file_size(path), 8U);
  EXPECT_EQ(created(), "File already exists: " + path);
}

TEST_F(Creating, LeavesNoFileThatTheApplicationDidNotSee) {
  EXPECT_THAT(created(), StartsWith("Vell.app must be running for CLI/MCP access."));
  EXPECT_FALSE(std::filesystem::exists(path));
  std::string content = "{}";
  const FakeApplication fake([&](const std::string& request) {
    const bool find = request.find("newContent") == std::string::npos;
    return FakeApplication::result(find ? R"({"refused":"no"})" : content);
  });
  EXPECT_EQ(created(), "outline.newContent did not return a string payload");
  EXPECT_FALSE(std::filesystem::exists(path));
  content = "\"\"";
  options.bundle = "/nowhere.app";
  EXPECT_THAT(created(), StartsWith("Vell could not open " + path));
  EXPECT_FALSE(std::filesystem::exists(path));
  options.bundle = bundle.path();
  for (const bool replaced : {false, true}) {
    options.onPoll = [&](double) {
      if (replaced) std::ofstream(path) << "somebody else's";
    };
    EXPECT_EQ(created(), "Vell could not open " + path + ": no");
    EXPECT_EQ(std::filesystem::exists(path), replaced);
  }
  std::filesystem::remove(path);
  path = home / "missing/new.opml";
  EXPECT_EQ(created(), "Cannot write " + path + ": No such file or directory");
}

}  // namespace
}  // namespace vell::outlines
