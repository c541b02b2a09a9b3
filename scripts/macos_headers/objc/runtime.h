// The types that GNUstep's headers name. Those of GCC's runtime do not compile with automatic reference
// counting.
#pragma once

#include <objc/objc.h>

typedef struct objc_method* Method;
typedef struct objc_ivar* Ivar;
