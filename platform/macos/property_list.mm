#include "platform/property_list.h"

#import <Foundation/Foundation.h>

namespace vell::platform {

std::optional<std::map<std::string, std::string>> readPropertyListStrings(const std::string& path) {
  @autoreleasepool {
    NSString* file = [NSString stringWithUTF8String:path.c_str()];
    NSDictionary* list = file != nil ? [NSDictionary dictionaryWithContentsOfFile:file] : nil;
    if (list == nil) return std::nullopt;
    std::map<std::string, std::string> strings;
    for (id key in list) {
      id value = [list objectForKey:key];
      if (![key isKindOfClass:[NSString class]] || ![value isKindOfClass:[NSString class]]) continue;
      strings[[key UTF8String]] = [value UTF8String];
    }
    return strings;
  }
}

}  // namespace vell::platform
