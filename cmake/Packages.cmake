# Packages, as `./package` and `./windows` make them: an archive that is unpacked anywhere, and for
# Debian the plug-in, the engine, and what programs are built with against it.
set(documents share/doc/vornelix)
install(FILES ${CMAKE_SOURCE_DIR}/README.md ${CMAKE_SOURCE_DIR}/CHANGELOG.md
              ${CMAKE_SOURCE_DIR}/SECURITY.md ${CMAKE_SOURCE_DIR}/LICENSE
  DESTINATION ${documents} COMPONENT plugin)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/examples DESTINATION ${documents} COMPONENT plugin)
# The manual, once `./docs` has made it: one for all systems.
install(DIRECTORY ${CMAKE_SOURCE_DIR}/build/docs/html DESTINATION ${documents} COMPONENT plugin OPTIONAL)

set(CPACK_PACKAGE_NAME vornelix)
set(CPACK_PACKAGE_VENDOR Vornelix)
set(CPACK_PACKAGE_CONTACT "The maintainers of Vornelix <maintainers@vornelix.invalid>")
set(CPACK_RESOURCE_FILE_LICENSE ${CMAKE_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
string(TOLOWER ${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR} system)
set(CPACK_PACKAGE_FILE_NAME vornelix-${PROJECT_VERSION}-${system})
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_GENERATOR TGZ DEB)

# Whoever passes on what is linked in passes on its licence.
file(READ ${CMAKE_SOURCE_DIR}/cmake/copyright copyright)
set(linked_in libpugixml-dev libutf8proc-dev libxxhash-dev libcli11-dev libisal-dev)
if(WIN32)
  list(APPEND linked_in libz-mingw-w64-dev mingw-w64-x86-64-dev g++-mingw-w64-x86-64-posix)
else()
  list(APPEND linked_in libssl-dev)
endif()
foreach(package IN LISTS linked_in)
  set(terms /usr/share/doc/${package}/copyright)
  if(EXISTS ${terms})
    file(READ ${terms} text)
    string(APPEND copyright "\n\n---- ${package} ----\n\n${text}")
  endif()
endforeach()
file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/copyright CONTENT "@copyright@" @ONLY)

# Debian has ISA-L: only the archive brings it along.
set(CPACK_COMPONENTS_ALL plugin engine development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)

function(debian_package component name section summary description)
  install(FILES ${CMAKE_BINARY_DIR}/copyright DESTINATION share/doc/${name} COMPONENT ${component})
  string(TOUPPER ${component} key)
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_DESCRIPTION "${summary}\n${description}" PARENT_SCOPE)
endfunction()

debian_package(plugin vornelix database "spreadsheet workbooks in FileMaker calculations"
"A plug-in whose functions make, read and change .xls and .xlsx workbooks, its
manual, and xlcalc, which evaluates calculations with it in a terminal.
.
The host finds the plug-in once /usr/lib/vornelix is copied into the folder
of its extensions.")
debian_package(engine libvornelix-engine${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR} libs
  "spreadsheet engine, shared library"
"Reads, makes and changes .xls and .xlsx workbooks.")
debian_package(development libvornelix-engine-dev libdevel
  "spreadsheet engine, for building programs"
"The header of the engine, its archive, and what tells CMake and pkg-config
where they are.")
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS engine)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
  "libpugixml-dev, libutf8proc-dev, libssl-dev, libisal-dev, zlib1g-dev")
# Packages of programs that link the shared library find what to depend on.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

# For Windows the plug-in alone, in an archive.
if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_COMPONENTS_ALL plugin)
  set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
  set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
  set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
endif()
include(CPack)
