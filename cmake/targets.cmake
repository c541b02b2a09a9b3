# vell_library(<folder> [LINKS <target>…]): the static library vell_<folder> of that folder's sources.
# Sources are all *.cpp below the folder, less those that match EXCLUDE (a regular expression).
# A room that has no sources yet is an empty interface.
function(vell_library folder)
  cmake_parse_arguments(arg "" "EXCLUDE" "LINKS;PRIVATE_LINKS" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(arg_EXCLUDE)
    list(FILTER sources EXCLUDE REGEX "${arg_EXCLUDE}")
  endif()
  if(sources)
    add_library(vell_${folder} STATIC ${sources})
    target_link_libraries(vell_${folder} PUBLIC vell_options ${arg_LINKS} PRIVATE vell_optimised ${arg_PRIVATE_LINKS})
  else()
    add_library(vell_${folder} INTERFACE)
    target_link_libraries(vell_${folder} INTERFACE vell_options ${arg_LINKS} ${arg_PRIVATE_LINKS})
  endif()
endfunction()

# vell_tests(<folder> [EXCLUDE <regular expression>] [LINKS <target>…]): one test executable of all *.cpp below
# tests/<folder>.
function(vell_tests folder)
  cmake_parse_arguments(arg "" "EXCLUDE" "LINKS" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(arg_EXCLUDE)
    list(FILTER sources EXCLUDE REGEX "${arg_EXCLUDE}")
  endif()
  if(NOT sources)
    return()
  endif()
  add_executable(${folder}_tests ${sources})
  target_link_libraries(${folder}_tests PRIVATE ${arg_LINKS} GTest::gmock GTest::gtest_main)
  target_compile_options(${folder}_tests PRIVATE ${VELL_TEST_OPTIONS})
  target_link_options(${folder}_tests PRIVATE ${VELL_NO_LTO_LINK})
  gtest_discover_tests(${folder}_tests TEST_PREFIX ${folder}. DISCOVERY_MODE PRE_TEST
    PROPERTIES TIMEOUT 300)
endfunction()
