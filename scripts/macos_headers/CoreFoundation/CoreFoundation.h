// All of Core Foundation that the C interface of the script engine uses.
#pragma once

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#define CF_ENUM(type, name) \
  enum name : type name;    \
  enum name : type
