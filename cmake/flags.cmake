# The flags of all C++ code of this project.
function(oldtorvio_flags target)
  target_compile_features(${target} PRIVATE cxx_std_20)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
  oldtorvio_warnings(${target})
  if(MSVC)
    target_compile_options(${target} PRIVATE /utf-8 /bigobj /permissive-)
    target_compile_definitions(${target} PRIVATE _CRT_SECURE_NO_WARNINGS)
  else()
    # Single-precision results are rounded after every operation; a fused multiply-add would not do that.
    target_compile_options(${target} PRIVATE -ffp-contract=off)
    if(CMAKE_SIZEOF_VOID_P EQUAL 4 AND CMAKE_SYSTEM_PROCESSOR MATCHES "86")
      # x87 registers would round later.
      target_compile_options(${target} PRIVATE -msse2 -mfpmath=sse)
    endif()
  endif()
  if(MINGW)
    # Object files have more sections than the default format allows.
    target_compile_options(${target} PRIVATE -Wa,-mbig-obj)
  endif()
  oldtorvio_link_flags(${target})
endfunction()

# The flags of tests and fuzz targets, which are most of the code to compile. If they are not optimised, their programs
# may also contain unoptimised copies of the library's inline functions and templates; the shared library and torvio do
# not.
function(oldtorvio_test_flags target)
  oldtorvio_flags(${target})
  separate_arguments(flags NATIVE_COMMAND "${OLDTORVIO_TEST_FLAGS}")
  target_compile_options(${target} PRIVATE ${flags})
endfunction()

function(oldtorvio_link_flags target)
  if(MINGW)
    # Links the runtime of the compiler statically: the DLL depends only on DLLs of the system.
    target_link_options(${target} PRIVATE -static)
  elseif(OLDTORVIO_STATIC_RUNTIME)
    target_link_options(${target} PRIVATE -static-libgcc -static-libstdc++)
  endif()
endfunction()

# The warnings of all code of this project. In the build of another project they are off unless they are errors.
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
