// What platform/macos uses of the system's header, for type-checking on other systems.
#pragma once

#include <stdint.h>

extern "C" int _NSGetExecutablePath(char* buffer, uint32_t* size);
