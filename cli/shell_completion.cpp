#include "cli/shell_completion.h"

#include <algorithm>
#include <set>

#include "cli/completion.h"
#include "text/display_width.h"

namespace vell::cli {
namespace {

// The scripts.

// Apple's bash is 3.2, which has no compopt: no blank is set behind a file there, and files are offered where
// nothing else is.
constexpr std::string_view bashScript =
    R"(# bash completion for vell, which tells what may be typed; from bash 3.2 on

_vell() {
  local answer line
  COMPREPLY=()
  if ! answer=$(command vell --complete bash "${COMP_LINE:0:$COMP_POINT}" "$2" "${COMP_TYPE-}" 2>/dev/null); then
    compopt +o nospace 2>/dev/null
    return
  fi
  compopt +o default 2>/dev/null
  while IFS= read -r line; do
    if [[ -n $line ]]; then COMPREPLY+=("$line"); fi
  done <<<"$answer"
}

complete -o default -o nospace -F _vell vell
)";

constexpr std::string_view zshScript = R"(#compdef vell
# zsh completion for vell, which tells what may be typed

_vell() {
  local answer line
  if ! answer=$(command vell --complete zsh "${(j: :)words[1,CURRENT-1]} $QIPREFIX$IPREFIX$PREFIX" 2>/dev/null); then
    compset -P '-*='
    _files
    return
  fi
  local -a whole shownWhole unfinished shownUnfinished lines
  if [[ $answer == *$'\t'*'  -- '* ]]; then lines=(-l); fi
  for line in ${(f)answer}; do
    if [[ ${line%%$'\t'*} == *[=:/] ]]; then
      unfinished+=("${line%%$'\t'*}") shownUnfinished+=("${line#*$'\t'}")
    else
      whole+=("${line%%$'\t'*}") shownWhole+=("${line#*$'\t'}")
    fi
  done
  compadd $lines -V vell -d shownWhole -a whole
  compadd $lines -V vell -S '' -d shownUnfinished -a unfinished
}

if [[ $funcstack[1] == _vell ]]; then _vell "$@"; else compdef _vell vell; fi
)";

constexpr std::string_view fishScript = R"(# fish completion for vell, which tells what may be typed

function __vell
    command -q vell; or return
    set -l answer (command vell --complete fish (commandline -pc | string collect) 2>/dev/null)
    if test $status -eq 0
        printf '%s\n' $answer
        return
    end
    set -l word (commandline -ct)
    set -l option (string match -r -- '^-[^=]*=' $word)
    for file in (__fish_complete_path (string replace -- "$option" '' $word))
        printf '%s\n' "$option$file"
    end
end

complete -c vell -k -f -a '(__vell)'
)";

// How shells take the answer.

/// Descriptions beside their words, as much of them as a line of a terminal holds.
class DescriptionColumn {
 public:
  explicit DescriptionColumn(const Candidates& candidates) {
    for (const Candidate& candidate : candidates)
      column_ = std::max(column_, text::displayWidth(candidate.word));
    column_ = std::min(column_, widest);
  }

  /// The blanks behind a word that lead to the column.
  std::string padding(const std::string& word) const {
    const std::size_t width = text::displayWidth(word);
    return std::string(column_ > width ? column_ - width : 0, ' ');
  }
  std::string fitting(const std::string& description) const {
    return text::firstColumns(text::displayText(description), line - column_).text;
  }

 private:
  static constexpr std::size_t line = 70, widest = 40;
  std::size_t column_ = 0;
};

/// A word that goes on behind these signs takes no blank.
bool isUnfinished(std::string_view word) {
  return word.ends_with('=') || word.ends_with(':') || word.ends_with('/');
}

/// A tab between words and descriptions; zsh shows what stands behind the tab, the word included.
void writeDescribed(const Candidates& candidates, Shell shell, Output& out) {
  const DescriptionColumn column(candidates);
  for (const auto& [word, description] : candidates) {
    out.write(word + "\t");
    if (shell == Shell::zsh) out.write(word);
    if (shell == Shell::zsh && !description.empty()) out.write(column.padding(word) + "  -- ");
    out.write(column.fitting(description) + "\n");
  }
}

