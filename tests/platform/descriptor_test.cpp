#include "platform/descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>
#include <thread>

#include "platform/socket.h"

namespace vell::platform {
namespace {

class Ends {
 public:
  Ends() {
    std::array<int, 2> both{};
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, both.data()) != 0) throw std::runtime_error("no sockets");
    here = Descriptor(both[0]);
    there = Descriptor(both[1]);
    prepareSocket(here.get());
  }
  Descriptor here, there;
};

TEST(WriteAll, WritesMoreThanFitsAtOnceWhetherTheDescriptorBlocksOrNot) {
  const std::string text(5'000'000, 'x');
  for (const int flags : {0, O_NONBLOCK}) {
    const Ends ends;
    ::fcntl(ends.here.get(), F_SETFL, flags);
    std::string read(text.size(), '\0');
    std::thread reader([&] { ::recv(ends.there.get(), read.data(), read.size(), MSG_WAITALL); });
    EXPECT_TRUE(writeAll(ends.here.get(), text));
    reader.join();
    EXPECT_EQ(read, text);
  }
}

TEST(WriteAll, ToASocketWhoseReaderIsGoneFailsWithoutASignal) {
  Ends ends;
  ends.there = Descriptor();
  EXPECT_FALSE(writeAll(ends.here.get(), "x", writeSocket));
  EXPECT_EQ(errno, EPIPE);
}

}  // namespace
}  // namespace vell::platform
