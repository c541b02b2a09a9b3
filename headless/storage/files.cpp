#include "headless/storage/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <functional>

#include "headless/storage/paths.h"
#include "platform/descriptor.h"

namespace vell::headless {
namespace {

FileStamp stampFrom(const std::optional<platform::FileFacts>& facts) {
  if (!facts) return {};
  return {facts->identity, facts->size, facts->modified, facts->changed};
}

std::string reasonOfSystem() { return std::generic_category().message(errno); }

std::string readAll(int descriptor, std::size_t expected, const std::string& path) {
  std::string bytes(expected + 1, '\0');  // one more byte shows the end without growing
  std::size_t size = 0;
  for (;;) {
    if (size == bytes.size()) bytes.resize(bytes.size() * 2);
    const ssize_t count = read(descriptor, bytes.data() + size, bytes.size() - size);
    if (count < 0 && errno != EINTR) throw UnreadableFile(path, reasonOfSystem());
    if (count == 0) break;
    if (count > 0) size += static_cast<std::size_t>(count);
  }
  bytes.resize(size);
  return bytes;
}

}  // namespace

void forEachBlock(const Pieces& content, const std::function<void(std::string_view block)>& use) {
  constexpr std::size_t size = 1 << 18;
  std::string block;  // of several pieces; a block within one piece is not copied
  for (std::string_view piece : content) {
    while (!piece.empty()) {
      const std::string_view next = piece.substr(0, size - block.size());
      piece.remove_prefix(next.size());
      if (next.size() == size) {
        use(next);
        continue;
      }
      block += next;
      if (block.size() < size) continue;
      use(block);
      block.clear();
    }
  }
  if (!block.empty()) use(block);
}

std::size_t hashOf(const Pieces& content) {
  std::size_t hash = 0;
  forEachBlock(content,
               [&](std::string_view block) { hash = hash * 31 + std::hash<std::string_view>()(block); });
  return hash;
}

FileStamp stampOf(const std::string& path) { return stampFrom(platform::factsOf(path)); }

FileStamp stampOf(int descriptor) { return stampFrom(platform::factsOf(descriptor)); }

FileContent readFile(const std::string& path) {
  const platform::Descriptor descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!descriptor) throw UnreadableFile(path, reasonOfSystem());
  const auto facts = platform::factsOf(descriptor.get());
  if (!facts) throw UnreadableFile(path, reasonOfSystem());
  if (S_ISDIR(facts->mode)) throw UnreadableFile(path, "it is a folder");
  if (!S_ISREG(facts->mode)) throw UnreadableFile(path, "it is not a regular file");
  return {readAll(descriptor.get(), static_cast<std::size_t>(facts->size), path), stampFrom(facts)};
}

std::optional<std::string> renamedFile(const std::string& path, const platform::FileIdentity& file) {
  const std::string former = resolvedPath(path);
  auto found = platform::findFile(file, former);
  if (!found || *found == former) return std::nullopt;
  const std::string name = fileName(*found);
  const bool beside = folderOf(*found) == folderOf(former);
  if (beside && (name.starts_with('.') || name.starts_with(fileName(former)))) return std::nullopt;
  // Something else stands in its place: a backup elsewhere is likelier than a renamed file.
  if (!beside && stampOf(former) != FileStamp()) return std::nullopt;
  return found;
}

void removeFile(const std::string& path) {
  std::error_code error;
  std::filesystem::remove(path, error);
  if (error) throw Problem("Cannot remove " + path + ": " + error.message());
}

void makeDirectories(const std::string& path) {
  if (mkdir(path.c_str(), 0700) == 0 || errno == EEXIST) return;
  if (errno != ENOENT || path == "/") throw systemProblem("Cannot make " + path);
  makeDirectories(folderOf(path));
  if (mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) throw systemProblem("Cannot make " + path);
}

void makePrivateDirectory(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    makeDirectories(path);
    return;
  }
  if (!S_ISDIR(status.st_mode)) throw Problem("Cannot use " + path + ": it is not a directory");
  if ((status.st_mode & 0077) != 0 && chmod(path.c_str(), 0700) != 0)
    throw systemProblem("Cannot close " + path);
}

}  // namespace vell::headless
