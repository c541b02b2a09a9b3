#pragma once

#include <string>
#include <string_view>

#include "cli/command.h"

// What the completion scripts of all shells are made of.
namespace vell::cli {

/// The values worth offering for an option, separated by blanks; files are not among them.
std::string offeredValues(const Option& option);

/// The text in single quotes, in which a single quote is written as `quote`.
std::string quoted(std::string_view text, std::string_view quote);

/// An explanation cut after its first sentence.
std::string_view brief(std::string_view text);

/// `'vell get' | 'vell get outline' | …`: every command but the root, as alternatives of a case.
std::string pathAlternatives(const Command& root, std::string_view separator);

/// `'vell get outline --output' | 'vell get outline -o'`: an option's names behind its command's.
std::string optionAlternatives(const TreeEntry& entry, const Option& option);

/// How a shell of the Bourne family completes the value of an option, inside a case.
struct ValueCaseStyle {
  std::string_view start;   ///< before the option's names
  std::string_view files;   ///< offers files
  std::string_view offer;   ///< offers words, which follow
  std::string_view behind;  ///< behind the words
};

/// A case for each option that takes a value.
std::string valueCases(const Command& root, const ValueCaseStyle& style);

}  // namespace vell::cli
