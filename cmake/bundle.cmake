# Stages Vell.app in the build directory as it is installed.

set(VELL_BUNDLE ${CMAKE_BINARY_DIR}/Vell.app/Contents)
configure_file(${PROJECT_SOURCE_DIR}/app/Info.plist.in ${VELL_BUNDLE}/Info.plist @ONLY)

set_target_properties(vell PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${VELL_BUNDLE}/Helpers)
set_target_properties(vell-headless PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${VELL_BUNDLE}/MacOS)

# Start-up is most of a short command. A shared C++ runtime would cost more than the whole run does.
target_link_options(vell PRIVATE ${VELL_LTO_LINK})
# A runtime that a library needs all the same must be the only one in the process.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT VELL_SANITIZE AND NOT VELL_SHARED_RUNTIME)
  target_link_options(vell PRIVATE -static-libstdc++ -static-libgcc -Wl,--gc-sections -Wl,--as-needed)
endif()
# The script engine brings the shared runtime into vell-headless; two of them must not meet in one process.
target_link_options(vell-headless PRIVATE ${VELL_LTO_LINK})

# The manual pages, the types that scripts find, and the completion scripts: those of `vell` are written by itself, from its
# command tree.
file(GLOB VELL_MANUALS CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/man/*.1)
foreach(manual IN LISTS VELL_MANUALS)
  get_filename_component(name ${manual} NAME)
  configure_file(${manual} ${VELL_BUNDLE}/Resources/man/man1/${name} COPYONLY)
endforeach()
configure_file(${PROJECT_SOURCE_DIR}/docs/vell.d.ts ${VELL_BUNDLE}/Resources/scripting/vell.d.ts COPYONLY)
set(VELL_COMPLETIONS ${VELL_BUNDLE}/Resources/completions)
file(GLOB scripts CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/app/completions/*)
foreach(script IN LISTS scripts)
  get_filename_component(name ${script} NAME)
  configure_file(${script} ${VELL_COMPLETIONS}/${name} COPYONLY)
endforeach()
if(CMAKE_CROSSCOMPILING AND NOT CMAKE_CROSSCOMPILING_EMULATOR)
  add_custom_target(vell_completions)  # vell does not run here
  return()
endif()
add_custom_command(OUTPUT ${VELL_COMPLETIONS}/vell.bash ${VELL_COMPLETIONS}/_vell ${VELL_COMPLETIONS}/vell.fish
  COMMAND ${CMAKE_COMMAND} -E make_directory ${VELL_COMPLETIONS}
  COMMAND vell --generate-completion-script bash > ${VELL_COMPLETIONS}/vell.bash
  COMMAND vell --generate-completion-script zsh > ${VELL_COMPLETIONS}/_vell
  COMMAND vell --generate-completion-script fish > ${VELL_COMPLETIONS}/vell.fish
  DEPENDS vell VERBATIM)
add_custom_target(vell_completions ALL DEPENDS ${VELL_COMPLETIONS}/vell.bash)
