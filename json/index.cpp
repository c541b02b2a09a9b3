#include "json/index.h"

#include "json/error.h"
#include "json/indexer.h"
#include "json/structure.h"

namespace vell::json {

Index::Index(Text text) : text_(std::move(text)) {
  if (text_.size() >= maxSize) throw ParseError("the text holds 2 GiB or more", 0);
  Structure structure = findStructure(text_);
  indexTokens(text_.view(), structure.offsets.get(), structure.count);
  entries_ = std::move(structure.offsets);
}

}  // namespace vell::json
