#pragma once

#include <memory>
#include <optional>
#include <string>

#include "json/document.h"
#include "json/text.h"

namespace vell::ipc {

/// The application's answer to one request: the response as it came, and the result in it.
/// Printers write straight from the node; nothing is copied on the way.
class Answer {
 public:
  /// Reads one line from the application: an answer, or none where the line is to be skipped (blank, an
  /// array, a notification). Throws ClientError::rpcError for an error response and json::ParseError for
  /// a line that is neither object nor array.
  static std::optional<Answer> parse(json::Text line);

  /// The result, JSON null where the response names none; valid while the answer lives, moved or not.
  json::Node result() const { return result_; }
  /// The result as compact JSON text with sorted keys.
  std::string bytes() const;
  /// Appends that text as a JSON string, quotes included.
  void appendQuoted(std::string& out) const;

 private:
  Answer(std::unique_ptr<json::Document> document, json::Node result)
      : document_(std::move(document)), result_(result) {}

  std::unique_ptr<json::Document> document_;
  json::Node result_;
};

}  // namespace vell::ipc
