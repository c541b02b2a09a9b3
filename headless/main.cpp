
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <sstream>

#include "headless/server/run.h"

namespace {

constexpr int usageStatus = 64;

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Vell without a desktop: serves outline files to vell over the application's socket.",
               "vell-headless");
  app.set_version_flag("--version", VELL_VERSION);
  app.footer(
      "Runs until SIGTERM, SIGINT or SIGHUP. Where Vell runs already, the files are opened there and this "
      "ends at once.\n"
      "The socket is Library/Containers/app.vell.Vell/Data/cli.sock in the home directory.");
  std::vector<std::string> files;
  app.add_option("FILE", files,
                 "Outlines to open (.vell, .md, .markdown, .opml, .txt, .json); the first comes to front.");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    std::ostringstream out;  // the standard streams are not set up
    std::ostringstream err;
    const int status = app.exit(error, out, err);
    std::fputs(out.str().c_str(), stdout);
    std::fputs(err.str().c_str(), stderr);
    return status == 0 ? 0 : usageStatus;
  }
  try {
    return vell::headless::run(files, VELL_VERSION);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "vell-headless: %s\n", failure.what());
    return 1;
  }
}
