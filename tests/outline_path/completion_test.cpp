// What can be written at "|" in a text.
#include <gtest/gtest.h>

#include "outline_path/with_parse.h"

namespace vell::outline_path {
namespace {

struct Completed {
  const char* text;
  /// The range that is replaced, and the items.
  const char* items;
};

const Completed kTexts[] = {
    {"|", "0-0 AXES"},
    {"/|", "1-1 AXES TYPES @done @due OWN not FUNCTIONS"},
    {"/he|", "1-3 heading"},
    {"//|", "2-2 TYPES @done @due OWN not FUNCTIONS"},
    {"//ta|", "2-4 task"},
    {"//hea|ding", "2-9 heading"},
    {"//*/anc|", "4-7 ancestor-or-self:: ancestor::"},
    {"//task @d|", "8-9 done due"},
    {"//task é|", ""},
    {"//* @a |", "7-7 RELATIONS or and union except intersect"},
    {"//* @a un|", "7-9 union"},
    {"//* @a =[|", "9-9 s i n d"},
    {"//* @a = |", "9-9 \"one\" \"o\\\"clock\" FUNCTIONS true false null"},
    {"//* @a = \"o|", "10-11 one\" o\\\"clock\""},
    {"//task first|", "7-12 first-child() first-of-type()"},
    {"//task sel|", "7-10 selection() selection-ancestor() selection-descendant()"},
    {"//task @done an|", "13-15 and"},
    {"//task @mo|", "8-10 modified"},
};

/// Items that always stand together, by the names that the table has for them.
const std::pair<const char*, const char*> kGroups[] = {
    {"AXES",
     "ancestor-or-self:: ancestor:: descendant-or-self:: descendant:: following-sibling:: following:: "
     "preceding-sibling:: preceding:: parent:: self:: child:: run::"},
    {"TYPES", "* row heading blockquote codeblock note unordered ordered task hr body run"},
    {"OWN", "@id @type @text @created @modified"},
    {"FUNCTIONS",
     "last() position() root() parent() level() leaf() first-child() last-child() nth-child() "
     "first-of-type() "
     "last-of-type() nth-of-type() only-child() only-of-type() round() floor() ceil() boolean() count() "
     "start-of-matches() end-of-matches() today() now() date() focused-root() focused-branch() "
     "focused-level() expanded() "
     "collapsed() "
     "filter-match() filter-match-ancestor() selection() selection-ancestor() selection-descendant() "
     "drop-indicator()"},
    {"RELATIONS", "contains beginswith endswith matches = != <= >= < >"},
};

std::string completionsOf(std::string text) {
  const std::size_t at = text.find('|');
  const std::vector<std::string> names{"done", "due"}, texts{"one", "o\"clock"};
  const auto found = OutlinePathWithParse(text.erase(at, 1)).completion(at, names, texts);
  if (!found.range) return found.items.empty() ? "" : "items without a range";
  EXPECT_EQ(found.pattern.value_or(""), text.substr(found.range->begin, at - found.range->begin));
  std::string all = std::to_string(found.range->begin) + "-" + std::to_string(found.range->end);
  for (const std::string& item : found.items) all += " " + item;
  for (const auto& [name, items] : kGroups) {
    const std::size_t group = all.find(items);
    if (group != std::string::npos) all.replace(group, std::string(items).size(), name);
  }
  return all;
}

TEST(Completion, OffersWhatCanStandThere) {
  for (const Completed& row : kTexts) EXPECT_EQ(completionsOf(row.text), row.items) << row.text;
}

}  // namespace
}  // namespace vell::outline_path
