#include <csignal>

#include "cli/entry.h"

int main(int count, char** arguments) {
  std::signal(SIGXFSZ, SIG_IGN);  // a file that may not grow further is an error of the write
  vell::cli::fillClosedDescriptors();
  vell::cli::Console console;
  return vell::cli::Vell::main({arguments + (count > 0 ? 1 : 0), arguments + count}, console);
}
