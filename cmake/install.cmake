# cmake --install: libraries, headers, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS zel_cc_shared zel_cc_static EXPORT zel_cc
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES include/zel_cc.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/zel_cc DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(EXPORT zel_cc NAMESPACE zel_cc:: FILE zel_cc-targets.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/zel_cc)
configure_package_config_file(cmake/zel_cc-config.cmake.in zel_cc-config.cmake
                              INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/zel_cc)
write_basic_package_version_file(zel_cc-config-version.cmake COMPATIBILITY SameMinorVersion)
configure_file(cmake/zel_cc.pc.in zel_cc.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zel_cc-config.cmake
              ${PROJECT_BINARY_DIR}/zel_cc-config-version.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/zel_cc)
install(FILES ${PROJECT_BINARY_DIR}/zel_cc.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
