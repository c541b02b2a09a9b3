# Third-party libraries. README.md says what each is for and how it is found on macOS.

find_package(Threads REQUIRED)
find_package(nlohmann_json 3.11 REQUIRED)
find_package(CLI11 2.1 REQUIRED)
find_package(pugixml 1.13 REQUIRED)
find_package(pegtl 3.2 REQUIRED PATHS /usr/share/pegtl/cmake)

# Those that are headers alone and have no package file everywhere: beside asio's on every system.
find_path(VELL_HEADERS asio.hpp REQUIRED)
target_include_directories(vell_options SYSTEM INTERFACE ${VELL_HEADERS})

# A plain library on every system; not all of them give it a package file for CMake.
find_library(VELL_PCRE2 pcre2-8 REQUIRED)

# simdjson is linked statically: a shared one drags libstdc++.so into every start of `vell`.
# Where the system has no static archive, scripts/setup fetches the distribution's source package.
find_library(VELL_SIMDJSON_ARCHIVE NAMES libsimdjson.a)
find_file(VELL_SIMDJSON_SOURCE simdjson.cpp PATHS ${PROJECT_SOURCE_DIR}/.cache/simdjson NO_DEFAULT_PATH)
if(VELL_SIMDJSON_ARCHIVE)
  find_path(VELL_SIMDJSON_INCLUDE simdjson.h REQUIRED)
  add_library(vell_simdjson INTERFACE)
  target_link_libraries(vell_simdjson INTERFACE ${VELL_SIMDJSON_ARCHIVE})
  target_include_directories(vell_simdjson SYSTEM INTERFACE ${VELL_SIMDJSON_INCLUDE})
elseif(VELL_SIMDJSON_SOURCE)
  add_library(vell_simdjson STATIC ${VELL_SIMDJSON_SOURCE})
  target_compile_options(vell_simdjson PRIVATE $<$<CONFIG:Release>:-O3>)
  target_include_directories(vell_simdjson SYSTEM PUBLIC ${PROJECT_SOURCE_DIR}/.cache/simdjson)
else()
  message(FATAL_ERROR "simdjson's source is missing: run scripts/setup first")
endif()
