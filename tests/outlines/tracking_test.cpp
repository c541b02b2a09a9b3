#include "outlines/tracking.h"

#include <gmock/gmock.h>

#include "outlines/resource_uri.h"

namespace vell::outlines {
namespace {

using testing::ElementsAre;

TEST(ResourceURI, KeepsEveryPathInOneSegment) {
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {"file:///tmp/a.vell", "/tmp/a.vell", "%2Ftmp%2Fa.vell"},
      {"file:///a%20b%25c%23d%3Fe%3Bf", "/a b%c#d?e;f", "%2Fa%20b%25c%23d%3Fe%3Bf"},
      {"file:///%C3%A9.vell", "/\xC3\xA9.vell", "%2F%C3%A9.vell"},
      {"file:///a%2520b", "/a%20b", "%2Fa%2520b"},
      {"file:///50%", "/50%", "%2F50%25"},
      {"file://localhost/a", "/a", "%2Fa"},
      {"/plain/100%25", "/plain/100%25", "%2Fplain%2F100%2525"},
      {"file:///A-z.0_~!$&'()*+,:=@[]", "/A-z.0_~!$&'()*+,:=@[]", "%2FA-z.0_~!$&'()*+,:=@%5B%5D"},
  };
  for (const auto& [url, path, segment] : cases) {
    const ipc::OutlineSummary outline{"P", "name", url};
    EXPECT_EQ(filePath(outline), path) << url;
    EXPECT_EQ(resourceURI(outline), "vell://file/" + segment) << url;
  }
  EXPECT_EQ(resourceURI({"P-1", "Untitled", std::nullopt}), "vell://outline/P-1");
}

std::string describe(const OutlineChanges& changes) {
  std::string text;
  for (const std::string& uri : changes.removedURIs) text += "-" + uri + " ";
  for (const OutlineResource& resource : changes.added)
    text += "+" + resource.uri + "=" + resource.name + " ";
  return text + (changes.frontmost ? "frontmost" : "");
}

TEST(OutlineTracker, TellsWhatChangedAndOnlyThat) {
  const ipc::OutlineSummary saved{"S", "a", "file:///a"};
  const ipc::OutlineSummary untitled{"U", "Untitled", std::nullopt};
  const ipc::OutlineSummary renamed{"U", "Untitled 2", std::nullopt};
  const ipc::OutlineSummary untitledSaved{"U", "b", "file:///b"};
  OutlineTracker tracker;
  const std::pair<std::vector<ipc::OutlineSummary>, std::string> steps[] = {
      {{}, ""},
      {{saved}, "+vell://file/%2Fa=a frontmost"},
      {{saved}, ""},
      {{untitled, saved, saved}, "+vell://outline/U=Untitled frontmost"},
      {{saved, untitled}, "frontmost"},
      {{saved, renamed}, "-vell://outline/U +vell://outline/U=Untitled 2 "},
      {{saved, untitledSaved}, "-vell://outline/U +vell://file/%2Fb=b "},
      {{}, "-vell://file/%2Fa -vell://file/%2Fb frontmost"},
      {{}, ""},
  };
  for (const auto& [open, changes] : steps) {
    EXPECT_EQ(describe(tracker.reconcile(open)), changes) << "step " << &open - &steps[0].first;
  }
}

TEST(RetryDelay, GrowsUntilItIsReset) {
  RetryDelay delay;
  std::vector<std::int64_t> milliseconds;
  milliseconds.reserve(6);
  for (int i = 0; i < 5; ++i) milliseconds.push_back(delay.next().count());
  delay.reset();
  milliseconds.push_back(delay.next().count());
  EXPECT_THAT(milliseconds, ElementsAre(250, 500, 1000, 2000, 2000, 250));
}

}  // namespace
}  // namespace vell::outlines
