#include "tests/support/bundle.h"

#include <filesystem>
#include <thread>

namespace vell::tests {

namespace fs = std::filesystem;

Bundle::Bundle(const std::string& script, const std::string& executable) {
  directory_.write(
      "Vell.app/Contents/Info.plist",
      R"(<plist version="1.0"><dict><key>VellHeadless</key><string/><key>CFBundleExecutable</key><string>)" +
          executable + "</string></dict></plist>");
  const std::string app =
      directory_.write("Vell.app/Contents/MacOS/app", "#!/bin/sh\ndir=${0%/Vell.app/*}\n" + script);
  fs::permissions(app, fs::perms::owner_all);
}

std::string Bundle::await(const std::string& name) const {
  while (!fs::exists(directory_ / name)) std::this_thread::yield();
  return contentOf(directory_ / name);
}

}  // namespace vell::tests
