# The Debian packages, one for each component; OLDTORVIO_TOOLS and OLDTORVIO_PYTHON must be on. The rules for names and
# contents are those of Debian's Policy Manual; lintian checks them.
set(OLDTORVIO_MAINTAINER "OldTorvIO authors <authors@oldtorvio.invalid>" CACHE STRING
  "Maintainer of the Debian packages: name and address")
set(OLDTORVIO_DEBIAN_REVISION 1 CACHE STRING "Revision of the Debian packages of one version")

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_COMPONENTS_ALL "")  # without OldTorvIO_License: Debian has the licence in the file "copyright"
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
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
# The address by which Debian names the format.
string(CONCAT copyright_format "https://www.debian" ".org/doc/packaging-manuals/copyright-format/1.0/")
configure_file(${packaging}/copyright.in ${debian_folder}/copyright @ONLY)
configure_file(${packaging}/changelog.in ${debian_folder}/changelog.Debian @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/CHANGELOG.md ${debian_folder}/changelog COPYONLY)
execute_process(COMMAND gzip -9nf changelog changelog.Debian WORKING_DIRECTORY ${debian_folder}
  COMMAND_ERROR_IS_FATAL ANY)

# debian_package(COMPONENT NAME [SECTION name] [DEPENDS packages] [CONTROL file ...] [CONTAINS package ...]
#                SUMMARY text DESCRIPTION line ...)
# CONTAINS lists the Debian packages whose code is compiled in. Accepted remarks of lintian, with the reasons, are in
# lintian-overrides/ under the name without its version.
function(debian_package component name)
  cmake_parse_arguments(PARSE_ARGV 2 with "" "SECTION;DEPENDS;SUMMARY" "CONTROL;CONTAINS;DESCRIPTION")
  string(TOUPPER CPACK_DEBIAN_${component} prefix)
  set(${prefix}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(${prefix}_PACKAGE_SECTION ${with_SECTION} PARENT_SCOPE)
  set(${prefix}_PACKAGE_DEPENDS "${with_DEPENDS}" PARENT_SCOPE)
  set(${prefix}_PACKAGE_CONTROL_EXTRA "${with_CONTROL}" PARENT_SCOPE)
  list(APPEND with_DESCRIPTION "." "The files are parts, sheets (nests), machines, materials, tool inventories,"
    "special tools and macros, in versions 2 to 180.")
  list(JOIN with_DESCRIPTION "\n" text)
  set(${prefix}_DESCRIPTION "${with_SUMMARY}\n${text}" PARENT_SCOPE)
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${component} PARENT_SCOPE)

  install(FILES ${debian_folder}/copyright ${debian_folder}/changelog.gz ${debian_folder}/changelog.Debian.gz
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${name} COMPONENT ${component})
  package_licences(${component} ${CMAKE_INSTALL_DATAROOTDIR}/doc/${name} ${with_CONTAINS})
  string(REGEX REPLACE "[0-9.]+$" "" plain_name ${name})
  if(NOT EXISTS ${packaging}/lintian-overrides/${plain_name})
    set(plain_name ${name})  # ends in a number that is not a version
  endif()
  configure_file(${packaging}/lintian-overrides/${plain_name} ${debian_folder}/overrides/${name} @ONLY)
  install(FILES ${debian_folder}/overrides/${name} COMPONENT ${component}
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/lintian/overrides)
endfunction()

# debian_library(COMPONENT LIBRARY NAME FUNCTIONS ...): the package of the shared library lib${LIBRARY}.so, which
# exports the functions in that list. From `symbols` and `shlibs`, other packages know which version they need.
macro(debian_library component library name functions)
  set(folder ${debian_folder}/${name})
  list(TRANSFORM ${functions} REPLACE "(.+)" " \\1@Base ${PROJECT_VERSION}\n" OUTPUT_VARIABLE symbols)
  list(SORT symbols)
  list(JOIN symbols "" symbols)
  file(WRITE ${folder}/symbols "lib${library}.so.${abi_version} ${name} #MINVER#\n"
    "* Build-Depends-Package: liboldtorvio-dev\n${symbols}")
  file(WRITE ${folder}/shlibs "lib${library} ${abi_version} ${name} (>= ${PROJECT_VERSION})\n")
  file(WRITE ${folder}/triggers "activate-noawait ldconfig\n")
  debian_package(${component} ${name} ${ARGN} SECTION libs
    CONTROL ${folder}/symbols ${folder}/shlibs ${folder}/triggers)
endmacro()

debian_library(OldTorvIO_Runtime OldTorvIO liboldtorvio${abi_version} exports
  SUMMARY "library for older files of a sheet-metal fabrication suite"
  DESCRIPTION "OldTorvIO reads, queries, edits and saves these files with plain C functions;"
  "C++ programs also get the complete records.")
get_directory_property(torvio_exports DIRECTORY torvio/library DEFINITION torvio_exports)
string(REPLACE "\n" ";" torvio_exports "${torvio_exports}")
debian_library(OldTorvIO_Companion torvio libtorvio${abi_version} torvio_exports CONTAINS nlohmann-json3-dev
  SUMMARY "verdicts, JSON and pictures of older sheet-metal files"
  DESCRIPTION "libtorvio has what the command torvio does as plain C functions: it judges a"
  "file, returns its contents as JSON and makes a file from that, draws it,"
  "compares two files and converts between versions.")
debian_package(OldTorvIO_Development liboldtorvio-dev SECTION libdevel
  DEPENDS "liboldtorvio${abi_version} (= ${debian_version}), libtorvio${abi_version} (= ${debian_version})"
  SUMMARY "headers and static library of OldTorvIO and libtorvio"
  DESCRIPTION "What C and C++ programs need to be built with OldTorvIO or libtorvio, with a"
  "CMake package (OldTorvIO) and the pkg-config packages oldtorvio and torvio.")
debian_package(OldTorvIO_Tool torvio SECTION utils CONTAINS libcli11-dev nlohmann-json3-dev
  SUMMARY "shows, checks and converts older sheet-metal files"
  DESCRIPTION "torvio says what a file is and whether it is sound, shows what is in it,"
  "draws it, compares two files, converts and recovers them, and turns files"
  "into JSON and back.")
# The module is built for the version of Python that is found.
find_package(Python 3.10 COMPONENTS Interpreter REQUIRED)
math(EXPR next_minor "${Python_VERSION_MINOR} + 1")
debian_package(OldTorvIO_Python python3-oldtorvio SECTION python
  DEPENDS "python3 (>= 3.${Python_VERSION_MINOR}~), python3 (<< 3.${next_minor})"
  CONTROL ${packaging}/python3-oldtorvio/postinst ${packaging}/python3-oldtorvio/prerm
  CONTAINS nlohmann-json3-dev pybind11-dev
  SUMMARY "older files of a sheet-metal fabrication suite in Python"
  DESCRIPTION "The package oldtorvio has every record as a class, loads and saves them, and"
  "all that the command torvio does.")
