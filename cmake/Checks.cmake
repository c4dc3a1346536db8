# Warnings and sanitizers, set here and nowhere else. Warnings are errors in every preset.
add_compile_options(
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Wold-style-cast)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12 sees overlapping copies in std::string::insert and operator+ where there are none.
  add_compile_options(-Wno-restrict)
else()
  # Clang counts changes of sign among the conversions, GCC does not: both are held to the same.
  add_compile_options(-Wno-sign-conversion)
endif()

set(VORNELIX_SANITIZE "" CACHE STRING "Sanitizers to build with, as the compiler names them")
if(VORNELIX_SANITIZE)
  add_compile_options(
    -fsanitize=${VORNELIX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
  add_link_options(-fsanitize=${VORNELIX_SANITIZE})
endif()
