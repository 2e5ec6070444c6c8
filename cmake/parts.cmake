# The optional parts of the project. Each has an option with three values:
#
#   AUTO  built if the packages that it needs are found; the default when this project is built by itself
#   ON    built; configuring fails if a package that it needs is missing
#   OFF   not built; the default in the build of another project
#
# oldtorvio_part(NAME DESCRIPTION [PACKAGES package ... DEBIAN package ...] [IF variable]) defines the option
# OLDTORVIO_NAME and sets with_NAME. With IF, AUTO also requires that variable to be true.
function(oldtorvio_part name description)
  cmake_parse_arguments(PARSE_ARGV 2 part "" "IF" "PACKAGES;DEBIAN")
  set(option OLDTORVIO_${name})
  set(default OFF)
  if(OldTorvIO_IS_TOP_LEVEL)
    set(default AUTO)
  endif()
  set(${option} ${default} CACHE STRING "Build ${description}: AUTO, ON or OFF")
  set_property(CACHE ${option} PROPERTY STRINGS AUTO ON OFF)

  set(with_${name} FALSE PARENT_SCOPE)
  if(${option} STREQUAL "AUTO")
    if(part_IF AND NOT ${part_IF})
      return()
    endif()
  elseif(NOT ${option})
    return()
  endif()
  foreach(package debian IN ZIP_LISTS part_PACKAGES part_DEBIAN)
    oldtorvio_find(${package} found)
    if(NOT found)
      set(missing "${package} is not found (Debian package: ${debian})")
      if(NOT ${option} STREQUAL "AUTO")
        message(FATAL_ERROR "OldTorvIO: ${option} is ${${option}}, but ${missing}.")
      endif()
      message(STATUS "OldTorvIO: ${missing}, which leaves out ${description}")
      return()
    endif()
  endforeach()
  set(with_${name} TRUE PARENT_SCOPE)
endfunction()

# Finds a package. Its targets are then defined in the calling folder and below.
function(oldtorvio_find package found)
  if(CMAKE_CROSSCOMPILING AND package STREQUAL "GTest" AND EXISTS /usr/src/googletest/CMakeLists.txt)
    # The installed library is built for this host; its sources can be built for any.
    set(BUILD_GMOCK OFF)
    set(INSTALL_GTEST OFF)
    add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
    set(${found} TRUE PARENT_SCOPE)
    return()
  endif()
  find_package(${package} QUIET)
  set(${found} ${${package}_FOUND} PARENT_SCOPE)
endfunction()
