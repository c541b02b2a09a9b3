// Declarations of what macOS has and GNUstep's headers lack, for type-checking platform/macos/*.mm
// on other systems. Signatures as in the macOS 13 SDK; only what the sources use.
#pragma once

#import <AppKit/AppKit.h>
#include <stdint.h>

@class NSRunningApplication;

@interface NSWorkspaceOpenConfiguration : NSObject
+ (instancetype)configuration;
@property BOOL activates;
@property BOOL addsToRecentItems;
@property BOOL promptsUserIfNeeded;
@end

@interface NSWorkspace (ApplicationURLs)
- (void)openURLs:(NSArray*)urls
    withApplicationAtURL:(NSURL*)application
           configuration:(NSWorkspaceOpenConfiguration*)configuration
       completionHandler:(void (^)(NSRunningApplication* application, NSError* error))handler;
@end

@interface NSURL (FileSystemRepresentation)
+ (NSURL*)fileURLWithFileSystemRepresentation:(const char*)path
                                  isDirectory:(BOOL)isDirectory
                                relativeToURL:(NSURL*)base;
@end

@interface NSMetadataQuery (OperationQueue)
@property(retain) NSOperationQueue* operationQueue;
@end

extern "C" {
typedef struct dispatch_semaphore_s* dispatch_semaphore_t;
typedef uint64_t dispatch_time_t;
dispatch_semaphore_t dispatch_semaphore_create(intptr_t value);
intptr_t dispatch_semaphore_signal(dispatch_semaphore_t semaphore);
intptr_t dispatch_semaphore_wait(dispatch_semaphore_t semaphore, dispatch_time_t timeout);
dispatch_time_t dispatch_time(dispatch_time_t when, int64_t delta);
}
#define DISPATCH_TIME_NOW 0ull
#define DISPATCH_TIME_FOREVER (~0ull)
#ifndef NSEC_PER_SEC
#define NSEC_PER_SEC 1000000000ull
#endif
