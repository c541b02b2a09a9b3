#include "outlines/creation.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "outlines/location.h"
#include "platform/descriptor.h"
#include "platform/files.h"

namespace vell::outlines {

namespace {

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return text;
}

std::string newContent(ipc::Application& application, const std::string& format) {
  const ipc::Answer answer = application.request(ipc::OutlineNewContent{format});
  if (auto content = answer.result().string()) return std::move(*content);
  throw OpenError("outline.newContent did not return a string payload");
}

[[noreturn]] void failToWrite(const std::string& path, int error) {
  throw OpenError("Cannot write " + path + ": " + std::strerror(error));
}

[[noreturn]] void failAsExisting(const std::string& path) { throw OpenError("File already exists: " + path); }

/// A file that was made here. Exclusively: one that appeared meanwhile is not ours to write.
class NewFile {
 public:
  NewFile(const std::string& path, const std::string& content)
      : path_(path), file_(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666)) {
    if (!file_ && errno == EEXIST) failAsExisting(path);
    if (!file_) failToWrite(path, errno);
    written_ = platform::writeAll(file_.get(), content) ? platform::factsOf(file_.get()) : std::nullopt;
    if (written_) return;
    const int error = errno;
    ::unlink(path.c_str());
    failToWrite(path, error);
  }

  /// Unless somebody else has put another file there, or changed this one.
  void remove() const {
    const auto now = platform::factsOf(path_);
    if (!now || now->identity != written_->identity) return;
    if (now->size == written_->size && now->modified == written_->modified) ::unlink(path_.c_str());
  }

 private:
  std::string path_;
  platform::Descriptor file_;
  std::optional<platform::FileFacts> written_;
};

}  // namespace

std::optional<std::string> formatOfName(const std::string& path) {
  const std::string extension = lowerCase(std::filesystem::path(path).extension().string());
  for (const char* format : {"vell", "opml", "json", "markdown", "txt"}) {
    if (extension == std::string(".") + format) return format;
  }
  if (extension == ".md") return "markdown";
  return std::nullopt;
}

std::string formatForPath(const std::string& path) { return formatOfName(path).value_or("txt"); }

ipc::Answer createOutlineFile(ipc::Application& application, const std::string& absolutePath,
                              const std::string& format, const OpenOptions& options) {
  std::error_code unreadable;
  if (std::filesystem::exists(absolutePath, unreadable)) failAsExisting(absolutePath);
  const NewFile file(absolutePath, newContent(application, format));
  try {
    return openOutlineViaLaunchServices(application, absolutePath, options);
  } catch (const OpeningTimedOut&) {
    throw;
  } catch (const OpenError&) {
    file.remove();
    throw;
  }
}

}  // namespace vell::outlines
