# Installs both libraries for find_package(nadir) and for pkg-config. Both find their prefix from where they lie, so that
# an installed tree can be moved.
include(CMakePackageConfigHelpers)

# Whoever links libnadirground alone need not know where libnadir lies: beside it.
set_target_properties(nadirground PROPERTIES INSTALL_RPATH "$ORIGIN")
install(TARGETS nadir nadirground EXPORT nadirTargets)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/nadir DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})

# Before 1.0 a new minor version may change the interface.
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/nadir)
install(EXPORT nadirTargets NAMESPACE nadir:: FILE nadirConfig.cmake DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/nadirConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/nadirConfigVersion.cmake DESTINATION ${package_dir})

set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH prefix_from_pkgconfig /prefix/${pkgconfig_dir} /prefix)
foreach(library IN ITEMS nadir nadirground)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${library}.pc.in ${PROJECT_BINARY_DIR}/${library}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${library}.pc DESTINATION ${pkgconfig_dir})
endforeach()
