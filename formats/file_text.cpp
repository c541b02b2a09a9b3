#include "formats/file_text.h"

namespace vell::formats {

FileText::FileText(std::string text) : own_(std::move(text)), pieces_{{false, 0, own_.size()}} {}

void FileText::copy(std::size_t begin, std::size_t end) {
  if (begin == end) return;
  const bool goesOn = !pieces_.empty() && pieces_.back().isCopied && pieces_.back().end == begin;
  if (!goesOn) pieces_.push_back({true, begin, begin});
  pieces_.back().end = end;
}

void FileText::append(std::string_view text) {
  if (text.empty()) return;
  if (pieces_.empty() || pieces_.back().isCopied) pieces_.push_back({false, own_.size(), own_.size()});
  own_ += text;
  pieces_.back().end = own_.size();
}

std::vector<std::string_view> FileText::pieces() const {
  std::vector<std::string_view> views;
  views.reserve(pieces_.size());
  for (const Piece& piece : pieces_) views.push_back(view(piece));
  return views;
}

std::string FileText::string() const {
  std::string text;
  for (const std::string_view piece : pieces()) text += piece;
  return text;
}

}  // namespace vell::formats
