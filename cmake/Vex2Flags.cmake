# What every target of the project is compiled with: link vex2_flags, privately.
add_library(vex2_flags INTERFACE)
target_compile_features(vex2_flags INTERFACE cxx_std_20)
target_compile_options(vex2_flags INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(VEX2_WERROR)
  target_compile_options(vex2_flags INTERFACE -Werror)
  # These three follow inlined standard-library code, where g++ 12 takes vectors and strings that
  # grow for overflows: they are shown, and fail nothing. The sanitizers look for the real ones.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(vex2_flags INTERFACE -Wno-error=restrict -Wno-error=array-bounds
                           -Wno-error=stringop-overflow)
  endif()
endif()

# Sanitizers and coverage must reach every link, the consumers of our static libraries included.
if(VEX2_SANITIZE)
  add_compile_options(-fsanitize=${VEX2_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${VEX2_SANITIZE})
endif()
if(VEX2_COVERAGE)
  # Recorders are forked in tests; counters are merged into the files of the same objects.
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()
