#include "document/outline.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace vell::document {
namespace {

/// One line a row: "id:level:index[order,end)".
std::string numbers(const Outline& outline) {
  outline.number();
  std::string text;
  for (const Row* row = &outline.root(); row; row = nextInOrder(row, &outline.root())) {
    text += std::to_string(row->id()) + ":" + std::to_string(row->level()) + ":" +
            std::to_string(row->index()) + "[" + std::to_string(row->order()) + "," +
            std::to_string(row->orderEnd()) + ") ";
  }
  return text;
}

class OutlineTest : public testing::Test {
 protected:
  Row* add(Row& parent, Row* before = nullptr) {
    Row* row = outline.create(RowType::body, Text("x"), 0);
    outline.insert(*row, parent, before);
    return row;
  }
  Outline outline;
};

TEST_F(OutlineTest, NumbersFollowTheStructure) {
  Row* a = add(outline.root());
  Row* b = add(outline.root());
  add(*a);
  add(outline.root(), b);
  EXPECT_EQ(numbers(outline), "1:0:0[0,5) 2:1:0[1,3) 4:2:0[2,3) 5:1:1[3,4) 3:1:2[4,5) ");
  outline.remove(*a);
  EXPECT_EQ(numbers(outline), "1:0:0[0,3) 5:1:0[1,2) 3:1:1[2,3) ");
  outline.insert(*a, *b);
  EXPECT_EQ(numbers(outline), "1:0:0[0,5) 5:1:0[1,2) 3:1:1[2,5) 2:2:0[3,5) 4:3:0[4,5) ");
}

TEST_F(OutlineTest, OnlyRowsInTheTreeAreFound) {
  Row* a = add(outline.root());
  Row* child = add(*a);
  outline.setPersistentId(*child, "kid");
  EXPECT_EQ(outline.rowCount(), 2u);
  outline.remove(*a);
  EXPECT_EQ(outline.rowCount(), 0u);
  EXPECT_EQ(outline.find(child->id()), nullptr);
  EXPECT_EQ(outline.findPersistent("kid"), nullptr);
  outline.insert(*a, outline.root());
  EXPECT_EQ(outline.find(child->id()), child);
  EXPECT_EQ(outline.findPersistent("kid"), child);
  outline.setPersistentId(*child, "other");
  EXPECT_EQ(outline.findPersistent("kid"), nullptr);
  EXPECT_EQ(outline.findPersistent("other"), child);
  EXPECT_EQ(outline.find(0), nullptr);
  EXPECT_EQ(outline.find(99), nullptr);
}

TEST_F(OutlineTest, AReplacedOutlineGivesNoIdTwice) {
  Row* a = add(outline.root());
  outline.setPersistentId(*a, "kid");
  const std::uint64_t revision = outline.revision();
  Outline other(outline.nextId());
  Row* b = other.create(RowType::body, Text("y"), 0);
  other.insert(*b, other.root());
  other.setPersistentId(*b, "new");
  outline.exchangeWith(other);
  EXPECT_EQ(other.findPersistent("kid"), a);
  EXPECT_EQ(numbers(outline), "1:0:0[0,2) 3:1:0[1,2) ");
  EXPECT_EQ(outline.find(2), nullptr);
  EXPECT_EQ(outline.find(3), b);
  EXPECT_EQ(&outline.mutableRow(*b), b);
  EXPECT_EQ(outline.findPersistent("kid"), nullptr);
  EXPECT_EQ(outline.findPersistent("new"), b);
  EXPECT_EQ(add(*b)->id(), 4u);
  EXPECT_GT(outline.revision(), revision);
}

TEST_F(OutlineTest, FindsEveryPersistentIdThroughManyChanges) {
  std::mt19937 random(3);
  std::map<std::string, const Row*> held;
  std::vector<Row*> rows;
  for (int step = 0; step < 20'000; ++step) {
    const std::string id = std::to_string(random() % 700);
    if (rows.size() < 400 || random() % 3 == 0) rows.push_back(add(outline.root()));
    Row& row = *rows[random() % rows.size()];
    held.erase(row.persistentId());
    if (random() % 2 == 0 && held.count(id) == 0) {
      outline.setPersistentId(row, id);
      held[id] = &row;
    } else {
      outline.remove(row);
      std::erase(rows, &row);
    }
    const auto found = held.find(id);
    ASSERT_EQ(outline.findPersistent(id), found == held.end() ? nullptr : found->second) << step;
  }
  for (const auto& [id, row] : held) EXPECT_EQ(outline.findPersistent(id), row);
}

TEST(TextTest, HasOneFormForOneLook) {
  const Attributes strong{{"strong", ""}};
  const Text made({{"a", {}}, {"", strong}, {"b", {}}, {"c", strong}, {"d", {{"strong", ""}}}, {"e", {}}});
  const std::vector<document::Run> expected{{"ab", {}}, {"cd", strong}, {"e", {}}};
  EXPECT_EQ(made.runs(), expected);
  EXPECT_EQ(made.string(), "abcde");
  EXPECT_EQ(Text({{"x", {{"b", "1"}, {"a", "2"}}}}), Text({{"x", {{"a", "2"}, {"b", "1"}}}}));
  EXPECT_TRUE(Text({{"x", {}}, {"y", {}}}).isPlain());
}

struct TimeCase {
  const char* text;
  const char* printed;  ///< null: not a time
};

TEST(TimestampTest, ReadsAndPrints) {
  const TimeCase cases[] = {
      {"2026-11-21T07:06:37Z", "2026-11-21T07:06:37Z"},
      {"2026-11-21T07:06:37.5Z", "2026-11-21T07:06:37.500Z"},
      {"2026-11-21T07:06:37.123456+01:30", "2026-11-21T05:36:37.123Z"},
      {"2026-11-21 07:06-0100", "2026-11-21T08:06:00Z"},
      {"1969-12-31T23:59:59.999Z", "1969-12-31T23:59:59.999Z"},
      {"0000-01-01T00:00:00Z", "0000-01-01T00:00:00Z"},
      {"9999-12-31T23:59:59.999Z", "9999-12-31T23:59:59.999Z"},
      {"2026-02-29T00:00:00Z", nullptr},
      {"2026-11-21", nullptr},
      {"2026-11-21T24:00:00Z", nullptr},
      {"2026-11-21T07:06:37Zx", nullptr},
      {"2026-11-21T07:06:37.Z", nullptr},
      {"", nullptr},
  };
  for (const TimeCase& row : cases) {
    const auto time = parseTimestamp(row.text);
    ASSERT_EQ(time.has_value(), row.printed != nullptr) << row.text;
    if (time) {
      EXPECT_EQ(formatTimestamp(*time), row.printed);
    }
  }
}

}  // namespace
}  // namespace vell::document
