# Two ways to install what was built, which share nothing but the files:
#   cmake --install <build> --prefix <folder>                     one portable folder, which is its own home where it may be written
#   cmake --install <build> --prefix <root>/usr --component system  the folders of a Linux system, as scripts/package packs them
if(CMAKE_INSTALL_PREFIX STREQUAL /usr/local)  # the default of CMake; a portable folder does not belong there
  set_property(CACHE CMAKE_INSTALL_PREFIX PROPERTY VALUE /opt/korvane)
endif()

# korvane_install_program(<folder below the prefix> <option of install>...): the program with all that it needs beside it.
function(korvane_install_program folder)
  install(TARGETS korvanecore RUNTIME DESTINATION ${folder} ${ARGN})
  install(TARGETS korvanedesktop LIBRARY DESTINATION ${folder} ${ARGN})
  install(DIRECTORY ${KORVANE_DIST}/ DESTINATION ${folder} ${ARGN}
    FILES_MATCHING PATTERN "*tmp.htm" PATTERN "*.gif" PATTERN kvempty.mdb PATTERN manual.md PATTERN "*.png")
endfunction()

korvane_install_program(. COMPONENT portable)

# korvane_unit(<file> <home> <description>): the unit that the program itself installs for others, here for the user of the package.
function(korvane_unit file FOLDER DESCRIPTION)
  set(WHOSE "the system.")
  set(PROGRAM /usr/lib/korvane/korvanecore)
  set(USER korvane)
  set(FOLDERS ${FOLDER})
  set(OWNER ${FOLDER})
  set(HOME KORVANE_HOME=${FOLDER})
  set(TARGET multi-user.target)
  configure_file(${CMAKE_SOURCE_DIR}/data/korvane.service.in ${file} @ONLY)
endfunction()
korvane_unit(${CMAKE_BINARY_DIR}/system/korvane.service /var/lib/korvane "Korvane network and server monitor")
# One of several, which usually share a list: "systemctl enable --now korvane@north" has its home in /var/lib/korvane/north.
korvane_unit(${CMAKE_BINARY_DIR}/system/korvane@.service /var/lib/korvane/%i "Korvane network and server monitor %i")

set(system COMPONENT system EXCLUDE_FROM_ALL)
korvane_install_program(lib/korvane ${system})
install(PROGRAMS ${CMAKE_SOURCE_DIR}/data/system/korvanecore DESTINATION bin ${system})
install(FILES ${CMAKE_BINARY_DIR}/system/korvane.service ${CMAKE_BINARY_DIR}/system/korvane@.service DESTINATION lib/systemd/system ${system})
install(FILES ${CMAKE_SOURCE_DIR}/data/system/korvane.desktop DESTINATION share/applications ${system})
install(DIRECTORY ${CMAKE_SOURCE_DIR}/data/icons/ DESTINATION share/icons/hicolor ${system})
install(FILES ${CMAKE_SOURCE_DIR}/data/system/korvanecore.bash DESTINATION share/bash-completion/completions RENAME korvanecore ${system})
install(FILES ${CMAKE_SOURCE_DIR}/data/system/korvanecore.1 DESTINATION share/man/man1 ${system})
install(FILES ${CMAKE_SOURCE_DIR}/docs/manual.md ${CMAKE_SOURCE_DIR}/CHANGELOG.md DESTINATION share/doc/korvane ${system})
install(DIRECTORY ${CMAKE_SOURCE_DIR}/docs/pictures DESTINATION share/doc/korvane ${system})
