#include "cli/outline_read.h"

#include <algorithm>
#include <iterator>

#include "ipc/methods.h"
#include "json/rewrite.h"

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
  ipc::VellClient client;
  const ipc::Answer answer = client.request(read);
  writeEncoded(answer.result(), console.out);
  warnOfNoMatch(answer, *read.rowRefs, console);
}

void writeEncoded(const json::Node& data, Output& out) {
  if (data.kind() == json::Kind::string) {
    out.write(*data.string());
  } else {
    json::write(data, json::Layout::indented, out);
  }
  out.write("\n");
}

}  // namespace vell::cli
