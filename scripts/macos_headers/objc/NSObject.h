// The system's own declaration of this class would stand beside GNUstep's.
#pragma once
#pragma clang system_header

#import <Foundation/NSObject.h>
