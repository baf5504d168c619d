# Compiler flags of every target of the project: link vex2_flags privately.
add_library(vex2_flags INTERFACE)
target_compile_features(vex2_flags INTERFACE cxx_std_20)
target_compile_options(vex2_flags INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(VEX2_WERROR)
  target_compile_options(vex2_flags INTERFACE -Werror)
  # g++ 12 reports false overflows in inlined standard-library code that grows vectors and strings.
  # These three warnings are shown but are not errors; the sanitizers find real overflows.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(vex2_flags INTERFACE -Wno-error=restrict -Wno-error=array-bounds
                           -Wno-error=stringop-overflow)
  endif()
endif()

# Sanitizers must be in every link, including programs that use the static libraries.
if(VEX2_SANITIZE)
  add_compile_options(-fsanitize=${VEX2_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${VEX2_SANITIZE})
endif()
