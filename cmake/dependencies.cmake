# Third-party libraries. README.md says what each is for and how it is found on macOS.

find_package(Threads REQUIRED)
find_package(CLI11 2.1 REQUIRED)
find_package(pugixml 1.13 REQUIRED)
# Its package file refuses a request for another major version, and the grammar compiles against 3.2 and 4.
find_package(pegtl REQUIRED PATHS /usr/share/pegtl/cmake)
if(pegtl_VERSION VERSION_LESS 3.2)
  message(FATAL_ERROR "pegtl ${pegtl_VERSION} is too old: 3.2 is needed")
endif()

# Those that are headers alone and have no package file everywhere: beside asio's on every system.
find_path(VELL_HEADERS asio.hpp REQUIRED)
target_include_directories(vell_options SYSTEM INTERFACE ${VELL_HEADERS})

# asio chooses its allocator by what was included before it: two sources that choose differently must not meet.
add_library(vell_asio INTERFACE)
target_compile_definitions(vell_asio INTERFACE ASIO_DISABLE_STD_ALIGNED_ALLOC)
target_link_libraries(vell_asio INTERFACE Threads::Threads)

# A plain library on every system; not all of them give it a package file for CMake.
find_library(VELL_PCRE2 pcre2-8 REQUIRED)

# Linked statically where that can be, so that `vell` starts without it.
find_library(VELL_UTF8PROC NAMES libutf8proc.a utf8proc REQUIRED)

# The block structure of markdown, with tables. Linked statically where there is an archive.
add_library(vell_cmark INTERFACE)
find_path(VELL_CMARK_INCLUDE cmark-gfm-core-extensions.h REQUIRED)
find_library(VELL_CMARK_EXTENSIONS NAMES libcmark-gfm-extensions.a cmark-gfm-extensions REQUIRED)
find_library(VELL_CMARK NAMES libcmark-gfm.a cmark-gfm REQUIRED)
target_include_directories(vell_cmark SYSTEM INTERFACE ${VELL_CMARK_INCLUDE})
target_link_libraries(vell_cmark INTERFACE ${VELL_CMARK_EXTENSIONS} ${VELL_CMARK})

# simdjson is linked statically where that can be: a shared one brings the shared C++ runtime into every start of `vell`.
# Debian has no archive: scripts/setup fetches the source package, and installs the shared library where there is none.
find_library(VELL_SIMDJSON NAMES libsimdjson.a libsimdjson_static.a simdjson)
set(source ${PROJECT_SOURCE_DIR}/.cache/simdjson)
set(VELL_SHARED_RUNTIME OFF)
if(EXISTS ${source}/simdjson.cpp)
  add_library(vell_simdjson STATIC ${source}/simdjson.cpp)
  target_compile_options(vell_simdjson PRIVATE $<$<CONFIG:Release>:-O3>)
  target_include_directories(vell_simdjson SYSTEM PUBLIC ${source})
elseif(VELL_SIMDJSON)
  find_path(VELL_SIMDJSON_INCLUDE simdjson.h REQUIRED)
  add_library(vell_simdjson INTERFACE)
  target_link_libraries(vell_simdjson INTERFACE ${VELL_SIMDJSON})
  target_include_directories(vell_simdjson SYSTEM INTERFACE ${VELL_SIMDJSON_INCLUDE})
  if(NOT VELL_SIMDJSON MATCHES "[.]a$")
    message(STATUS "simdjson is linked as a shared library: vell starts more slowly")
    set(VELL_SHARED_RUNTIME ON)
  endif()
else()
  message(FATAL_ERROR "simdjson is missing: run scripts/setup first")
endif()
