# Compile options that every target of the project shares.
add_library(zel_options INTERFACE)
target_compile_options(zel_options INTERFACE
  -ffp-contract=off  # results must not depend on what the compiler fuses
  -Wall -Wextra -Wpedantic -Wconversion
  $<$<BOOL:${ZEL_WERROR}>:-Werror>)
if(ZEL_SANITIZE)
  target_compile_options(zel_options INTERFACE
    -fsanitize=${ZEL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(zel_options INTERFACE -fsanitize=${ZEL_SANITIZE})
endif()
