#include "formats/json_reader.h"

#include <nlohmann/json.hpp>
#include <vector>

#include "formats/tree_builder.h"
#include "text/lines.h"

namespace vell::formats {
namespace {

/// What the reader stands in.
enum class Place { top, document, frontMatter, rows, row, runs, run, runAttrs, attributes, ignored };

/// Reads bytes and tells how far the parser has come.
class CountingIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  CountingIterator(const char* at, const char** reached) : at_(at), reached_(reached) {}
  reference operator*() const { return *at_; }
  CountingIterator& operator++() {
    *reached_ = ++at_;
    return *this;
  }
  bool operator==(const CountingIterator& other) const { return at_ == other.at_; }
  bool operator!=(const CountingIterator& other) const { return at_ != other.at_; }

 private:
  const char* at_;
  const char** reached_;
};

/// A row whose object is not closed yet.
struct OpenRow {
  Row* row = nullptr;
  RowContent fields;
  bool hasModified = false;
};

/// Takes the parser's events; keeps its own stack, so depth costs no call frames.
class JsonReader {
 public:
  using Number = nlohmann::json::number_integer_t;
  using Unsigned = nlohmann::json::number_unsigned_t;
  using Float = nlohmann::json::number_float_t;

  JsonReader(std::string_view text, Timestamp time, Outline& outline)
      : text_(text), reached_(text.data()), time_(time), outline_(outline) {
    outline_.setCreated(time);
  }

  void read() {
    const CountingIterator begin(text_.data(), &reached_);
    const CountingIterator end(text_.data() + text_.size(), &reached_);
    nlohmann::json::sax_parse(begin, end, this);
  }
  /// Reads what stands behind that key in a row.
  RowContent readMember(std::string_view key) {
    places_ = {Place::row};
    key_ = key;
    open_.emplace_back();
    read();
    return std::move(fields());
  }

  bool null() { return value("null"); }
  bool boolean(bool) { return value("a truth value"); }
  bool number_integer(Number) { return value("a number"); }
  bool number_unsigned(Unsigned) { return value("a number"); }
  bool number_float(Float, const std::string&) { return value("a number"); }
  bool binary(nlohmann::json::binary_t&) { return false; }
  bool string(std::string& text);
  bool key(std::string& name);
  bool start_object(std::size_t);
  bool end_object();
  bool start_array(std::size_t);
  bool end_array();
  bool parse_error(std::size_t position, const std::string& lastToken,
                   const nlohmann::json::exception& error);

 private:
  [[noreturn]] void fail(const std::string& fault) const {
    const auto offset = static_cast<std::size_t>(reached_ - text_.data());
    throw FormatError(fault, text::lineNumber(text_, offset), offset);
  }
  [[noreturn]] void mismatch(std::string_view expected, std::string_view found) const;
  bool value(std::string_view found);
  void documentString(const std::string& text);
  void rowString(const std::string& text);
  Timestamp time(const std::string& text) const;
  Place objectPlace() const;
  Place arrayPlace() const;
  void openRow();
  void closeRow();
  Place place() const { return places_.back(); }
  RowContent& fields() { return open_.back().fields; }

