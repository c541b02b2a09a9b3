#pragma once

#include "bench/table.h"

namespace vell::bench {

// One function a row, each in a file of its own in rows/: it measures and adds lines to the table.
void getOutlines(Table& table);
void getOutline(Table& table);
void mcpStart(Table& table);
void mcpForwarded(Table& table);
void pathParse(Table& table);
void growth(Table& table);
void growthQuick(Table& table);
void pathEvaluate(Table& table);

}  // namespace vell::bench
