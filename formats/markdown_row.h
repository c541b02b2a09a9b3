#pragma once

#include <string>

#include "formats/markdown_format.h"
#include "formats/rows.h"

namespace vell::formats {

/// How a row is to be written.
struct MarkdownRowStyle {
  MarkdownForm form = MarkdownForm::paragraph;
  const MarkdownRow* read = nullptr;  ///< what it was read as, if it was
  std::string mark;                   ///< of an item: "-", "2."
  std::string gap = " ";              ///< behind the mark of an item, a heading or a quote
  std::size_t level = 0;              ///< of a heading
  bool levelIsGranted = false;        ///< the row asks for that level
  bool tellsType = false;             ///< even where the form tells it
  std::optional<std::size_t> depth;   ///< to tell in the trailer
  bool isFirst = false;               ///< the text begins with it
  bool isSetext = false;
};

/// The row's lines, joined by line feeds, without what containers put in front of them.
std::string writeMarkdownRow(const Row& row, const MarkdownRowStyle& style);

/// The form that says what the row's type is; `paragraph` where none can.
MarkdownForm naturalForm(const Row& row, std::optional<std::size_t> toldDepth = {});

}  // namespace vell::formats
