# Runs after CPack has made its packages.
foreach(package ${CPACK_PACKAGE_FILES})
  execute_process(COMMAND sh ${CMAKE_CURRENT_LIST_DIR}/finish.sh ${package} ${CPACK_OLDTORVIO_TIME}
    COMMAND_ERROR_IS_FATAL ANY)
endforeach()
