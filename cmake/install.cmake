# Installs the bundle in lib/vell, and links, manual pages and completion scripts where shells look for them; cpack packs
# the same.

include(GNUInstallDirs)
# Programs of its own stand in lib/, whatever the system calls the folder of its libraries.
set(bundle lib/vell/Vell.app)

# Nothing is written over what is not ours: the desktop application's bundle has the same name, and a link to its `vell` may
# stand in bin/.
install(CODE "
  set(bundle ${bundle})
  set(bin ${CMAKE_INSTALL_BINDIR})
  set(data ${CMAKE_INSTALL_DATADIR})
  set(completions ${VELL_COMPLETIONS})")
install(CODE [[
  set(prefix "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}")
  set(list "${prefix}/${bundle}/Contents/Info.plist")
  set(ours "")
  if(EXISTS "${list}")
    file(STRINGS "${list}" ours REGEX VellHeadless)
  endif()
  if(EXISTS "${prefix}/${bundle}" AND NOT ours)
    message(FATAL_ERROR "${prefix}/${bundle} is another application: move it away, or install elsewhere with --prefix")
  endif()
  foreach(executable IN ITEMS Helpers/vell MacOS/vell-headless)
    get_filename_component(name ${executable} NAME)
    set(link "${prefix}/${bin}/${name}")
    set(target "")
    if(IS_SYMLINK "${link}")
      file(READ_SYMLINK "${link}" target)
    endif()
    if((EXISTS "${link}" OR target) AND NOT target MATCHES "/${bundle}/Contents/${executable}$")
      message(FATAL_ERROR "${link} is another program: move it away, or install elsewhere with --prefix")
    endif()
  endforeach()
]])

install(DIRECTORY ${CMAKE_BINARY_DIR}/Vell.app DESTINATION lib/vell PATTERN Helpers EXCLUDE PATTERN MacOS EXCLUDE)
if(CMAKE_BUILD_TYPE STREQUAL "Release")
  install(CODE "set(CMAKE_INSTALL_DO_STRIP ON)")
endif()
# The link in bin/ is relative, so that everything may be moved together; both programs find the bundle from where it leads.
function(vell_install_program target folder)
  install(TARGETS ${target} DESTINATION ${bundle}/Contents/${folder})
  file(RELATIVE_PATH way ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_PREFIX}/${bundle}/Contents/${folder}/${target})
  file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/links)
  file(CREATE_LINK ${way} ${CMAKE_BINARY_DIR}/links/${target} SYMBOLIC)
  install(FILES ${CMAKE_BINARY_DIR}/links/${target} DESTINATION ${CMAKE_INSTALL_BINDIR})
endfunction()
vell_install_program(vell Helpers)
vell_install_program(vell-headless MacOS)
# Stripping breaks the signature that the linker made.
if(APPLE)
  install(CODE [[
    foreach(executable IN ITEMS Helpers/vell MacOS/vell-headless)
      execute_process(COMMAND codesign --force --sign - "${prefix}/${bundle}/Contents/${executable}"
        COMMAND_ERROR_IS_FATAL ANY)
    endforeach()
  ]])
endif()

install(FILES ${VELL_MANUALS} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
# Debian's zsh has a folder of its own for what packages bring.
install(CODE [[
  set(zsh site-functions)
  if(CMAKE_INSTALL_PREFIX MATCHES "/usr$" AND EXISTS /etc/debian_version)
    set(zsh vendor-completions)
  endif()
  file(GLOB scripts "${completions}/*")
  foreach(script IN LISTS scripts)
    get_filename_component(name "${script}" NAME_WE)
    if(script MATCHES "[.]bash$")
      file(INSTALL "${script}" DESTINATION "${CMAKE_INSTALL_PREFIX}/${data}/bash-completion/completions" RENAME "${name}")
    elseif(script MATCHES "[.]fish$")
      file(INSTALL "${script}" DESTINATION "${CMAKE_INSTALL_PREFIX}/${data}/fish/vendor_completions.d")
    else()
      file(INSTALL "${script}" DESTINATION "${CMAKE_INSTALL_PREFIX}/${data}/zsh/${zsh}")
    endif()
  endforeach()
]])

# cpack, in the build directory: an archive to unpack anywhere, and Debian's package with the libraries that it needs.
set(CPACK_GENERATOR TGZ)
find_program(DPKG_SHLIBDEPS dpkg-shlibdeps)
if(DPKG_SHLIBDEPS)
  list(APPEND CPACK_GENERATOR DEB)
endif()
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_CONTACT "The maintainers of vell <maintainers@vell.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "read and change outlines at a shell, in scripts and with agents")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libplist3 | libplist-2.0-4")  # loaded when the bundle's Info.plist is read
include(CPack)
