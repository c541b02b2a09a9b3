#include "headless/script/script_process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <vector>

#include "headless/access.h"
#include "headless/editing/problem.h"
#include "headless/script/script_channel.h"
#include "json/document.h"
#include "json/writer.h"
#include "platform/process.h"
#include "platform/socket.h"

extern char** environ;

namespace vell::headless {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// How often to look at the memory and at who still wants the answer.
constexpr milliseconds glance{20};

std::string unquoted(std::string_view text) {
  return json::Document(text).root().string().value_or(std::string());
}

struct Ends {
  platform::Descriptor ours;
  platform::Descriptor theirs;
};

Ends socketPair() {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) throw systemProblem("Cannot start the script");
  Ends pair{platform::Descriptor(ends[0]), platform::Descriptor(ends[1])};
  for (const int end : ends) platform::prepareSocket(end);
  return pair;
}

/// A child process with the socket as its standard input and no signal blocked; killed at the end of its
/// life.
class Process {
 public:
  Process(const std::string& program, int input) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    std::string name = program;
    std::string flag = scriptFlag;
    const std::array<char*, 3> arguments = {name.data(), flag.data(), nullptr};
    const int failure = posix_spawn(&id_, program.c_str(), &actions, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    errno = failure;
    if (failure != 0) throw systemProblem("Cannot start " + program + " for the script");
  }
  ~Process() {
    kill(id_, SIGKILL);
    while (waitpid(id_, nullptr, 0) < 0 && errno == EINTR) continue;
  }
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  std::size_t residentBytes() const { return platform::residentBytes(id_); }

 private:
  pid_t id_ = 0;
};

/// The application's side of one script.
class Conversation {
 public:
  Conversation(Ends ends, const std::string& program, ScriptHost& host, const ScriptLimits& limits)
      : process_(program, ends.theirs.get()),
        channel_(std::move(ends.ours)),
        host_(host),
        limits_(limits),
        end_(Clock::now() + limits.time) {}

  std::string evaluate(const Script& script, const std::string& version);

 private:
  ScriptMessage receive();
  void waitForMore();
  void answer(std::string_view call);

  Process process_;
  ScriptChannel channel_;
  ScriptHost& host_;
  const ScriptLimits limits_;
  const Clock::time_point end_;
};

std::string Conversation::evaluate(const Script& script, const std::string& version) {
  std::vector<std::string> texts{version, script.source};
  if (script.input) texts.push_back(*script.input);
  std::string request;
  json::Writer(request).array(texts);
  beside([&] { channel_.send("script", request); });
  for (;;) {
    const ScriptMessage message = receive();
    if (message.word == "call") answer(message.rest);
    if (message.word == "log") host_.log(unquoted(message.rest));
    if (message.word == "value") return std::string(message.rest);
    if (message.word == "fault") throw ScriptError(unquoted(message.rest));
  }
}

ScriptMessage Conversation::receive() {
  auto message = channel_.next();
  beside([&] {
    while (!message) {
      waitForMore();
      if (!channel_.receive()) throw ScriptError("The script's process ended before the script did.");
      message = channel_.next();
    }
  });
  return std::move(*message);
}

void Conversation::waitForMore() {
  for (;;) {
    throwIfAbandoned();
    const auto left = std::chrono::ceil<milliseconds>(end_ - Clock::now());
    if (left.count() <= 0) throw ScriptError("The script ran out of time and was stopped.");
    if (process_.residentBytes() > limits_.memory)
      throw ScriptError("The script used more than " + std::to_string(limits_.memory >> 20) +
                        " MB of memory and was stopped.");
    pollfd waiting{channel_.descriptor(), POLLIN, 0};
    if (poll(&waiting, 1, static_cast<int>(std::min(left, glance).count())) > 0) return;
  }
}

void Conversation::answer(std::string_view call) {
  const std::string method(takeWord(call));
  std::string result;
  std::string failure;
  try {
    result = host_.call(method, std::string(call));
  } catch (const Abandoned&) {
    throw;
  } catch (const std::exception& error) {
    failure = error.what();
  }
  beside([&] {
    if (result.empty()) {
      channel_.send("error", json::quoted(failure));
    } else {
      channel_.send("result", result);
    }
  });
}

/// Passes what the script asks for on to the application.
class RemoteHost : public ScriptHost {
 public:
  explicit RemoteHost(ScriptChannel& channel) : channel_(channel) {}

  std::string call(const std::string& method, const std::string& params) override {
    if (!channel_.send("call", method + " " + params)) _exit(0);
    const ScriptMessage answer = receive();
    if (answer.word == "error") throw std::runtime_error(unquoted(answer.rest));
    return std::string(answer.rest);
  }

  void log(const std::string& line) override { channel_.send("log", json::quoted(line)); }

  /// The next message; where the application is gone, the process ends.
  ScriptMessage receive() {
    auto message = channel_.next();
    while (!message) {
      if (!channel_.receive()) _exit(0);
      message = channel_.next();
    }
    return std::move(*message);
  }

 private:
  ScriptChannel& channel_;
};

}  // namespace

std::string runScript(const std::string& program, const Script& script, const std::string& version,
                      ScriptHost& host, ScriptLimits limits) {
  Conversation conversation(socketPair(), program, host, limits);
  return conversation.evaluate(script, version);
}

int serveScript() {
  // For a script that never ends in an application that was killed.
  const rlimit cpu{60, 60};
  setrlimit(RLIMIT_CPU, &cpu);
  ScriptChannel channel{platform::Descriptor(STDIN_FILENO)};
  RemoteHost host(channel);
  const ScriptMessage request = host.receive();
  const json::Document document(request.rest);
  const std::vector<json::Node> texts = document.root().elements();
  const std::string version = texts.at(0).string().value_or(std::string());
  const Script script{texts.at(1).string().value_or(std::string()),
                      texts.size() > 2 ? texts[2].string() : std::nullopt};
  try {
    channel.send("value", evaluateScript(script, version, host));
  } catch (const std::exception& error) {
    channel.send("fault", json::quoted(error.what()));
  }
  return 0;
}

}  // namespace vell::headless
