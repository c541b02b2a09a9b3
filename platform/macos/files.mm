#include "platform/files.h"

#import <Foundation/Foundation.h>
#include <stdio.h>  // the system's own header declares renamex_np

namespace vell::platform {

bool swapFiles(const std::string& one, const std::string& other) {
  return renamex_np(one.c_str(), other.c_str(), RENAME_SWAP) == 0;
}

static NSMetadataQuery* queryFor(const std::string& identifier, NSOperationQueue* queue) {
  NSMetadataQuery* query = [[NSMetadataQuery alloc] init];
  [query setNotificationBatchingInterval:0.1];
  [query setPredicate:[NSPredicate predicateWithFormat:@"%K == %@", NSMetadataItemIdentifierKey,
                                                       [NSString stringWithUTF8String:identifier.c_str()]]];
  // A queue of its own: the calling thread blocks and may have no run loop.
  [query setOperationQueue:queue];
  return query;
}

static void gather(NSMetadataQuery* query, NSOperationQueue* queue) {
  dispatch_semaphore_t gathered = dispatch_semaphore_create(0);
  NSNotificationCenter* center = [NSNotificationCenter defaultCenter];
  id observer = [center addObserverForName:NSMetadataQueryDidFinishGatheringNotification
                                    object:query
                                     queue:queue
                                usingBlock:^(NSNotification*) {
                                  [query stopQuery];
                                  dispatch_semaphore_signal(gathered);
                                }];
  [queue addOperationWithBlock:^{
    if (![query startQuery]) dispatch_semaphore_signal(gathered);
  }];
  dispatch_semaphore_wait(gathered, DISPATCH_TIME_FOREVER);
  [center removeObserver:observer];
}

std::vector<std::string> findFilesByIdentifier(const std::string& identifier) {
  std::vector<std::string> paths;
  @autoreleasepool {
    NSOperationQueue* queue = [[NSOperationQueue alloc] init];
    [queue setMaxConcurrentOperationCount:1];
    NSMetadataQuery* query = queryFor(identifier, queue);
    gather(query, queue);
    for (NSUInteger i = 0; i < [query resultCount]; ++i) {
      id path = [[query resultAtIndex:i] valueForAttribute:NSMetadataItemPathKey];
      if (path != nil) paths.push_back([path fileSystemRepresentation]);
    }
  }
  return paths;
}

}  // namespace vell::platform
