#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
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

TEST(Output, ToAReaderThatLeavesEndsQuietly) {
  std::signal(SIGPIPE, SIG_IGN);
  tests::TemporaryHome home;
  FakeApplication application(FakeApplication::result('"' + longText() + '"'));
  for (const char* line : {"get outline -o txt", "get outlines", "--help"}) {
    for (const std::size_t taken : {0UL, 1'500'000UL}) {
      if (taken > 0 && line[0] == '-') continue;
      int ends[2];
      ASSERT_EQ(pipe(ends), 0);
      std::thread reader([&] {
        std::string chunk(taken, '\0');
        for (std::size_t left = taken; left > 0;)
          left -= static_cast<std::size_t>(read(ends[0], chunk.data(), left));
        close(ends[0]);
      });
      if (taken == 0) reader.join();
      std::string err;
      EXPECT_EQ(runInto(Descriptor(ends[1]), words(line), err), 141) << line << ' ' << taken;
      EXPECT_EQ(err, "") << line << ' ' << taken;
      if (taken > 0) reader.join();
    }
  }
}

TEST(Output, BeyondTheLargestFileIsAnError) {
  std::signal(SIGXFSZ, SIG_IGN);
  tests::TemporaryHome home;
  FakeApplication application(FakeApplication::result('"' + longText() + '"'));
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  for (const rlim_t most : {100'000UL, 2'000'000UL}) {
    std::FILE* file = std::tmpfile();
    const rlimit limit{most, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    std::string err;
    EXPECT_EQ(runInto(Descriptor(dup(fileno(file))), words("get outline -o txt"), err), 1) << most;
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(err, "Error: Cannot write to standard output: File too large\n") << most;
    EXPECT_EQ(lseek(fileno(file), 0, SEEK_END), static_cast<off_t>(most));
    std::fclose(file);
  }
}

TEST(Output, ToAPipeThatDoesNotBlockArrivesWhole) {
  tests::TemporaryHome home;
  FakeApplication application(FakeApplication::result('"' + longText() + '"'));
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
  FakeApplication application(FakeApplication::result("1"));
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
