# The engine for other projects: its libraries, its one header, and what tells CMake and pkg-config
# where they are. Nothing in these holds a path, so the whole may be moved.
include(CMakePackageConfigHelpers)

set_target_properties(engine_static PROPERTIES EXPORT_NAME engine-static)
foreach(library IN ITEMS engine engine_static)
  target_include_directories(${library} INTERFACE $<INSTALL_INTERFACE:include>)
  target_compile_features(${library} INTERFACE cxx_std_11)
endforeach()

install(TARGETS engine engine_static EXPORT vornelix-engine-targets
  RUNTIME DESTINATION bin COMPONENT engine
  LIBRARY DESTINATION lib COMPONENT engine NAMELINK_COMPONENT development
  ARCHIVE DESTINATION lib COMPONENT development)
install(FILES ${CMAKE_SOURCE_DIR}/platform/libxl/libxl.h
  DESTINATION include/vornelix COMPONENT development)

set(cmake_folder lib/cmake/vornelix-engine)
install(EXPORT vornelix-engine-targets NAMESPACE vornelix::
  DESTINATION ${cmake_folder} COMPONENT development)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/vornelix-engine-config-version.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES
  ${CMAKE_SOURCE_DIR}/cmake/vornelix-engine-config.cmake
  ${CMAKE_BINARY_DIR}/vornelix-engine-config-version.cmake
  DESTINATION ${cmake_folder} COMPONENT development)

# Two packages for pkg-config: asked for static libraries it would want everything static, and there
# is no such ISA-L.
function(install_pkg_config name libs)
  configure_file(${CMAKE_SOURCE_DIR}/cmake/vornelix-engine.pc.in ${CMAKE_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${CMAKE_BINARY_DIR}/${name}.pc DESTINATION lib/pkgconfig COMPONENT development)
endfunction()
list(TRANSFORM ENGINE_NEEDS PREPEND -l OUTPUT_VARIABLE needs)
list(JOIN needs " " needs)
install_pkg_config(vornelix-engine "-L\${libdir} -lvornelix-engine")
install_pkg_config(vornelix-engine-static "\${libdir}/libvornelix-engine.a ${needs}")
