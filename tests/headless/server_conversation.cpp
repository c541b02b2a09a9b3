#include "tests/headless/server_conversation.h"

namespace vell::headless {

nlohmann::json Conversation::call(const std::string& method, const json& params) {
  const json request = {{"id", 1}, {"method", method}, {"params", params}};
  const json answer = json::parse(client_.ask(request.dump()));
  return answer.contains("result") ? answer["result"] : answer["error"]["message"];
}

std::string Conversation::texts(const json& rows) {
  std::string all;
  for (const json& row : rows) {
    for (const json& run : row["text"]) all += run["string"].get<std::string>();
    if (row.contains("children")) all += "(" + texts(row["children"]) + ")";
    all += ' ';
  }
  if (!all.empty()) all.pop_back();
  return all;
}

}  // namespace vell::headless
