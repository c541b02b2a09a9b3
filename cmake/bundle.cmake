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

# The desktop application has the same name.
install(CODE [[
  set(place "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/Vell.app")
  if(EXISTS "${place}")
    set(ours "")
    if(EXISTS "${place}/Contents/Info.plist")
      file(STRINGS "${place}/Contents/Info.plist" ours REGEX VellHeadless)
    endif()
    if(NOT ours)
      message(FATAL_ERROR "${place} is another application: move it away, or install elsewhere with --prefix")
    endif()
  endif()
]])
install(DIRECTORY ${CMAKE_BINARY_DIR}/Vell.app DESTINATION . USE_SOURCE_PERMISSIONS)

# The man page, the types that scripts find, and the completion scripts that vell writes from its command tree.
configure_file(${PROJECT_SOURCE_DIR}/docs/man/vell.1 ${VELL_BUNDLE}/Resources/man/man1/vell.1 COPYONLY)
configure_file(${PROJECT_SOURCE_DIR}/docs/vell.d.ts ${VELL_BUNDLE}/Resources/scripting/vell.d.ts COPYONLY)
set(completions ${VELL_BUNDLE}/Resources/completions)
if(CMAKE_CROSSCOMPILING AND NOT CMAKE_CROSSCOMPILING_EMULATOR)
  add_custom_target(vell_completions)  # vell does not run here
  return()
endif()
add_custom_command(OUTPUT ${completions}/vell.bash ${completions}/_vell ${completions}/vell.fish
  COMMAND ${CMAKE_COMMAND} -E make_directory ${completions}
  COMMAND vell --generate-completion-script bash > ${completions}/vell.bash
  COMMAND vell --generate-completion-script zsh > ${completions}/_vell
  COMMAND vell --generate-completion-script fish > ${completions}/vell.fish
  DEPENDS vell VERBATIM)
add_custom_target(vell_completions ALL DEPENDS ${completions}/vell.bash)
