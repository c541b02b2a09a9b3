#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <functional>
#include <optional>

#include "platform/socket.h"
#include "tests/end_to_end/application.h"

namespace vell::tests {
namespace {

/// `vell observe` in front of the served samples; its reader has seen the first snapshot.
struct Observation {
  explicit Observation(bool readsASocket) {
    std::array<int, 2> ends{};
    if ((readsASocket ? socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) : pipe(ends.data())) != 0) return;
    reader = platform::Descriptor(ends[0]);
    platform::prepareSocket(reader.get());  // the child must not hold its own reader
    const platform::Descriptor output(ends[1]);
    platform::prepareSocket(output.get());
    observer.emplace(VELL, std::vector<std::string>{"observe", "outline", "//*", "-o", "txt"}, "",
                     output.get());
  }

  std::string read() const {
    std::array<char, 65536> bytes{};
    const ssize_t count = ::read(reader.get(), bytes.data(), bytes.size());
    return count > 0 ? std::string(bytes.data(), static_cast<std::size_t>(count)) : "";
  }

  TemporaryHome home;
  Application application{copySamples(home)};
  platform::Descriptor reader;
  std::optional<Process> observer;
};

TEST(Observing, EndsWithWhateverEndsFirst) {
  const struct {
    const char* what;
    bool readsASocket;
    std::function<void(Observation&)> act;
    int status;
    const char* error;
  } rows[] = {
      {"the reader leaves its pipe", false, [](Observation& o) { o.reader = platform::Descriptor(); }, 141,
       ""},
      {"the reader leaves its socket", true, [](Observation& o) { o.reader = platform::Descriptor(); }, 141,
       ""},
      {"an interrupt", false, [](Observation& o) { o.observer->signal(SIGINT); }, -SIGINT, ""},
      {"a reader that only ends its own writing stays", true,
       [](Observation& o) {
         shutdown(o.reader.get(), SHUT_WR);
         printed({"create", "row", "--text", "told"});
         EXPECT_NE(o.read().find("told"), std::string::npos);
         printed({"close", "outline"});
       },
       0, ""},
  };
  for (const auto& row : rows) {
    Observation observation(row.readsASocket);
    EXPECT_NE(observation.read(), "") << row.what;
    row.act(observation);
    const Ended ended = observation.observer->wait();
    EXPECT_EQ(ended.status, row.status) << row.what;
    EXPECT_EQ(ended.error, row.error) << row.what;
  }
}

}  // namespace
}  // namespace vell::tests
