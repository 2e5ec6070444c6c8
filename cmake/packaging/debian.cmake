# The Debian packages, one for each component. The rules for names and contents are those of Debian's Policy Manual;
# lintian checks them.
set(OLDTORVIO_MAINTAINER "OldTorvIO authors <authors@oldtorvio.invalid>" CACHE STRING
  "Who answers for the Debian packages: name and address")
set(OLDTORVIO_DEBIAN_REVISION 1 CACHE STRING "Counts the packages made of one version")

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_COMPONENTS_ALL "")  # without OldTorvIO_License: Debian has the licence in the file "copyright"
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${OLDTORVIO_MAINTAINER})
set(CPACK_DEBIAN_PACKAGE_SOURCE oldtorvio)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${OLDTORVIO_DEBIAN_REVISION})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(debian_version ${PROJECT_VERSION}-${OLDTORVIO_DEBIAN_REVISION})

# What every package has in /usr/share/doc. Only the changelogs of Debian carry a date.
set(debian_folder ${PROJECT_BINARY_DIR}/debian)
execute_process(COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C TZ=UTC date -u -R -d @${package_time}
  OUTPUT_VARIABLE debian_date OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
file(STRINGS ${PROJECT_SOURCE_DIR}/LICENSE copyright_line REGEX "^Copyright ")
string(REGEX REPLACE "^Copyright \\(c\\) " "" copyright_line "${copyright_line}")
file(READ ${PROJECT_SOURCE_DIR}/LICENSE licence)
string(REGEX REPLACE "^.*\n(Permission is hereby)" "\\1" licence "${licence}")
string(STRIP "${licence}" licence)
string(REPLACE "\n\n" "\n.\n" licence "${licence}")
string(REPLACE "\n" "\n " licence "${licence}")
configure_file(${packaging}/copyright.in ${debian_folder}/copyright @ONLY)
configure_file(${packaging}/changelog.in ${debian_folder}/changelog.Debian @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/CHANGELOG.md ${debian_folder}/changelog COPYONLY)
execute_process(COMMAND gzip -9nf changelog changelog.Debian WORKING_DIRECTORY ${debian_folder}
  COMMAND_ERROR_IS_FATAL ANY)

# debian_package(COMPONENT NAME [SECTION name] [DEPENDS packages] [MULTIARCH value] [CONTROL file ...]
#                SUMMARY text DESCRIPTION text ...)
# `NAME` may end in the version of an ABI; the file lintian-overrides/NAME has none.
function(debian_package component name)
  cmake_parse_arguments(PARSE_ARGV 2 with "" "SECTION;DEPENDS;MULTIARCH;SUMMARY" "CONTROL;DESCRIPTION")
  string(TOUPPER CPACK_DEBIAN_${component} prefix)
  set(${prefix}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(${prefix}_PACKAGE_SECTION ${with_SECTION} PARENT_SCOPE)
  set(${prefix}_PACKAGE_DEPENDS "${with_DEPENDS}" PARENT_SCOPE)
  set(${prefix}_PACKAGE_MULTIARCH "${with_MULTIARCH}" PARENT_SCOPE)
  set(${prefix}_PACKAGE_CONTROL_EXTRA "${with_CONTROL}" PARENT_SCOPE)
  string(JOIN " " text ${with_DESCRIPTION})
  set(${prefix}_DESCRIPTION "${with_SUMMARY}\n${text}" PARENT_SCOPE)
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${component} PARENT_SCOPE)

  install(FILES ${debian_folder}/copyright ${debian_folder}/changelog.gz ${debian_folder}/changelog.Debian.gz
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${name} COMPONENT ${component})
  string(REGEX REPLACE "[0-9.]+$" "" plain_name ${name})
  set(overrides ${packaging}/lintian-overrides/${plain_name})
  if(EXISTS ${overrides})
    file(READ ${overrides} text)
    string(CONFIGURE "${text}" text @ONLY)
    file(CONFIGURE OUTPUT ${debian_folder}/overrides/${name} CONTENT "${text}")
    install(FILES ${debian_folder}/overrides/${name} COMPONENT ${component}
      DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/lintian/overrides)
  endif()
endfunction()

set(about_files "The files are parts, sheets (nests), machines, materials, tool inventories, special tools and macros"
  "of an older sheet-metal fabrication suite, in versions 2 to 180.")
foreach(library Runtime Companion)
  string(TOUPPER CPACK_DEBIAN_OLDTORVIO_${library}_PACKAGE_GENERATE_SHLIBS variable)
  set(${variable} ON)
  set(${variable}_POLICY ">=")
endforeach()
debian_package(OldTorvIO_Runtime liboldtorvio${abi_version} SECTION libs MULTIARCH same
  SUMMARY "library for older files of a sheet-metal fabrication suite"
  DESCRIPTION "OldTorvIO reads, queries, edits and saves such files with plain C functions; C++ programs also get"
  "the complete records." ${about_files})
debian_package(OldTorvIO_Companion libtorvio${abi_version} SECTION libs MULTIARCH same
  SUMMARY "verdicts, JSON and pictures of older sheet-metal files"
  DESCRIPTION "libtorvio has what the command torvio does as plain C functions: it judges a file, returns its contents"
  "as JSON and makes a file of that, draws it, compares two files and converts between versions." ${about_files})
debian_package(OldTorvIO_Development liboldtorvio-dev SECTION libdevel MULTIARCH same
  DEPENDS "liboldtorvio${abi_version} (= ${debian_version}), libtorvio${abi_version} (= ${debian_version})"
  SUMMARY "headers and static library of OldTorvIO and libtorvio"
  DESCRIPTION "What C and C++ programs need to be built with OldTorvIO or libtorvio, with a CMake package"
  "(find_package(OldTorvIO)) and the pkg-config packages oldtorvio and torvio." ${about_files})
if(with_TOOLS)
  debian_package(OldTorvIO_Tool torvio SECTION utils MULTIARCH foreign
    SUMMARY "shows, checks and converts older sheet-metal files"
    DESCRIPTION "torvio says what a file is and whether it is sound, shows what is in it, draws it, compares two files,"
    "converts and recovers them, and turns files into JSON and back." ${about_files})
endif()
if(OLDTORVIO_PYTHON)
  # The module is made for the version of Python that is found.
  find_package(Python 3.10 COMPONENTS Interpreter REQUIRED)
  math(EXPR next_minor "${Python_VERSION_MINOR} + 1")
  debian_package(OldTorvIO_Python python3-oldtorvio SECTION python
    DEPENDS "python3 (>= 3.${Python_VERSION_MINOR}~), python3 (<< 3.${next_minor})"
    CONTROL ${packaging}/python3-oldtorvio/postinst ${packaging}/python3-oldtorvio/prerm
    SUMMARY "older files of a sheet-metal fabrication suite in Python"
    DESCRIPTION "The package oldtorvio has every record as a class, loads and saves them, and all that the command"
    "torvio does." ${about_files})
endif()
