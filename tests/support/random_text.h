#pragma once

#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace vell::tests {

/// How the parts of a language may be written; "`part`" in a form stands for any form of that part.
using Forms = std::map<std::string_view, std::vector<std::string_view>>;

/// A part in forms picked at random; in its first form where it would grow too deep.
inline std::string randomText(const Forms& forms, std::string_view part, std::mt19937& random,
                              int depth = 0) {
  const std::vector<std::string_view>& choice = forms.at(part);
  std::string_view form = choice[depth < 12 ? random() % choice.size() : 0];
  std::string text;
  for (std::size_t begin; (begin = form.find('`')) != form.npos;) {
    const std::size_t end = form.find('`', begin + 1);
    text += form.substr(0, begin);
    text += randomText(forms, form.substr(begin + 1, end - begin - 1), random, depth + 1);
    form.remove_prefix(end + 1);
  }
  return text.append(form);
}

}  // namespace vell::tests
