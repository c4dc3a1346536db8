# Libraries that are not ours. The plug-in is loaded into somebody else's process, so what is not
# on every system is linked statically and stays hidden there.
find_package(Threads REQUIRED)
find_package(ZLIB REQUIRED)

# ISA-L packs and unpacks the parts of an .xlsx file; without it zlib does. An archive of it is linked
# in. The shared library is linked by its bare name: the copy beside the plug-in is found there, and
# the system's by programs that link our rooms.
option(VORNELIX_ISAL "Deflate with ISA-L" ON)
# On a Mac it is no part of the system, and what is built with it names its place there.
if(APPLE)
  find_library(ISAL_LIBRARY libisal.a)
else()
  find_library(ISAL_LIBRARY isal)
endif()
if(VORNELIX_ISAL AND ISAL_LIBRARY)
  set(isal_is_archive OFF)
  if(ISAL_LIBRARY MATCHES "\\.a$")
    set(isal_is_archive ON)
  endif()
  add_library(isal INTERFACE IMPORTED)
  target_link_libraries(isal INTERFACE $<IF:$<BOOL:${isal_is_archive}>,${ISAL_LIBRARY},-lisal>)
  target_compile_definitions(isal INTERFACE VORNELIX_ISAL)
endif()

# ISA-L is not on every system: it lies beside the library that is built with it, under the name that
# this asks for.
function(ship_isal library)
  if(NOT TARGET isal OR isal_is_archive)
    return()
  endif()
  file(REAL_PATH ${ISAL_LIBRARY} isal_file)
  execute_process(COMMAND ${CMAKE_OBJDUMP} -p ${isal_file} OUTPUT_VARIABLE isal_headers)
  if(NOT isal_headers MATCHES "SONAME +([^ \n]+)")
    message(FATAL_ERROR "${isal_file} has no name to be found by")
  endif()
  set(isal_name ${CMAKE_MATCH_1})
  add_custom_command(TARGET ${library} POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E copy_if_different ${isal_file}
            ${PLUGIN_OUTPUT_DIRECTORY}/${isal_name}
    VERBATIM)
  install(PROGRAMS ${isal_file} DESTINATION ${PLUGIN_DESTINATION} RENAME ${isal_name}
          COMPONENT isal)
endfunction()

function(find_static_library name archive)
  find_library(${name}_ARCHIVE ${archive} REQUIRED)
  add_library(${name} STATIC IMPORTED)
  set_target_properties(${name} PROPERTIES IMPORTED_LOCATION ${${name}_ARCHIVE})
endfunction()

find_static_library(pugixml libpugixml.a)
find_static_library(utf8proc libutf8proc.a)
target_compile_definitions(utf8proc INTERFACE UTF8PROC_STATIC)
# For digests, which Windows has itself.
if(WIN32)
  add_library(crypto INTERFACE IMPORTED)
  target_link_libraries(crypto INTERFACE bcrypt)
else()
  find_static_library(crypto libcrypto.a)
endif()

# Hashes of texts. It is all in its header, to be compiled into the places that use it.
find_path(XXHASH_INCLUDE_DIR xxhash.h REQUIRED)
add_library(xxhash INTERFACE)
target_include_directories(xxhash SYSTEM INTERFACE ${XXHASH_INCLUDE_DIR})
target_compile_definitions(xxhash INTERFACE XXH_INLINE_ALL)
