#include "outlines/opening.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <thread>

#include "ipc/client_error.h"
#include "outlines/location.h"
#include "outlines/resource_uri.h"
#include "platform/container.h"
#include "platform/files.h"
#include "platform/process.h"

namespace vell::outlines {

namespace {

using Seconds = std::chrono::duration<double>;

constexpr double pollInterval = 0.1;

/// Counts the time that opening may take.
class Countdown {
 public:
  explicit Countdown(double timeout) : timeout_(timeout) {}
  double waited() const { return Seconds(std::chrono::steady_clock::now() - start_).count(); }
  double left() const { return timeout_ - waited(); }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  double timeout_;
};

bool exists(const std::string& path) {
  std::error_code unreadable;
  return std::filesystem::exists(path, unreadable);
}

std::optional<std::string> persistentIdOf(const ipc::Answer& answer) {
  const auto id = answer.result().find("persistentId");
  return id ? id->string() : std::nullopt;
}

/// Not open, it may be, as long as another attempt could end better.
void throwUnlessNotOpen(const ipc::ClientError& error) {
  using Kind = ipc::ClientError::Kind;
  const bool forbidden = error.kind() == Kind::connect && error.code() == EPERM;
  if (forbidden || error.kind() == Kind::pathTooLong || error.kind() == Kind::socketCreate) throw error;
}

/// What the application says; none where it says that the outline is not open, or does not run.
template <class Record>
std::optional<ipc::Answer> ask(ipc::Application& application, const Record& where) {
  try {
    return application.request(where);
  } catch (const ipc::ClientError& error) {
    throwUnlessNotOpen(error);
    return std::nullopt;
  }
}

std::optional<ipc::Answer> ifOpen(std::optional<ipc::Answer> answer) {
  return answer && persistentIdOf(*answer) ? std::move(answer) : std::nullopt;
}

std::optional<ipc::Answer> raise(ipc::Application& application, std::optional<ipc::Answer> answer) {
  auto found = ifOpen(std::move(answer));
  if (found) bringOutlineToFront(application, *persistentIdOf(*found));
  return found;
}

OpenError notOpened(const std::string& path, const std::string& reason) {
  return OpenError("Vell could not open " + path + ": " + reason);
}

void launch(const std::string& path, const OpenOptions& options, const Countdown& time) {
  const std::string bundle = options.bundle ? *options.bundle : hostVellAppURL();
  try {
    platform::openFileWithApplication(path, bundle, Seconds(time.left()));
  } catch (const std::runtime_error& error) {
    throw notOpened(path, error.what());
  }
}

/// Why the application refused the file when it was asked to open it; none where it does not say.
std::optional<std::string> refusal(const ipc::Answer& answer) {
  const auto reason = answer.result().find("refused");
  return reason ? reason->string() : std::nullopt;
}

/// The outline once the application has it; none when the time is over. Throws OpenError as soon as the
/// application has refused it.
std::optional<ipc::Answer> await(ipc::Application& application, const std::string& path,
                                 const OpenOptions& options, const Countdown& time) {
  for (double left = time.left(); left > 0; left = time.left()) {
    if (options.onPoll) options.onPoll(time.waited());
    std::this_thread::sleep_for(Seconds(std::min(pollInterval, left)));
    auto answer = ask(application, ipc::OutlineFindByPath{path});
    if (const auto reason = answer ? refusal(*answer) : std::nullopt) throw notOpened(path, *reason);
    if (auto found = raise(application, std::move(answer))) return found;
  }
  return std::nullopt;
}

ipc::Answer launchAndAwait(ipc::Application& application, const std::string& path, const std::string& what,
                           const OpenOptions& options, const Countdown& time) {
  launch(path, options, time);
  if (auto found = await(application, path, options, time)) return std::move(*found);
  throw OpeningTimedOut("Timed out waiting for Vell to open" + what);
}

}  // namespace

std::optional<ipc::Answer> findOpenOutline(ipc::Application& application,
                                           const ipc::OutlineFindByPath& where) {
  return ifOpen(ask(application, where));
}

std::optional<ipc::Answer> findOpenOutline(ipc::Application& application,
                                           const ipc::OutlineFindByPersistentId& where) {
  return ifOpen(ask(application, where));
}

void bringOutlineToFront(ipc::Application& application, const std::string& persistentId) {
  application.request(ipc::OutlineBringToFront{persistentId});
}

ipc::Answer openOutlineViaLaunchServices(ipc::Application& application, const std::string& absolutePath,
                                         const OpenOptions& options) {
  if (!exists(absolutePath)) throw OpenError("File not found: " + absolutePath);
  if (std::filesystem::is_directory(absolutePath)) throw notOpened(absolutePath, "it is a folder");
  if (auto open = raise(application, ask(application, ipc::OutlineFindByPath{absolutePath})))
    return std::move(*open);
  return launchAndAwait(application, absolutePath, ": " + absolutePath, options, Countdown(options.timeout));
}

ipc::Answer openOutlineByPersistentId(ipc::Application& application, const std::string& persistentId,
                                      const OpenOptions& options) {
  if (auto open = raise(application, ask(application, ipc::OutlineFindByPersistentId{persistentId})))
    return std::move(*open);
  const Countdown time(options.timeout);
  const std::vector<std::string> files = resolveFileURLs(persistentId, options.timeout);
  if (files.empty()) throw OpenError("No outline found with persistentId: " + persistentId);
  const auto file = std::find_if(files.begin(), files.end(), exists);
  if (file == files.end()) throw OpenError("File not found: " + files.front());
  return launchAndAwait(application, *file, " persistentId: " + persistentId, options, time);
}

/// What to write instead of a target that leads to no file; empty where nothing is known.
static std::string advice(const std::string& target) {
  if (target.rfind("file://", 0) == 0) {
    const auto path = filePath({.persistentId = {}, .displayName = {}, .fileURL = target});
    return path ? " (write the path: " + *path + ")" : " (write a path)";
  }
  if (target.rfind("~/", 0) == 0)
    return " (write the path: " + platform::homeDirectory() + target.substr(1) + ")";
  if (target.find_first_of("/.") == std::string::npos)
    return " (for a persistent id write id:" + target + ")";
  return {};
}

ipc::Answer openOutline(ipc::Application& application, const std::string& target,
                        const OpenOptions& options) {
  if (target.empty()) throw OpenError("File not found: the path is empty");
  if (target.find('\0') != std::string::npos) throw OpenError("A path or id holds no NUL character");
  if (target.rfind("id:", 0) == 0) return openOutlineByPersistentId(application, target.substr(3), options);
  const std::string path = absolutize(target);
  if (!exists(path)) throw OpenError("File not found: " + path + advice(target));
  return openOutlineViaLaunchServices(application, path, options);
}

std::vector<std::string> resolveFileURLs(const std::string& persistentId, double timeout) {
  return platform::findFilesByIdentifier(persistentId, Seconds(timeout));
}

}  // namespace vell::outlines
