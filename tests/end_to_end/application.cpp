#include "tests/end_to_end/application.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>

namespace vell::tests {

Ended vell(std::vector<std::string> arguments, const std::string& input) {
  return Process(VELL, std::move(arguments), input).wait();
}

std::string printed(std::vector<std::string> arguments, const std::string& input) {
  const std::string command = testing::PrintToString(arguments);
  const Ended ended = vell(std::move(arguments), input);
  EXPECT_EQ(ended.status, 0) << command << ": " << ended.error;
  return ended.output;
}

void awaitApplication() {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (vell({"get", "outlines"}).status != 0) {
    ASSERT_LT(std::chrono::steady_clock::now(), deadline) << "no application came";
  }
}

Application::Application(std::vector<std::string> files) : process_(VELL_HEADLESS, std::move(files)) {
  awaitApplication();
}

Ended Application::stop() {
  process_.signal(SIGTERM);
  return process_.wait();
}

std::vector<std::string> copySamples(const TemporaryDirectory& directory) {
  std::vector<std::string> copies;
  for (const auto& sample : std::filesystem::directory_iterator(VELL_SAMPLES)) {
    copies.push_back(directory.write(sample.path().filename().string(), contentOf(sample.path().string())));
  }
  return copies;
}

}  // namespace vell::tests
