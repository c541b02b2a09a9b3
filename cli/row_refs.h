#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace vell::cli {

using ArgumentList = std::vector<std::string>;

/// Whether a token names an option: it begins with "-" and is more than that.
bool isOptionToken(const std::string& token);

/// Where the option at index `at` and its values end; none when an argument, "--" or nothing stands there.
std::optional<std::size_t> optionSpan(std::size_t at, const ArgumentList& arguments,
                                      const ArgumentList& valueOptions,
                                      const ArgumentList& multiValueOptions);

/// Lets row references be written as plain arguments of `get outline` and `observe outline`, which take them
/// through an option: collects them behind one `--refs` or `--path`. Other command lines pass unchanged.
ArgumentList preprocessOutlineRefs(const ArgumentList& arguments);

}  // namespace vell::cli