/// What bash does with the candidates.
struct BashQuestion {
  TypedLine kept;
  bool lists = false;  // it may show them, and insert no more than their common beginning
};

BashQuestion bashQuestion(const std::string& line, const ArgumentList& question) {
  const std::string replaced = question.size() > 2 ? question[2] : "";
  const std::string type = question.size() > 3 ? question[3] : "";
  const std::string_view kept =
      line.ends_with(replaced) ? std::string_view(line).substr(0, line.size() - replaced.size()) : line;
  // COMP_TYPE is the code of a character: tab, "?", "!" or "@". Other ways of completing insert whole lines.
  const bool lists = type.empty() || type == "9" || type == "63" || type == "33" || type == "64";
  return {splitLine(kept, Shell::bash), lists};
}

/// The candidates without what stays on the line, quoted, those that begin like the word that is typed.
Candidates insertedByBash(const Candidates& candidates, const std::string& typed, const TypedLine& kept) {
  const std::string& front = kept.words.back();
  Candidates inserted;
  for (const auto& [word, description] : candidates) {
    if (!word.starts_with(typed) || !word.starts_with(front)) continue;
    if (const auto rest = quotedForBash(word.substr(front.size()), kept.openQuote))
      inserted.push_back({*rest, description});
  }
  return inserted;
}

/// Whether readline, which may be told not to tell letter cases apart, still sees different words.
bool staysDistinct(const Candidates& candidates) {
  std::set<std::string> seen;
  return std::all_of(candidates.begin(), candidates.end(), [&](const Candidate& candidate) {
    std::string folded = candidate.word;
    for (char& c : folded) c = c == '_' ? '-' : static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
    return seen.insert(folded).second;
  });
}

/// Bash knows no descriptions: where it lists the words, they become part of these, in brackets. Should one
/// ever come into a command line, bash refuses that for its bracket, unless it is within quotes.
void writeForBash(const Candidates& all, const std::string& typed, const BashQuestion& question,
                  Output& out) {
  const Candidates candidates = insertedByBash(all, typed, question.kept);
  const DescriptionColumn column(candidates);
  const bool quoted = question.kept.openQuote != 0;
  const bool described = question.lists && !quoted && candidates.size() > 1 && staysDistinct(candidates);
  for (const auto& [word, description] : candidates) {
    out.write(word);
    if (described && !description.empty()) {
      out.write(column.padding(word) + "  (" + column.fitting(description) + ")");
    } else if (!quoted && !isUnfinished(word)) {
      out.write(" ");
    }
    out.write("\n");
  }
}

/// Whether a word in front of the program's name is no part of the command: "A=1 vell get".
bool setsVariable(const std::string& word) {
  return word.find('=') != std::string::npos && word.find('=') < word.find('/');
}

int answer(const Command& root, const ArgumentList& question, Output& out) {
  const auto name =
      std::find(std::begin(shellNames), std::end(shellNames), question.empty() ? "" : question[0]);
  if (name == std::end(shellNames) || question.size() < 2) return ExitStatus::usage;
  const auto shell = static_cast<Shell>(name - std::begin(shellNames));
  const std::string& line = question[1];
  ArgumentList words = splitLine(line, shell).words;
  while (!words.empty() && setsVariable(words.front())) words.erase(words.begin());
  if (words.size() < 2) return ExitStatus::usage;
  words.erase(words.begin());
  const auto candidates = candidatesFor(root, words);
  if (!candidates) return ExitStatus::failure;
  if (shell == Shell::bash) {
    writeForBash(*candidates, words.back(), bashQuestion(line, question), out);
  } else {
    writeDescribed(*candidates, shell, out);
  }
  out.flush();
  return ExitStatus::success;
}

}  // namespace

std::string_view completionScript(std::string_view shell) {
  if (shell == "bash") return bashScript;
  return shell == "zsh" ? zshScript : fishScript;
}

int complete(const Command& root, const ArgumentList& question, Console& console) {
  try {
    return answer(root, question, console.out);
  } catch (const std::exception&) {
    return ExitStatus::failure;  // the shell has nothing better to offer than files
  }
}

}  // namespace vell::cli
