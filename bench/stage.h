#pragma once

#include <string>

#include "bench/process.h"

namespace vell::bench {

/// The `vell` that is measured, and the small programs beside it.
Command vell(const Command& arguments);
std::string program(const std::string& name);
/// An MCP server on the official TypeScript SDK that forwards to a socket.
Command sdkServer(const std::string& socket);

/// A directory of its own that HOME names while it lives; removed with all its files at the end.
class Stage {
 public:
  Stage();
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;
  ~Stage();

  /// Makes it the home of the programs that are started from now on, as a new stage is.
  void enter() const;
  std::string path(const std::string& name) const { return directory_ + "/" + name; }
  /// Copies a program here and gives its path. A linker writes its file piece by piece, which costs each
  /// start more than a file written at once, as an installed one is.
  std::string install(const std::string& program) const;
  /// Where the application listens below this home.
  std::string socket() const;
  /// An application that answers every request with the content of that file; returns when it listens.
  Background application(const std::string& answerFile) const;

 private:
  std::string directory_;
};

}  // namespace vell::bench
