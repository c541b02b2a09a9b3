#include "outline_path/drafts.h"

namespace vell::outline_path {

void Drafts::grow() {
  const std::size_t size = first_.size() << (further_.size() + 1);
  further_.push_back(std::unique_ptr<Draft[]>(new Draft[size]));
  next_ = further_.back().get();
  end_ = next_ + size;
}

}  // namespace vell::outline_path
