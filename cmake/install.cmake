# cmake --install: libraries, headers, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

set(zel_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zel_cc)
set(zel_pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(TARGETS zel_cc_shared zel_cc_static EXPORT zel_cc
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
# The digest of the installed file, which may have been stripped.
cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_LIBDIR BASE_DIRECTORY "\${CMAKE_INSTALL_PREFIX}"
           OUTPUT_VARIABLE zel_installed_libdir)
install(CODE "
  set(zel_library \"${zel_installed_libdir}/$<TARGET_FILE_NAME:zel_cc_shared>\")
  message(STATUS \"Installing: \$ENV{DESTDIR}\${zel_library}.hmac\")
  execute_process(COMMAND \"$<TARGET_FILE:zel_stamp>\" \"\$ENV{DESTDIR}\${zel_library}\"
                  COMMAND_ERROR_IS_FATAL ANY)
  list(APPEND CMAKE_INSTALL_MANIFEST_FILES \"\${zel_library}.hmac\")")
install(FILES include/zel_cc.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/zel_cc DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")

# rand() and srand() over the kernel's generator, for every program that generates keys: the object
# to link, and its source.
add_library(zel_strong_rand OBJECT tools/zel/strong_rand.c)
set_target_properties(zel_strong_rand PROPERTIES POSITION_INDEPENDENT_CODE ON)
target_include_directories(zel_strong_rand PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/tools/zel)
set(zel_object_dir ${CMAKE_INSTALL_LIBDIR}/zel_cc)
install(FILES $<TARGET_OBJECTS:zel_strong_rand> DESTINATION ${zel_object_dir} RENAME strong_rand.o)
install(FILES tools/zel/strong_rand.c tools/zel/strong_rand.h
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zel_cc)

install(EXPORT zel_cc NAMESPACE zel_cc:: FILE zel_cc-targets.cmake DESTINATION ${zel_cmake_dir})
configure_package_config_file(cmake/zel_cc-config.cmake.in zel_cc-config.cmake
                              INSTALL_DESTINATION ${zel_cmake_dir}
                              PATH_VARS zel_object_dir CMAKE_INSTALL_DATADIR)
write_basic_package_version_file(zel_cc-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zel_cc-config.cmake
              ${PROJECT_BINARY_DIR}/zel_cc-config-version.cmake DESTINATION ${zel_cmake_dir})

# The .pc file finds the prefix from its own place, so that an installed tree can be moved.
cmake_path(IS_ABSOLUTE CMAKE_INSTALL_LIBDIR libdir_is_absolute)
if(libdir_is_absolute)
  set(zel_pc_prefix ${CMAKE_INSTALL_PREFIX})
  set(zel_pc_libdir ${CMAKE_INSTALL_LIBDIR})
else()
  file(RELATIVE_PATH up /${zel_pkgconfig_dir} /)
  string(REGEX REPLACE "/$" "" up ${up})
  set(zel_pc_prefix "\${pcfiledir}/${up}")
  set(zel_pc_libdir "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
endif()
cmake_path(IS_ABSOLUTE CMAKE_INSTALL_INCLUDEDIR includedir_is_absolute)
if(includedir_is_absolute)
  set(zel_pc_includedir ${CMAKE_INSTALL_INCLUDEDIR})
else()
  set(zel_pc_includedir "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
configure_file(cmake/zel_cc.pc.in zel_cc.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zel_cc.pc DESTINATION ${zel_pkgconfig_dir})
