# The flags of all our own C++ code.
function(oldtorvio_flags target)
  target_compile_features(${target} PRIVATE cxx_std_20)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
  oldtorvio_warnings(${target})
  if(MSVC)
    target_compile_options(${target} PRIVATE /utf-8 /bigobj /permissive-)
    target_compile_definitions(${target} PRIVATE _CRT_SECURE_NO_WARNINGS)
  else()
    # Single precision rounds after every operation: a fused multiply and add would not.
    target_compile_options(${target} PRIVATE -ffp-contract=off)
    if(CMAKE_SIZEOF_VOID_P EQUAL 4 AND CMAKE_SYSTEM_PROCESSOR MATCHES "86")
      # The processor's older registers would round later than that.
      target_compile_options(${target} PRIVATE -msse2 -mfpmath=sse)
    endif()
  endif()
  if(MINGW)
    # More sections than its object files usually take.
    target_compile_options(${target} PRIVATE -Wa,-mbig-obj)
  endif()
  oldtorvio_link_flags(${target})
endfunction()

function(oldtorvio_link_flags target)
  if(MINGW)
    # No DLL but the system's own: the compiler's runtime is linked in.
    target_link_options(${target} PRIVATE -static)
  endif()
endfunction()

# The warnings of all our own code. Another project's build does not show them unless it asks for errors.
function(oldtorvio_warnings target)
  if(NOT OldTorvIO_IS_TOP_LEVEL AND NOT OLDTORVIO_WERROR)
    return()
  endif()
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 $<$<BOOL:${OLDTORVIO_WERROR}>:/WX>)
  else()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic $<$<COMPILE_LANGUAGE:CXX>:-Wconversion;-Wshadow>
      $<$<BOOL:${OLDTORVIO_WERROR}>:-Werror>)
  endif()
endfunction()
