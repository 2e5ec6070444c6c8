# Runs after CPack has installed the files and before it packs them. Programs and shared libraries were stripped when they
# were linked; stripped again, those of Windows would get the time.
file(GLOB_RECURSE installed LIST_DIRECTORIES FALSE ${CPACK_TEMPORARY_DIRECTORY}/*)
foreach(file ${installed})
  if(IS_SYMLINK ${file})
    continue()
  endif()
  if(file MATCHES "/bin/torvio$|\\.so(\\.[0-9]+)*$")
    # Removes the versions of the compilers.
    execute_process(COMMAND ${CPACK_OLDTORVIO_STRIP} --remove-section=.comment ${file} COMMAND_ERROR_IS_FATAL ANY)
  elseif(file MATCHES "\\.a$" AND NOT file MATCHES "\\.dll\\.a$")
    execute_process(COMMAND ${CPACK_OLDTORVIO_STRIP} --strip-debug --remove-section=.comment
      --enable-deterministic-archives ${file} COMMAND_ERROR_IS_FATAL ANY)
  elseif(CPACK_GENERATOR STREQUAL "DEB" AND file MATCHES "/man/man[0-9]/[^/]*\\.[0-9]$")
    execute_process(COMMAND gzip -9n ${file} COMMAND_ERROR_IS_FATAL ANY)
  endif()
endforeach()
