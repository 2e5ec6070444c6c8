# Installation, and how other projects find the library: the CMake package and oldtorvio.pc.

# Installs the targets, a shared library first, and the list of its exports. `component` has what programs need to run.
function(oldtorvio_install_library component target)
  install(TARGETS ${target} ${ARGN} EXPORT OldTorvIO
    RUNTIME COMPONENT ${component}
    LIBRARY COMPONENT ${component} NAMELINK_COMPONENT OldTorvIO_Development
    ARCHIVE COMPONENT OldTorvIO_Development)
  if(WIN32)
    install(FILES ${PROJECT_BINARY_DIR}/${target}.def DESTINATION ${CMAKE_INSTALL_LIBDIR}
      COMPONENT OldTorvIO_Development)
  endif()
endfunction()
oldtorvio_install_library(OldTorvIO_Runtime OldTorvIO OldTorvIO_static)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT OldTorvIO_Development)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT OldTorvIO_License)

# What a program without C++ code has to link in addition to the static library.
set(cxx_runtime ${CMAKE_CXX_IMPLICIT_LINK_LIBRARIES})
list(REMOVE_ITEM cxx_runtime ${CMAKE_C_IMPLICIT_LINK_LIBRARIES})
list(REMOVE_DUPLICATES cxx_runtime)
list(FILTER cxx_runtime EXCLUDE REGEX "^gcc")  # the C compiler links its own

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/OldTorvIO)
install(EXPORT OldTorvIO NAMESPACE OldTorvIO:: FILE OldTorvIOTargets.cmake
  DESTINATION ${package_folder} COMPONENT OldTorvIO_Development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/OldTorvIOConfig.cmake.in
  ${PROJECT_BINARY_DIR}/OldTorvIOConfig.cmake INSTALL_DESTINATION ${package_folder}
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OldTorvIOConfigVersion.cmake
  COMPATIBILITY ${package_compatibility})
install(FILES ${PROJECT_BINARY_DIR}/OldTorvIOConfig.cmake ${PROJECT_BINARY_DIR}/OldTorvIOConfigVersion.cmake
  DESTINATION ${package_folder} COMPONENT OldTorvIO_Development)

# The .pc files compute their prefix from their own location, unless the folders were configured as absolute paths.
set(pc_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR} OR IS_ABSOLUTE ${CMAKE_INSTALL_INCLUDEDIR})
  set(pc_prefix ${CMAKE_INSTALL_PREFIX})
else()
  file(RELATIVE_PATH up /prefix/${pc_folder} /prefix)
  set(pc_prefix \${pcfiledir}/${up})
  string(REGEX REPLACE "/$" "" pc_prefix "${pc_prefix}")
endif()
foreach(folder LIBDIR INCLUDEDIR)
  set(pc_${folder} ${CMAKE_INSTALL_${folder}})
  if(NOT IS_ABSOLUTE ${pc_${folder}})
    set(pc_${folder} \${prefix}/${pc_${folder}})
  endif()
endforeach()
list(TRANSFORM cxx_runtime PREPEND -l OUTPUT_VARIABLE pc_cxx_runtime)
list(JOIN pc_cxx_runtime " " pc_cxx_runtime)
# Call it below the folder that includes this file, whose variables it uses.
function(oldtorvio_install_pc name)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${pc_folder} COMPONENT OldTorvIO_Development)
endfunction()
oldtorvio_install_pc(oldtorvio)