  std::string_view text_;
  const char* reached_;
  Timestamp time_;
  Outline& outline_;
  std::vector<Place> places_{Place::top};
  std::string key_;
  std::vector<OpenRow> open_;
  Run run_;
  Attributes frontMatter_;
};

void JsonReader::mismatch(std::string_view expected, std::string_view found) const {
  fail("\"" + key_ + "\" should be " + std::string(expected) + ", not " + std::string(found));
}

bool JsonReader::key(std::string& name) {
  key_ = name;
  return true;
}

/// A value that is neither text nor container: no member that we know takes one, save the ids of a live
/// outline.
bool JsonReader::value(std::string_view found) {
  switch (place()) {
    case Place::top:
      fail("expected a document or an array of rows, not " + std::string(found));
    case Place::rows:
      fail("expected a row, not " + std::string(found));
    case Place::runs:
      fail("expected a run like {\"string\":\"…\"}, not " + std::string(found));
    case Place::runAttrs:
    case Place::attributes:
    case Place::frontMatter:
      mismatch("a string", found);
    case Place::run:
      if (key_ == "string") mismatch("a string", found);
      return true;
    case Place::row:
      if (key_ == "type" || key_ == "created" || key_ == "modified" || key_ == "persistentId")
        mismatch("a string", found);
      if (key_ == "text" || key_ == "children") mismatch("an array", found);
      if (key_ == "attributes") mismatch("an object", found);
      return true;
    case Place::document:
      if (key_ == "rows") mismatch("an array", found);
      return true;
    case Place::ignored:
      return true;
  }
  return true;
}

bool JsonReader::string(std::string& text) {
  switch (place()) {
    case Place::document:
      documentString(text);
      return true;
    case Place::frontMatter:
      frontMatter_.set(key_, text);
      return true;
    case Place::row:
      rowString(text);
      return true;
    case Place::attributes:
      fields().attributes.set(key_, text);
      return true;
    case Place::runAttrs:
      run_.attrs.set(key_, text);
      return true;
    case Place::run:
      if (key_ == "string") run_.string = text;
      return true;
    default:
      return value("a string");
  }
}

void JsonReader::documentString(const std::string& text) {
  if (key_ == "id" || key_ == "persistentId") outline_.setPersistentId(text);
  if (key_ == "created") outline_.setCreated(time(text));
  if (key_ == "rows" || key_ == "frontMatter") mismatch("an array or object", "a string");
}

void JsonReader::rowString(const std::string& text) {
  if (key_ == "id" || key_ == "persistentId") {
    fields().persistentId = text;
  } else if (key_ == "type") {
    const auto type = document::rowType(text);
    if (!type) fail("there is no row type \"" + text + "\"");
    fields().type = *type;
  } else if (key_ == "text") {
    fields().text = Text(text);
  } else if (key_ == "created") {
    fields().created = time(text);
  } else if (key_ == "modified") {
    fields().modified = time(text);
    open_.back().hasModified = true;
  } else if (key_ == "children" || key_ == "attributes") {
    mismatch("an array or object", "a string");
  }
}

Timestamp JsonReader::time(const std::string& text) const {
  const auto time = document::parseTimestamp(text);
  if (!time) fail("\"" + text + "\" is not a time like 2026-01-31T12:00:00Z");
  return *time;
}

Place JsonReader::objectPlace() const {
  switch (place()) {
    case Place::top:
      return Place::document;
    case Place::rows:
      return Place::row;
    case Place::runs:
      return Place::run;
    case Place::document:
      if (key_ == "rows") mismatch("an array", "an object");
      return key_ == "frontMatter" ? Place::frontMatter : Place::ignored;
    case Place::row:
      if (key_ == "text" || key_ == "children") mismatch("an array", "an object");
      return key_ == "attributes" ? Place::attributes : Place::ignored;
    case Place::run:
      return key_ == "attrs" ? Place::runAttrs : Place::ignored;
    case Place::ignored:
      return Place::ignored;
    default:
      mismatch("a string", "an object");
  }
}

Place JsonReader::arrayPlace() const {
  switch (place()) {
    case Place::top:
      return Place::rows;
    case Place::document:
      return key_ == "rows" ? Place::rows : Place::ignored;
    case Place::row:
      if (key_ == "text") return Place::runs;
      return key_ == "children" ? Place::rows : Place::ignored;
    case Place::rows:
      fail("expected a row, not an array");
    case Place::runs:
      fail("expected a run like {\"string\":\"…\"}, not an array");
    case Place::run:
    case Place::ignored:
      return Place::ignored;
    default:
      mismatch("a string", "an array");
  }
}

bool JsonReader::start_object(std::size_t) {
  places_.push_back(objectPlace());
  if (place() == Place::row) openRow();
  if (place() == Place::run) run_ = {};
  return true;
}

bool JsonReader::end_object() {
  if (place() == Place::row) closeRow();
  if (place() == Place::run) fields().text.append(run_.string, std::move(run_.attrs));
  if (place() == Place::document) outline_.setFrontMatter(std::move(frontMatter_));
  places_.pop_back();
  return true;
}

void JsonReader::openRow() {
  Row& parent = open_.empty() ? outline_.root() : *open_.back().row;
  OpenRow opened;
  opened.row = outline_.create(RowType::body, {}, time_);
  opened.fields.created = time_;
  outline_.insert(*opened.row, parent);
  open_.push_back(std::move(opened));
}

void JsonReader::closeRow() {
  OpenRow& closed = open_.back();
  RowContent& content = closed.fields;
  outline_.setType(*closed.row, content.type);
  outline_.setText(*closed.row, std::move(content.text));
  outline_.setAttributes(*closed.row, std::move(content.attributes));
  outline_.setTimes(*closed.row, content.created, closed.hasModified ? content.modified : content.created);
  const bool isFree = !content.persistentId.empty() && !outline_.findPersistent(content.persistentId);
  if (isFree) outline_.setPersistentId(*closed.row, content.persistentId);
  open_.pop_back();
}

bool JsonReader::start_array(std::size_t) {
  const Place next = arrayPlace();
  if (next == Place::runs) fields().text = {};
  places_.push_back(next);
  return true;
}

bool JsonReader::end_array() {
  places_.pop_back();
  return true;
}

bool JsonReader::parse_error(std::size_t, const std::string&, const nlohmann::json::exception& error) {
  const std::string_view message = error.what();
  const std::size_t colon = message.find(": ");  // behind the place, which we tell ourselves
  fail(std::string(colon == std::string_view::npos ? message : message.substr(colon + 2)));
}

}  // namespace

void readJson(std::string_view text, const ReadOptions& options, Outline& outline) {
  JsonReader(checkedSource(text), options.time, outline).read();
}

Text readJsonRuns(std::string_view text) {
  Outline outline;
  return JsonReader(checkedSource(text), 0, outline).readMember("text").text;
}

Attributes readJsonAttributes(std::string_view text) {
  Outline outline;
  return JsonReader(checkedSource(text), 0, outline).readMember("attributes").attributes;
}

}  // namespace vell::formats
