#include "platform/property_list.h"

#include <gmock/gmock.h>

#include "tests/support/temporary_directory.h"

namespace vell::platform {
namespace {

using testing::Optional;
using testing::Pair;
using testing::UnorderedElementsAre;

const std::string xmlHead = R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0">)";

// {"CFBundleVersion": "7", "Number": 1} as the system's converter writes it.
const std::string binaryList(
    "bplist00\xd2\x01\x02\x03\x04_\x10\x0f"
    "CFBundleVersionVNumberQ7\x10\x01\x08\x0d\x1f\x26\x28\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x05"
    "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x2a",
    79);

TEST(PropertyList, GivesTheStringsOfTheOutermostDictionary) {
  const tests::TemporaryDirectory directory;
  const std::string xml = directory.write(
      "xml",
      xmlHead +
          "<dict><key>Name</key><string>V\xC3\xA9ll &amp; co</string><key>Count</key><integer>3</integer>"
          "<key>Inner</key><dict><key>Deep</key><string>no</string></dict></dict></plist>");
  EXPECT_THAT(readPropertyListStrings(xml), Optional(UnorderedElementsAre(Pair("Name", "V\xC3\xA9ll & co"))));
  const std::string binary = directory.write("binary", binaryList);
  EXPECT_THAT(readPropertyListStrings(binary), Optional(UnorderedElementsAre(Pair("CFBundleVersion", "7"))));
}

TEST(PropertyList, WhatHoldsNoDictionaryGivesNone) {
  const tests::TemporaryDirectory directory;
  EXPECT_EQ(readPropertyListStrings(directory / "missing"), std::nullopt);
  EXPECT_EQ(readPropertyListStrings(directory.path()), std::nullopt);
  for (const std::string& content :
       {std::string(), std::string("no list"), std::string("bplist00"), binaryList.substr(0, 60),
        xmlHead + "<array/></plist>", xmlHead + "<dict><key>Name</key>"}) {
    EXPECT_EQ(readPropertyListStrings(directory.write("list", content)), std::nullopt) << content;
  }
}

}  // namespace
}  // namespace vell::platform
