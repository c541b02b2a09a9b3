#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <thread>

#include "cli/entry.h"
#include "platform/descriptor.h"
#include "tests/cli/run.h"
#include "tests/support/fake_application.h"
#include "tests/support/temporary_directory.h"

namespace vell::cli {
namespace {

using platform::Descriptor;
using tests::FakeApplication;

/// Longer than any buffer on the way.
std::string longText() { return std::string(3'000'000, 'x'); }

int runInto(const Descriptor& out, const ArgumentList& arguments, std::string& err) {
  std::FILE* file = std::tmpfile();
  Console console(0, out.get(), fileno(file));
  const int status = Vell::main(arguments, console);
  std::rewind(file);
  err.assign(4096, '\0');
  err.resize(std::fread(err.data(), 1, err.size(), file));
  std::fclose(file);
  return status;
}

TEST(Output, ToAFullDiskIsAnError) {
  const Descriptor full(open("/dev/full", O_WRONLY));
  if (!full) GTEST_SKIP() << "there is no /dev/full here";
  tests::TemporaryHome home;
  FakeApplication application([](const std::string& request) {
    return FakeApplication::result(request.find("outline.get") == std::string::npos ? "1"
                                                                                    : '"' + longText() + '"');
  });
  for (const char* line : {"get outlines", "get outline -o txt", "--help", "--version"}) {
    std::string err;
    EXPECT_EQ(runInto(full, words(line), err), 1) << line;
    EXPECT_EQ(err, "Error: Cannot write to standard output: No space left on device\n") << line;
  }
}

TEST(Output, ToAClosedPipeEndsQuietly) {
  std::signal(SIGPIPE, SIG_IGN);
  tests::TemporaryHome home;
  FakeApplication application(
      [](const std::string&) { return FakeApplication::result('"' + longText() + '"'); });
  for (const char* line : {"get outline -o txt", "get outlines", "--help"}) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    std::string err;
    EXPECT_EQ(runInto(Descriptor(ends[1]), words(line), err), 141) << line;
    EXPECT_EQ(err, "") << line;
  }
}

TEST(Output, ToAPipeThatDoesNotBlockArrivesWhole) {
  tests::TemporaryHome home;
  FakeApplication application(
      [](const std::string&) { return FakeApplication::result('"' + longText() + '"'); });
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  ASSERT_EQ(fcntl(ends[1], F_SETFL, O_NONBLOCK), 0);
  const Descriptor reader(ends[0]);
  std::string received;
  std::thread reading([&] {
    char chunk[4096];
    for (ssize_t count; (count = read(reader.get(), chunk, sizeof chunk)) > 0;) {
      received.append(chunk, static_cast<std::size_t>(count));
    }
  });
  std::string err;
  EXPECT_EQ(runInto(Descriptor(ends[1]), words("get outline -o txt"), err), 0) << err;
  reading.join();
  EXPECT_EQ(received, longText() + "\n");
}

TEST(Output, ToAClosedDescriptorNeverReachesTheApplication) {
  tests::TemporaryHome home;
  FakeApplication application([](const std::string&) { return FakeApplication::result("1"); });
  EXPECT_EXIT(
      {
        close(0);
        close(1);
        fillClosedDescriptors();
        Console console;
        // Leaks cannot be looked for in a process that lost its other thread.
        _exit(Vell::main(words("get outlines"), console));
      },
      testing::ExitedWithCode(1), "^Error: Cannot write to standard output: Bad file descriptor\n$");
  EXPECT_EQ(application.requests().size(), 1U);
}

}  // namespace
}  // namespace vell::cli
