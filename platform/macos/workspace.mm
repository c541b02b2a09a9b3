#import <AppKit/AppKit.h>
#include <dlfcn.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

#include "platform/process.h"

namespace vell::platform {

/// AppKit, loaded when first needed: most runs never open anything and do not pay for it.
static NSWorkspace* sharedWorkspace() {
  dlopen("/System/Library/Frameworks/AppKit.framework/AppKit", RTLD_LAZY);
  NSWorkspace* workspace = [NSClassFromString(@"NSWorkspace") sharedWorkspace];
  if (workspace == nil) throw std::runtime_error("there is no desktop session");
  return workspace;
}

static NSURL* fileURL(const std::string& path, BOOL isDirectory) {
  return [NSURL fileURLWithFileSystemRepresentation:path.c_str() isDirectory:isDirectory relativeToURL:nil];
}

static dispatch_time_t after(Seconds limit) {
  const double seconds = std::clamp(limit.count(), 0.0, 86'400.0);
  return dispatch_time(DISPATCH_TIME_NOW, static_cast<int64_t>(seconds * NSEC_PER_SEC));
}

void openFileThroughWorkspace(const std::string& file, const std::string& bundle, Seconds limit) {
  std::string failure;
  @autoreleasepool {
    const auto reason = std::make_shared<std::string>();  // also the handler's, which may come late
    dispatch_semaphore_t answered = dispatch_semaphore_create(0);
    [sharedWorkspace() openURLs:[NSArray arrayWithObject:fileURL(file, NO)]
           withApplicationAtURL:fileURL(bundle, YES)
                  configuration:[NSClassFromString(@"NSWorkspaceOpenConfiguration") configuration]
              completionHandler:^(NSRunningApplication*, NSError* error) {
                if (error != nil) *reason = [[error localizedDescription] UTF8String];
                dispatch_semaphore_signal(answered);
              }];
    if (dispatch_semaphore_wait(answered, after(limit)) == 0) failure = *reason;
  }
  if (!failure.empty()) throw std::runtime_error(failure);
}

}  // namespace vell::platform
