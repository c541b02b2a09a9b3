#include "json/index.h"

#include "json/error.h"
#include "json/indexer.h"
#include "json/scalars.h"
#include "json/structure.h"

namespace vell::json {

Index::Index(Text text) : text_(std::move(text)) {
  if (text_.size() >= maxSize) throw ParseError("the text holds 2 GiB or more", 0);
  Structure structure = findStructure(text_);
  tokens_ = std::move(structure.offsets);
  const TokenRange tokens = indexTokens(text_.view(), tokens_.get(), structure.first, structure.count);
  firstToken_ = tokens.first;
  endToken_ = tokens.end;
}

// Between a string and the token behind it stand only blanks, punctuation and closing brackets, so its
// closing quote is the last one before that token.
std::string_view Index::rawString(std::uint32_t token) const {
  const std::size_t open = begin(token);
  const std::size_t behind = token + 1 < endToken_ ? begin(token + 1) : text_.size();
  const char* data = text_.data();
  std::size_t close = behind - 1;
  while (data[close] != '"') --close;
  return {data + open + 1, close - open - 1};
}

std::string_view Index::scalar(std::uint32_t token) const {
  return scalarAt(text_.view(), begin(token), text_.size());
}

}  // namespace vell::json
