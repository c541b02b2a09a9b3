#pragma once

#include <string>
#include <vector>

#include "headless/editing/update_rows.h"
#include "headless/storage/application.h"
#include "json/writer.h"

namespace vell::headless {

// The JSON texts that several methods answer with. Rows stand in session shape, without their children.

/// {"key":value}
template <class Value>
std::string memberAnswer(std::string_view key, const Value& value) {
  std::string text;
  json::Writer(text).beginObject().member(key, value).endObject();
  return text;
}

std::string rowAnswer(const Row& row);
/// [row,…]
std::string rowsAnswer(const std::vector<const Row*>& rows);
/// [{"row":row,"fieldErrors":{"field":"message",…}},…], without `fieldErrors` where there are none.
std::string updatedRowsAnswer(const std::vector<UpdatedRow>& rows);
/// {"displayName","fileURL","persistentId"}
std::string summary(const OpenOutline& opened);
/// The summaries of all open outlines, frontmost first.
std::string summaries(const Application& application);
/// {"collapsed","focused","id","outlineId","selection"}
std::string editorSnapshot(const OpenOutline& opened);

}  // namespace vell::headless
