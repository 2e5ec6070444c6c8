# Packages, by CPack. OLDTORVIO_PACKAGE selects a kind, because folders and linking differ; `./dev packages` makes all.
#
#   DEB  Debian packages, one for each component below
#   TGZ  one archive for Linux whose programs and libraries need only glibc
#   ZIP  one archive for Windows
#
# The presets package-* strip programs when they are linked: the identifier that the linker computes would depend on
# the debugging information, which names folders. packaging/prepare.cmake strips static libraries, and
# packaging/finish.cmake writes the final archives, in which nothing depends on the time or the folder of the build.

# The time in all packages: that of the last commit, unless SOURCE_DATE_EPOCH says otherwise.
set(package_time "$ENV{SOURCE_DATE_EPOCH}")
if(NOT package_time)
  execute_process(COMMAND git log -1 --format=%ct WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
    OUTPUT_VARIABLE package_time OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()
if(NOT package_time MATCHES "^[0-9]+$")
  message(FATAL_ERROR "OldTorvIO: packages need a time: this is not a git checkout, and SOURCE_DATE_EPOCH is not set.")
endif()

set(packaging ${PROJECT_SOURCE_DIR}/cmake/packaging)
set(CPACK_GENERATOR ${OLDTORVIO_PACKAGE})
set(CPACK_PACKAGE_NAME OldTorvIO)
set(CPACK_PACKAGE_VENDOR "The OldTorvIO authors")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES OFF)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
  WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${packaging}/prepare.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${packaging}/finish.cmake)
# For these two scripts.
set(CPACK_OLDTORVIO_TIME ${package_time})
set(CPACK_OLDTORVIO_STRIP ${CMAKE_STRIP})

# The licences of libraries that are compiled in must be in the package; the packages of Debian have them.
function(package_licences component folder)
  foreach(debian_package ${ARGN})
    install(FILES /usr/share/doc/${debian_package}/copyright DESTINATION ${folder}/licences
      RENAME ${debian_package}.txt COMPONENT ${component})
  endforeach()
endfunction()

if(OLDTORVIO_PACKAGE STREQUAL "DEB")
  include(${packaging}/debian.cmake)
else()
  # One archive with everything. The file name says where it runs.
  set(package_system ${CMAKE_SYSTEM_NAME})
  string(TOLOWER "${package_system}-${CMAKE_SYSTEM_PROCESSOR}" package_system)
  set(CPACK_PACKAGE_FILE_NAME oldtorvio-${PROJECT_VERSION}-${package_system})
  set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY ON)
  install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
    DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT OldTorvIO_Documents)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/examples
    DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT OldTorvIO_Documents PATTERN __pycache__ EXCLUDE)
  set(package_runtime libsqlite3-dev)
  if(WIN32)
    set(package_runtime mingw-w64-x86-64-dev)
  endif()
  package_licences(OldTorvIO_License ${CMAKE_INSTALL_DOCDIR} libcli11-dev nlohmann-json3-dev ${package_runtime})
endif()
include(CPack)
