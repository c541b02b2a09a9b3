#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>

#include "platform/descriptor.h"
#include "platform/process.h"
#include "platform/property_list.h"

namespace vell::platform {

namespace {

// Between fork and exec only async-signal-safe calls are allowed: other threads may hold any lock.

constexpr int reportDescriptor = 3;

void resetSignals() {
  for (int signal = 1; signal < NSIG; ++signal) ::signal(signal, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// Points the three standard descriptors to /dev/null and closes all others but the report, which a
/// successful exec closes.
void replaceDescriptors(int report, int highest) {
  ::dup2(report, reportDescriptor);
  ::fcntl(reportDescriptor, F_SETFD, FD_CLOEXEC);
  const int nothing = ::open("/dev/null", O_RDWR);
  for (int standard = 0; standard < 3; ++standard) ::dup2(nothing, standard);
  for (int fd = reportDescriptor + 1; fd < highest; ++fd) ::close(fd);
}

[[noreturn]] void execute(const char* executable, char* const* arguments, int report, int highest) {
  resetSignals();
  replaceDescriptors(report, highest);
  ::execv(executable, arguments);
  const int error = errno;
  ::_exit(::write(reportDescriptor, &error, sizeof error) == sizeof error ? 127 : 126);
}

/// Forks twice, so that the new process is an orphan that the system collects.
pid_t forkOrphan(const char* executable, char* const* arguments, int report, int highest) {
  const pid_t child = ::fork();
  if (child != 0) return child;
  ::setsid();
  const pid_t grandchild = ::fork();
  if (grandchild == 0) execute(executable, arguments, report, highest);
  ::_exit(grandchild < 0 ? errno : 0);
}

int highestDescriptor() {
  rlimit limit{};
  ::getrlimit(RLIMIT_NOFILE, &limit);
  constexpr rlim_t most = 65536;
  return static_cast<int>(limit.rlim_cur < most ? limit.rlim_cur : most);
}

[[noreturn]] void fail(const std::string& executable, int error) {
  throw std::runtime_error("cannot start " + executable + ": " + std::strerror(error));
}

/// Starts the executable with one argument in a session of its own, without this process's descriptors,
/// signal settings or terminal. The system collects it when it ends.
void startDetached(const std::string& executable, const std::string& argument) {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) fail(executable, errno);
  const Descriptor report(ends[0]);
  Descriptor reporter(ends[1]);
  for (const int end : ends) ::fcntl(end, F_SETFD, FD_CLOEXEC);
  std::array<char*, 3> arguments = {const_cast<char*>(executable.c_str()),
                                    const_cast<char*>(argument.c_str()), nullptr};
  const pid_t child = forkOrphan(executable.c_str(), arguments.data(), reporter.get(), highestDescriptor());
  if (child < 0) fail(executable, errno);
  reporter = Descriptor();
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (WIFEXITED(status) && WEXITSTATUS(status) != 0) fail(executable, WEXITSTATUS(status));
  int error = 0;
  if (::read(report.get(), &error, sizeof error) == sizeof error) fail(executable, error);
}

}  // namespace

void startBundleWithFile(const std::string& file, const std::string& bundle) {
  const std::string list = bundle + "/Contents/Info.plist";
  const auto info = readPropertyListStrings(list);
  if (!info) throw std::runtime_error("cannot read " + list);
  const auto executable = info->find("CFBundleExecutable");
  if (executable == info->end()) throw std::runtime_error(list + " names no CFBundleExecutable");
  startDetached(bundle + "/Contents/MacOS/" + executable->second, file);
}

}  // namespace vell::platform
