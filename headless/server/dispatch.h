#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "headless/editing/problem.h"
#include "headless/server/methods.h"
#include "headless/server/outline_use.h"
#include "headless/server/request.h"
#include "json/text.h"

namespace vell::headless {

/// One line of a client, to be answered. Never throws for what a request holds.
class Incoming {
 public:
  /// `now`: the answer takes no longer than other clients should wait. `beside`: it may, and has a thread.
  /// `later`: there is no thread for it, or its outline is not free.
  enum class Turn { now, beside, later };

  /// Takes the line apart, unless that takes long.
  explicit Incoming(json::Text line);

  /// It is a script, or a line that is not taken apart yet.
  bool mayBeScript() const;
  /// When to answer. Unless that is later, the request uses its outline from here to its answer.
  Turn turn(Application& application, bool threadIsFree);
  /// Carries the request out and returns the answer's line: a result, or an error that says what is wrong.
  /// Returns "" for a blank line and for a request without an id, and nothing where only now the outline
  /// turns out not to be free: the request needs another turn. Throws Abandoned.
  std::optional<std::string> answer(Application& application, const Subscriber& subscriber);

  /// The answer where the request cannot be carried out.
  std::string refusal(std::string_view reason);

 private:
  void parse();
  bool isParsed() const { return line_.view().empty(); }
  bool enter(Application& application, OpenOutline& opened, Use use);
  std::optional<std::string> result(Application& application, const Subscriber& subscriber);

  json::Text line_;  ///< until it is parsed
  std::optional<Request> request_;
  std::string refusal_;  ///< the answer to what is no request
  std::optional<OutlineUse> use_;
  std::optional<OutlineWait> wait_;  ///< while its outline is not free
};

/// Answers a call from within a script, in the script's thread, once its outline is free for it, with the
/// JSON text of the result. Failures are thrown.
std::string carryOut(std::string_view method, const Call& call);
std::string carryOut(Method method, Use use, const Call& call);

}  // namespace vell::headless
