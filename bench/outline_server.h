#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bench/stage.h"
#include "ipc/vell_client.h"

namespace vell::bench {

/// Writes an outline of that many rows; the format is the one that the file's name says.
void writeOutlineFile(const std::string& file, int rows);

/// `vell-headless` with a home of its own, a connection to it, and files with an outline of as many rows as
/// is asked for. Requests are about the frontmost outline. Whatever fails throws.
class OutlineServer {
 public:
  explicit OutlineServer(int rows);

  const Stage& stage() const { return stage_; }
  /// The outline in a format, made when it is first asked for.
  std::string file(const std::string& extension) const;

  /// Sends a request and waits for its answer, which it returns as it came.
  json::Text call(const std::string& method, const std::string& params = "{}");
  /// Opens a file, or brings it to the front.
  void open(const std::string& file);
  void close() { call("outline.close"); }
  /// Changes one row, another one each time.
  void change();
  /// Returns when the file that an outline was read from has been replaced by what `change` leads to.
  void awaitSaved(const std::string& file, const std::function<void()>& change) const;

 private:
  int rows_;
  int changes_ = 0;
  Stage stage_;
  Background application_;
  ipc::VellClient client_;
};

/// Clients that watch every row of the frontmost outline.
class Observers {
 public:
  /// Returns when each has got its first snapshot.
  Observers(const OutlineServer& server, int count);
  /// Returns when each has got so many lines more.
  void await(int lines);

 private:
  std::vector<platform::Descriptor> sockets_;
};

}  // namespace vell::bench
