#include "bench/answers.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace vell::bench {
namespace {

constexpr const char* words[] = {"plan",   "the",    "garden", "call", "about", "naïve", "budget", "on",
                                 "Friday", "review", "notes",  "café", "and",   "ship",  "it",     "release"};
constexpr const char* types[] = {"body", "task", "heading", "note", "unordered"};

/// Writes rows whose keys stand in another order in each object.
class OutlineWriter {
 public:
  explicit OutlineWriter(const std::string& file) : out_(file, std::ios::binary) {}

  std::size_t write(std::size_t bytes) {
    put(R"({"rows":[)");
    for (bool first = true; written_ < bytes; first = false) {
      if (!first) put(",");
      put(row(0));
    }
    put(R"(],"persistentId":"b7Xk2Q","frontMatter":{"title":"Notes"}})");
    return written_;
  }

 private:
  using Members = std::vector<std::string>;

  void put(const std::string& text) {
    out_ << text;
    written_ += text.size();
  }

  std::size_t pick(std::size_t count) { return random_() % count; }

  std::string object(Members members) {
    std::shuffle(members.begin(), members.end(), random_);
    return "{" + joined(members) + "}";
  }

  static std::string joined(const Members& parts) {
    std::string text;
    for (const std::string& part : parts) text.append(text.empty() ? "" : ",").append(part);
    return text;
  }

  std::string row(int depth) {
    const auto id = std::to_string(++lastId_);
    Members runs{object({stringMember()})};
    if (pick(4) == 0) {
      const auto attrs = object({R"("strong":"")", R"("a":"https://example.com/)" + id + "\""});
      runs.push_back(object({stringMember(), R"("attrs":)" + attrs}));
    }
    Members members{R"("id":)" + id,
                    R"("type":")" + std::string(types[pick(5)]) + "\"",
                    R"("persistentId":"r)" + id + "\"",
                    R"("text":[)" + joined(runs) + "]",
                    R"("modified":"2026-03-14T15:09:26Z")",
                    R"("created":"2026-01-02T03:04:05Z")"};
    if (pick(3) == 0)
      members.push_back(R"("attributes":)" + object({R"("done":"2026-02-03")", R"("color":"red")"}));
    if (depth < 4 && pick(3) == 0) members.push_back(R"("children":[)" + joined(children(depth)) + "]");
    return object(std::move(members));
  }

  Members children(int depth) {
    Members rows(1 + pick(8));
    for (std::string& each : rows) each = row(depth + 1);
    return rows;
  }

  std::string stringMember() {
    std::string text = R"("string":")";
    const std::size_t count = 4 + pick(12);
    for (std::size_t i = 0; i < count; ++i) text.append(words[pick(16)]).append(" ");
    if (pick(20) == 0) text.append(R"(said \"later\"\n)");
    return text + "\"";
  }

  std::ofstream out_;
  std::size_t written_ = 0;
  std::uint32_t lastId_ = 0;
  std::mt19937 random_{7};
};

}  // namespace

void writeOutlineList(const std::string& file) {
  std::ofstream out(file, std::ios::binary);
  for (int i = 0; i < 8; ++i) {
    const auto number = std::to_string(i);
    out << (i == 0 ? "[" : ",") << R"({"persistentId":"b7Xk2Q)" << number
        << R"(","displayName":"Notes of week )" << number
        << R"(","fileURL":"file:///Users/someone/Documents/outlines/week-)" << number << R"(.vell"})";
  }
  out << "]";
}

std::size_t writeOutline(const std::string& file, std::size_t bytes) {
  return OutlineWriter(file).write(bytes);
}

}  // namespace vell::bench
