#pragma once

#include <functional>
#include <utility>

namespace vell::mcp {

/// Calls back when a list has changed: at once, or once at the end of a batch of changes.
class ChangeNotice {
 public:
  /// Holds the notice back while it lives.
  class Batch {
   public:
    explicit Batch(ChangeNotice& notice) : notice_(&notice) { ++notice.batches_; }
    Batch(Batch&& other) noexcept : notice_(std::exchange(other.notice_, nullptr)) {}
    Batch& operator=(Batch&&) = delete;
    ~Batch() {
      if (notice_ && --notice_->batches_ == 0 && std::exchange(notice_->due_, false)) notice_->tell();
    }

   private:
    ChangeNotice* notice_;
  };

  void onChanged(std::function<void()> callback) { callback_ = std::move(callback); }
  void changed() {
    due_ = batches_ > 0;
    if (!due_) tell();
  }

 private:
  void tell() {
    if (callback_) callback_();
  }

  std::function<void()> callback_;
  int batches_ = 0;
  bool due_ = false;
};

}  // namespace vell::mcp
