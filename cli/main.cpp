#include "cli/entry.h"

int main(int count, char** arguments) {
  vell::cli::fillClosedDescriptors();
  vell::cli::Console console;
  return vell::cli::Vell::main({arguments + (count > 0 ? 1 : 0), arguments + count}, console);
}
