#include "platform/property_list.h"

#include <dlfcn.h>
#include <plist/plist.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>

namespace vell::platform {

namespace {

/// libplist, loaded when first needed: most runs never look at a property list and do not pay for it.
class Library {
 public:
  Library() : handle_(open()) {
    if (handle_ == nullptr) return;
    usable_ = bind(fromXml, "plist_from_xml") && bind(fromBinary, "plist_from_bin") &&
              bind(release, "plist_free") && bind(newIterator, "plist_dict_new_iter") &&
              bind(nextItem, "plist_dict_next_item") && bind(nodeType, "plist_get_node_type") &&
              bind(stringValue, "plist_get_string_val");
  }

  bool usable() const { return usable_; }

  decltype(&plist_from_xml) fromXml = nullptr;
  decltype(&plist_from_bin) fromBinary = nullptr;
  decltype(&plist_free) release = nullptr;
  decltype(&plist_dict_new_iter) newIterator = nullptr;
  decltype(&plist_dict_next_item) nextItem = nullptr;
  decltype(&plist_get_node_type) nodeType = nullptr;
  decltype(&plist_get_string_val) stringValue = nullptr;

 private:
  static void* open() {
    for (const char* name : {"libplist-2.0.so.3", "libplist-2.0.so.4", "libplist-2.0.so"}) {
      if (void* handle = dlopen(name, RTLD_NOW | RTLD_LOCAL)) return handle;
    }
    return nullptr;
  }

  template <class Function>
  bool bind(Function& function, const char* name) {
    function = reinterpret_cast<Function>(dlsym(handle_, name));
    return function != nullptr;
  }

  void* handle_;
  bool usable_ = false;
};

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};

std::optional<std::string> readFile(const std::string& path) {
  const std::ifstream file(path, std::ios::binary);
  std::ostringstream content;
  if (!file || !(content << file.rdbuf())) return std::nullopt;
  return content.str();
}

std::map<std::string, std::string> stringsOf(const Library& library, plist_t dictionary) {
  std::map<std::string, std::string> strings;
  plist_dict_iter rawIterator = nullptr;
  library.newIterator(dictionary, &rawIterator);
  const std::unique_ptr<void, Free> iterator(rawIterator);
  for (;;) {
    char* rawKey = nullptr;
    plist_t item = nullptr;
    library.nextItem(dictionary, iterator.get(), &rawKey, &item);
    const std::unique_ptr<char, Free> key(rawKey);
    if (item == nullptr) return strings;
    if (library.nodeType(item) != PLIST_STRING) continue;
    char* rawValue = nullptr;
    library.stringValue(item, &rawValue);
    const std::unique_ptr<char, Free> value(rawValue);
    if (key && value) strings[key.get()] = value.get();
  }
}

}  // namespace

std::optional<std::map<std::string, std::string>> readPropertyListStrings(const std::string& path) {
  const auto bytes = readFile(path);
  if (!bytes) return std::nullopt;
  const Library library;
  if (!library.usable()) return std::nullopt;
  plist_t raw = nullptr;
  const auto parse = bytes->rfind("bplist", 0) == 0 ? library.fromBinary : library.fromXml;
  parse(bytes->data(), static_cast<std::uint32_t>(bytes->size()), &raw);
  const std::unique_ptr<void, decltype(library.release)> list(raw, library.release);
  if (!list || library.nodeType(list.get()) != PLIST_DICT) return std::nullopt;
  return stringsOf(library, list.get());
}

}  // namespace vell::platform
