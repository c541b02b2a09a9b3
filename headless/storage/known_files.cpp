#include "headless/storage/known_files.h"

#include <system_error>

#include "headless/storage/files.h"

namespace vell::headless {

/// By the file's path, also where the file was replaced meanwhile, as most editors do; but not where the
/// former file stands beside it under another name: that one is the outline then. Else by the file itself,
/// if it was renamed.
std::string KnownFiles::idOf(const OpenOutline& opened) {
  std::string id;
  withIndex([&] {
    const std::string& path = opened.storagePath();
    const platform::FileIdentity& file = opened.stamp().file;
    if (const auto* known = index_.atPath(path)) {
      const auto former = *known;
      const auto renamed =
          former.file == file ? std::optional<std::string>() : renamedFile(path, former.file);
      if (renamed) index_.put({former.identifier, *renamed, former.file});
      if (!renamed) id = former.identifier;
    } else if (const auto* renamed = index_.ofFile(file)) {
      if (stampOf(renamed->path).file != file) id = renamed->identifier;
    }
  });
  return id;
}

std::optional<std::string> KnownFiles::formerPath(const std::string& path) {
  std::optional<std::string> former;
  withIndex([&] {
    if (const auto* known = index_.ofFile(stampOf(path).file)) former = known->path;
  });
  return former;
}

void KnownFiles::remember(const OpenOutline& opened) {
  withIndex([&] {
    const platform::IdentifierIndex::Entry entry{opened.persistentId(), opened.storagePath(),
                                                 opened.stamp().file};
    const auto* known = index_.atPath(entry.path);
    if (known == nullptr || known->identifier != entry.identifier || known->file != entry.file)
      index_.put(entry);
  });
}

void KnownFiles::forget(const std::string& path) {
  withIndex([&] { index_.forget(path); });
}

template <class Action>
void KnownFiles::withIndex(Action action) {
  try {
    action();
  } catch (const std::system_error& error) {
    report_(std::string("Cannot keep persistent ids: ") + error.what());
  }
}

}  // namespace vell::headless
