# The tool chain of scripts/check-macos: a cross compiler, and a folder that stands for Homebrew's and the system's.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR arm64)

get_filename_component(tools "${CMAKE_CURRENT_LIST_DIR}/../.cache/zig" ABSOLUTE)
set(CMAKE_C_COMPILER ${tools}/bin/cc)
set(CMAKE_CXX_COMPILER ${tools}/bin/c++)
set(CMAKE_OBJCXX_COMPILER ${tools}/bin/objc++)
set(CMAKE_AR ${tools}/bin/ar CACHE FILEPATH "")
set(CMAKE_RANLIB ${tools}/bin/ranlib CACHE FILEPATH "")
set(CMAKE_INSTALL_NAME_TOOL ${tools}/bin/install_name_tool CACHE FILEPATH "")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-F${tools}/prefix/Frameworks")

set(CMAKE_FIND_ROOT_PATH ${tools}/prefix)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
