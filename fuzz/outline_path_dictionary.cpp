// Prints the words and signs of the language as a dictionary for the fuzzer.
#include <cstdio>
#include <string>

#include "outline_path/words.h"

using namespace vell::outline_path;

namespace {
void put(std::string_view word) { std::printf("\"%s\"\n", std::string(word).c_str()); }
}  // namespace

int main() {
  for (const auto word : keywords()) put(word);
  for (const Axis axis : verboseAxes()) put(spelling(axis));
  for (const TypeTest test : typeTests()) put(spelling(test));
  for (const auto names : functionNames()) {
    for (const auto name : names) put(std::string(name) + "(");
  }
  for (const char letter : relationModifiers) put(std::string("[") + letter + localeAwareLetter + "]");
  for (const auto word : {trueWord, falseWord, nullWord}) put(word);
}
