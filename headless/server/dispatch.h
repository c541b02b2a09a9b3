#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "headless/editing/problem.h"
#include "headless/server/methods.h"
#include "headless/server/request.h"
#include "json/text.h"

namespace vell::headless {

/// One line of a client, to be answered. Never throws for what a request holds.
class Incoming {
 public:
  /// Takes the line apart, unless that takes long.
  explicit Incoming(json::Text line);

  /// Whether the answer may take longer than other clients should wait, or has to wait for others itself.
  bool mayTakeLong(Application& application) const;
  /// Carries the request out and returns the answer's line: a result, or an error that says what is wrong.
  /// Returns "" for a blank line and for a request without an id. Throws Abandoned.
  std::string answer(Application& application, const Subscriber& subscriber);

  /// The answer where the request cannot be carried out.
  std::string refusal(const Problem& problem);

 private:
  void parse();
  bool isParsed() const { return line_.view().empty(); }

  json::Text line_;  ///< until it is parsed
  std::optional<Request> request_;
  std::string refusal_;  ///< the answer to what is no request
};

/// Answers a method call once its outline is free for it, with the JSON text of the result. Failures are
/// thrown.
std::string carryOut(std::string_view method, const Call& call);
std::string carryOut(Method method, Use use, const Call& call);

}  // namespace vell::headless
