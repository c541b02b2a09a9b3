#include "platform/process.h"

#import <AppKit/AppKit.h>
#include <mach-o/dyld.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace vell::platform {

std::optional<std::string> executablePath() {
  std::uint32_t size = 0;
  _NSGetExecutablePath(nullptr, &size);
  std::string path(size, '\0');
  if (_NSGetExecutablePath(path.data(), &size) != 0) return std::nullopt;
  path.resize(std::strlen(path.c_str()));
  return path;
}

static NSURL* fileURL(const std::string& path, BOOL isDirectory) {
  return [NSURL fileURLWithFileSystemRepresentation:path.c_str() isDirectory:isDirectory relativeToURL:nil];
}

void openFileWithApplication(const std::string& file, const std::string& bundle) {
  std::string failure;
  @autoreleasepool {
    dispatch_semaphore_t answered = dispatch_semaphore_create(0);
    std::string* reason = &failure;  // outlives the handler: the wait below has no time-out
    [[NSWorkspace sharedWorkspace] openURLs:[NSArray arrayWithObject:fileURL(file, NO)]
                       withApplicationAtURL:fileURL(bundle, YES)
                              configuration:[NSWorkspaceOpenConfiguration configuration]
                          completionHandler:^(NSRunningApplication*, NSError* error) {
                            if (error != nil) *reason = [[error localizedDescription] UTF8String];
                            dispatch_semaphore_signal(answered);
                          }];
    dispatch_semaphore_wait(answered, DISPATCH_TIME_FOREVER);
  }
  if (!failure.empty()) throw std::runtime_error(failure);
}

}  // namespace vell::platform
