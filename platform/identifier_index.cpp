#include "platform/identifier_index.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <fstream>
#include <system_error>

#include "platform/descriptor.h"

namespace vell::platform {

// The file is a row of entries, the latest first: identifier, NUL, path, NUL. Neither can hold a NUL.

namespace {

[[noreturn]] void fail(const std::string& file) {
  throw std::system_error(errno, std::generic_category(), "cannot write " + file);
}

Descriptor lockFile(const std::string& file) {
  Descriptor lock(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  if (!lock || ::flock(lock.get(), LOCK_EX) != 0) fail(file);
  return lock;
}

}  // namespace

IdentifierIndex::IdentifierIndex(const std::string& directory) : file_(directory + "/identifiers") {}

void IdentifierIndex::put(const std::string& identifier, const std::string& path) {
  const Descriptor lock = lockFile(file_ + ".lock");
  std::vector<Entry> entries = read();
  if (!entries.empty() && entries[0].identifier == identifier && entries[0].path == path) return;
  std::vector<Entry> kept = {{identifier, path}};
  for (Entry& entry : entries) {
    if (entry.path != path) kept.push_back(std::move(entry));
  }
  replace(kept);
}

std::vector<std::string> IdentifierIndex::find(const std::string& identifier) const {
  std::vector<std::string> paths;
  for (Entry& entry : read()) {
    if (entry.identifier == identifier) paths.push_back(std::move(entry.path));
  }
  return paths;
}

std::string IdentifierIndex::identifierOf(const std::string& path) const {
  for (Entry& entry : read()) {
    if (entry.path == path) return std::move(entry.identifier);
  }
  return {};
}

std::vector<IdentifierIndex::Entry> IdentifierIndex::read() const {
  std::vector<Entry> entries;
  std::ifstream file(file_, std::ios::binary);
  Entry entry;
  while (std::getline(file, entry.identifier, '\0') && std::getline(file, entry.path, '\0')) {
    entries.push_back(entry);
  }
  return entries;
}

void IdentifierIndex::replace(const std::vector<Entry>& entries) const {
  const std::string next = file_ + ".new";
  std::ofstream file(next, std::ios::binary | std::ios::trunc);
  for (const Entry& entry : entries) file << entry.identifier << '\0' << entry.path << '\0';
  if (!file.flush() || std::rename(next.c_str(), file_.c_str()) != 0) fail(file_);
}

}  // namespace vell::platform
