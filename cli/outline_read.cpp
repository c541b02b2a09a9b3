#include "cli/outline_read.h"

#include <algorithm>
#include <iterator>

#include "ipc/methods.h"

namespace vell::cli {
namespace {

/// The enumerator that stands at the place of the option's value among its names.
template <class Enum, std::size_t count>
Enum chosen(const Arguments& arguments, const Option& option, const std::string_view (&names)[count],
            Enum otherwise) {
  const auto value = arguments.value(option);
  if (!value) return otherwise;
  return static_cast<Enum>(std::find(std::begin(names), std::end(names), *value) - std::begin(names));
}

}  // namespace

std::string name(OutputFormat format) {
  return std::string(outputFormatNames[static_cast<std::size_t>(format)]);
}

std::string name(RowShape shape) { return std::string(rowShapeNames[static_cast<std::size_t>(shape)]); }

bool isText(OutputFormat format) { return format != OutputFormat::json && format != OutputFormat::session; }

OutlineReadCommonOptions::OutlineReadCommonOptions(const Arguments& arguments, Console& console)
    : global(arguments, console),
      outline(arguments.value(outlineOption)),
      shape(chosen(arguments, shapeOption, rowShapeNames, RowShape::tree)),
      output(chosen(arguments, outputOption, outputFormatNames, OutputFormat::session)) {}

void fetchOutline(const OutlineReadCommonOptions& options, std::vector<std::string> refs, bool rowsOnly,
                  Console& console) {
  if (isText(options.output)) options.global.warnPrettyIgnored(name(options.output) + " output");
  const ipc::OutlineGet read{.rowRefs = std::move(refs),
                             .format = name(options.output),
                             .shape = name(options.shape),
                             .rows = rowsOnly,
                             .outline = options.outline};
  const ipc::Answer answer = call(read, console);
  writeEncoded(answer.result(), console);
  warnOfNoMatch(answer, *read.rowRefs, console);
}

void writeEncoded(const json::Node& data, Console& console) {
  if (data.kind() != json::Kind::string) return console.print(data, json::Layout::indented);
  console.out.write(*data.string());
  console.out.write("\n");
}

}  // namespace vell::cli
