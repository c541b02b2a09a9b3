#include "document/source.h"

#include <stdexcept>

namespace vell::document {

SourceSpan shifted(SourceSpan span, std::size_t bytes) {
  span.begin += bytes;
  span.end += bytes;
  if (span.closeEnd == 0) return span;
  span.closeBegin += bytes;
  span.closeEnd += bytes;
  return span;
}

void Source::add(const Row& row, const SourceSpan& span) {
  if (spans_.empty()) first_ = row.id();
  if (row.id() != first_ + spans_.size()) throw std::logic_error("rows of a source come in order");
  spans_.push_back(span);
}

const SourceSpan* Source::find(SessionId row) const {
  return row >= first_ && row - first_ < spans_.size() ? &spans_[row - first_] : nullptr;
}

const RowContent* Source::original(SessionId row) const {
  const auto found = originals_.find(row);
  return found != originals_.end() ? &found->second : nullptr;
}

void Source::keepOriginal(const Row& row) {
  if (!find(row.id()) || original(row.id())) return;
  originals_.try_emplace(row.id(), RowContent{row.type(), row.text(), row.attributes(), row.persistentId(),
                                              row.created(), row.modified()});
}

}  // namespace vell::document
