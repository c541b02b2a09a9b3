#include "json/structure.h"

#include <simdjson.h>

#include <new>

#include "json/error.h"
#include "json/faults.h"
#include "json/indexer.h"
#include "json/large_pages.h"

namespace vell::json {
namespace {

static_assert(Text::padding >= simdjson::SIMDJSON_PADDING);

/// simdjson's first stage, writing into an array of ours.
class Tokenizer {
 public:
  explicit Tokenizer(std::size_t size) {
    const auto error =
        simdjson::get_active_implementation()->create_dom_parser_implementation(size, 1, stage_);
    if (error) throw std::bad_alloc();
  }

  /// `room` must hold an offset for each byte, rounded up to 64, and nine more.
  simdjson::error_code run(const Text& text, std::uint32_t* room) {
    stage_->structural_indexes.reset(room);
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const auto error = stage_->stage1(bytes, text.size(), simdjson::stage1_mode::regular);
    static_cast<void>(stage_->structural_indexes.release());
    return error;
  }

  std::size_t count() const { return stage_->n_structural_indexes; }

 private:
  std::unique_ptr<simdjson::internal::dom_parser_implementation> stage_;
};

}  // namespace

Structure findStructure(const Text& text) {
  if (text.size() == 0) throw ParseError("the text is empty", 0);
  Structure structure;
  const std::size_t first = indexRoom(text.size());
  const std::size_t room = first + (text.size() + 63) / 64 * 64 + 9;
  structure.offsets.reset(new std::uint32_t[room]);  // not cleared: only what is used is ever touched
  preferLargePages(structure.offsets.get(), room * sizeof(std::uint32_t));
  Tokenizer tokenizer(text.size());
  const auto error = tokenizer.run(text, structure.offsets.get() + first);
  if (error) throwTextFault(text.view());
  structure.count = tokenizer.count();
  return structure;
}

}  // namespace vell::json
