#include "tests/cli/run.h"

#include <cstdio>
#include <memory>

#include "cli/entry.h"

namespace vell::cli {
namespace {

struct Closer {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Closer>;

File temporaryFile(std::string_view content = "") {
  File file(std::tmpfile());
  std::fwrite(content.data(), 1, content.size(), file.get());
  std::rewind(file.get());
  return file;
}

std::string content(const File& file) {
  std::rewind(file.get());
  std::string text;
  for (int c = std::fgetc(file.get()); c != EOF; c = std::fgetc(file.get())) text += static_cast<char>(c);
  return text;
}

}  // namespace

ArgumentList words(std::string_view line) {
  ArgumentList result;
  bool inWord = false, quoted = false;
  for (const char c : line) {
    if (c == '\'') {
      quoted = !quoted;
    } else if (c == ' ' && !quoted) {
      inWord = false;
      continue;
    }
    if (!inWord) result.emplace_back();
    inWord = true;
    if (c != '\'') result.back() += c;
  }
  return result;
}

Outcome run(const ArgumentList& arguments, std::string_view input) {
  const File in = temporaryFile(input), out = temporaryFile(), err = temporaryFile();
  Console console(fileno(in.get()), fileno(out.get()), fileno(err.get()));
  const int status = Vell::main(arguments, console);
  return {status, content(out), content(err)};
}

}  // namespace vell::cli
