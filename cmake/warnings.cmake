# The flags of all our own code.
function(oldtorvio_flags target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow $<$<BOOL:${OLDTORVIO_WERROR}>:-Werror>
    # Single precision rounds after every operation: a fused multiply and add would not.
    -ffp-contract=off)
endfunction()
