# The flags of all our own code.
function(oldtorvio_flags target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow $<$<BOOL:${OLDTORVIO_WERROR}>:-Werror>
    # Single precision rounds after every operation: a fused multiply and add would not.
    -ffp-contract=off)
  if(CMAKE_SIZEOF_VOID_P EQUAL 4 AND CMAKE_SYSTEM_PROCESSOR MATCHES "86")
    # The processor's older registers would round later than that.
    target_compile_options(${target} PRIVATE -msse2 -mfpmath=sse)
  endif()
  if(MINGW)
    # More sections than its object files usually take.
    target_compile_options(${target} PRIVATE -Wa,-mbig-obj)
  endif()
endfunction()
