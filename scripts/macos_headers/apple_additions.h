// Declarations of what macOS has and GNUstep's headers lack, for compiling platform/macos/*.mm
// on other systems. Signatures as in the macOS 13 SDK; only what the sources use.
#pragma once

#pragma clang system_header

#import <AppKit/AppKit.h>
#include <dispatch/dispatch.h>

@class NSRunningApplication;

@interface NSWorkspaceOpenConfiguration : NSObject
+ (instancetype)configuration;
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
