# Installs the finished build into a folder of its own and uses it from there, as a stranger would.
cmake_policy(VERSION 3.25)
file(REMOVE_RECURSE ${SCRATCH})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --config ${CONFIG} --prefix ${SCRATCH}/installed
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
function(configure wanted)
  execute_process(
    COMMAND ${CMAKE_COMMAND} -S ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/package -B ${SCRATCH}/${wanted} -G ${GENERATOR}
            -DCMAKE_C_COMPILER=${C_COMPILER} -DCMAKE_C_FLAGS=${C_FLAGS} -DWANTED=${wanted}
            -DCMAKE_PREFIX_PATH=${SCRATCH}/installed
    OUTPUT_QUIET ERROR_VARIABLE complaint RESULT_VARIABLE result)
  set(result ${result} PARENT_SCOPE)
  set(complaint ${complaint} PARENT_SCOPE)
endfunction()

configure(${VERSION})
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${complaint}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --build ${SCRATCH}/${VERSION} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${SCRATCH}/${VERSION}/package_client ${SCRATCH} COMMAND_ERROR_IS_FATAL ANY)

configure(99.0)
if(result EQUAL 0 OR NOT complaint MATCHES "99[.]0")
  message(FATAL_ERROR "a version that is not there was found, or missed for another reason: ${complaint}")
endif()
