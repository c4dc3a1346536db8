# Libraries that are not ours. The plug-in is loaded into somebody else's process, so what is not
# on every system is linked statically and stays hidden there.
find_package(Threads REQUIRED)
find_package(ZLIB REQUIRED)

# ISA-L packs and unpacks the parts of an .xlsx file; without it zlib does. It is linked by its bare
# name: the copy beside the engine is found there, and the system's by programs that link our rooms.
option(VORNELIX_ISAL "Deflate with ISA-L" ON)
find_library(ISAL_LIBRARY isal)
if(VORNELIX_ISAL AND ISAL_LIBRARY)
  add_library(isal INTERFACE)
  target_link_libraries(isal INTERFACE -lisal)
  target_compile_definitions(isal INTERFACE VORNELIX_ISAL)
endif()

function(find_static_library name archive)
  find_library(${name}_ARCHIVE ${archive} REQUIRED)
  add_library(${name} STATIC IMPORTED)
  set_target_properties(${name} PROPERTIES IMPORTED_LOCATION ${${name}_ARCHIVE})
endfunction()

find_static_library(pugixml libpugixml.a)
find_static_library(utf8proc libutf8proc.a)
target_compile_definitions(utf8proc INTERFACE UTF8PROC_STATIC)
