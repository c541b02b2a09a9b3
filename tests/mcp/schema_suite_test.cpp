#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "mcp/argument_validator.h"
#include "tests/mcp/support.h"

namespace vell::mcp {
namespace {

/// Whether a schema says no more than schema.h can write.
bool isWritable(const Value& schema) {
  static const std::set<std::string> keywords{"$schema",    "type",       "enum",     "anyOf",
                                              "items",      "properties", "required", "additionalProperties",
                                              "description"};
  if (!schema.object()) return schema.boolean() != nullptr;
  return std::all_of(schema.object()->begin(), schema.object()->end(), [](const auto& member) {
    if (member.first == "type") return member.second.string() != nullptr;
    if (member.first == "items" || member.first == "additionalProperties") return isWritable(member.second);
    if (member.first == "anyOf" || member.first == "properties") {
      const auto* alternatives = member.second.array();
      const auto* properties = member.second.object();
      return alternatives ? std::all_of(alternatives->begin(), alternatives->end(), isWritable)
                          : std::all_of(properties->begin(), properties->end(),
                                        [](const auto& property) { return isWritable(property.second); });
    }
    return keywords.count(member.first) == 1;
  });
}

/// Returns how many cases it has checked.
int judge(const std::filesystem::path& folder, const std::string& keyword) {
  std::stringstream text;
  text << std::ifstream(folder / (keyword + ".json")).rdbuf();
  int checked = 0;
  const Value groups = decode(text.str());
  for (const Value& group : *groups.array()) {
    if (!isWritable(*group.find("schema"))) continue;
    ArgumentValidator validator(*group.find("schema"));
    for (const Value& test : *group.find("tests")->array()) {
      EXPECT_EQ(validator.faults(*test.find("data")).empty(), *test.find("valid")->boolean())
          << keyword << ": " << group.find("description")->description() << test.description();
      ++checked;
    }
  }
  return checked;
}

TEST(Arguments, AreJudgedAsTheOfficialSuiteJudges) {
  const std::filesystem::path suite = VELL_SCHEMA_SUITE;
  int checked = 0;
  // Newer packages have the newer draft, too.
  for (const char* draft : {"draft7", "draft2020-12"}) {
    for (const char* keyword :
         {"type", "enum", "anyOf", "items", "properties", "required", "additionalProperties"}) {
      if (std::filesystem::exists(suite / draft)) checked += judge(suite / draft, keyword);
    }
  }
  EXPECT_GT(checked, 80);
}

}  // namespace
}  // namespace vell::mcp
