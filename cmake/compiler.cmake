# Language level, warnings, sanitizers and link-time optimisation for every target of ours.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_OBJCXX_STANDARD 20)
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# Where speed is felt more is asked for (outline_path); elsewhere -O3 only takes the compiler longer.
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")

set(VELL_SANITIZE "" CACHE STRING "Sanitizers to build with, as for -fsanitize=")
# The fuzzer follows which branches an input takes, in the libraries too.
if(VELL_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

# Hardening, for what others send to these programs. macOS links every program this way unasked.
# The sanitizers bring checks of their own in the place of the fortified library calls.
add_compile_options(-fstack-protector-strong)
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
  add_compile_options(-fPIE)
  add_link_options(-pie LINKER:-z,relro,-z,now,-z,separate-code)
endif()
if(CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT VELL_SANITIZE)
  add_compile_options("SHELL:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2")
endif()

add_library(vell_options INTERFACE)
target_include_directories(vell_options INTERFACE ${PROJECT_SOURCE_DIR})
# Whoever builds without the tests may have a compiler that warns of more than any has so far.
if(VELL_TESTS)
  set(warnings_are_errors -Werror)
endif()
target_compile_options(vell_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion ${warnings_are_errors}
  -ffunction-sections -fdata-sections)
# When it optimises, GCC takes `"text" + std::string()` for overlapping copies (its bug 105651) and an
# empty std::optional for an uninitialised value (80635).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(vell_options INTERFACE -Wno-restrict -Wno-maybe-uninitialized)
endif()

if(VELL_SANITIZE)
  add_compile_options(-fsanitize=${VELL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${VELL_SANITIZE})
  # The script engine is built without run-time types and shares inline functions of the standard library with us.
  if(VELL_SANITIZE MATCHES "undefined")
    add_compile_options(-fno-sanitize=vptr)
  endif()
  if(VELL_SANITIZE STREQUAL "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-Wno-tsan)  # asio's fences, which the sanitizer does not follow
  endif()
endif()

# The shipped executables are optimised across files; the tests link the same objects without
# that step, so a release object carries both forms.
add_library(vell_optimised INTERFACE)
if(CMAKE_BUILD_TYPE STREQUAL "Release" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(vell_optimised INTERFACE -flto=auto -ffat-lto-objects)
  set(VELL_LTO_LINK -flto=auto)
  set(VELL_NO_LTO_LINK -fno-lto)
elseif(CMAKE_BUILD_TYPE STREQUAL "Release" AND APPLE)
  target_compile_options(vell_optimised INTERFACE -flto=thin)
  set(VELL_LTO_LINK -flto=thin)
  set(VELL_NO_LTO_LINK -flto=thin)
endif()

# A test runs once: the compiler would spend more on making its code fast than that saves.
# The fortified library calls need an optimising compiler.
set(VELL_TEST_OPTIONS "$<$<CONFIG:Release>:SHELL:-U_FORTIFY_SOURCE -O0>")
