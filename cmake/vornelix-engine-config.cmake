# Gives vornelix::engine, the shared library, and vornelix::engine-static. What the latter needs is
# linked by name: pugixml, utf8proc, libcrypto, zlib and ISA-L have to be where libraries are searched.
include("${CMAKE_CURRENT_LIST_DIR}/vornelix-engine-targets.cmake")
