#import <Foundation/Foundation.h>

#include <memory>

#include "platform/files.h"

namespace vell::platform {

static NSMetadataQuery* queryFor(const std::string& identifier) {
  NSMetadataQuery* query = [[NSMetadataQuery alloc] init];
  [query setNotificationBatchingInterval:0.1];
  [query setPredicate:[NSPredicate predicateWithFormat:@"%K == %@", NSMetadataItemIdentifierKey,
                                                       [NSString stringWithUTF8String:identifier.c_str()]]];
  return query;
}

/// A query gathers only while the run loop of the thread that started it runs: it is run here, until the
/// query has finished or the time is over.
static void gather(NSMetadataQuery* query, NSDate* end) {
  const auto finished = std::make_shared<bool>(false);
  NSNotificationCenter* center = [NSNotificationCenter defaultCenter];
  id observer = [center addObserverForName:NSMetadataQueryDidFinishGatheringNotification
                                    object:query
                                     queue:nil
                                usingBlock:^(NSNotification*) {
                                  *finished = true;
                                }];
  if ([query startQuery]) {
    while (!*finished && [end timeIntervalSinceNow] > 0) {
      NSDate* turn = [NSDate dateWithTimeIntervalSinceNow:0.1];
      // It returns at once where nothing is attached to the loop yet.
      if (![[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:turn])
        [NSThread sleepForTimeInterval:0.01];
    }
  }
  [query stopQuery];
  [center removeObserver:observer];
}

std::vector<std::string> findFilesByIdentifier(const std::string& identifier,
                                               std::chrono::duration<double> limit) {
  std::vector<std::string> paths;
  @autoreleasepool {
    NSMetadataQuery* query = queryFor(identifier);
    gather(query, [NSDate dateWithTimeIntervalSinceNow:limit.count()]);
    for (NSUInteger i = 0; i < [query resultCount]; ++i) {
      id path = [[query resultAtIndex:i] valueForAttribute:NSMetadataItemPathKey];
      if (path != nil) paths.push_back([path fileSystemRepresentation]);
    }
  }
  return paths;
}

}  // namespace vell::platform
