# Installs the library, its headers, the CMake package and the pkg-config file.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/NorvekMath)

install(TARGETS norvek_math EXPORT NorvekMathTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT NorvekMathTargets NAMESPACE Norvek:: DESTINATION ${package_dir})

configure_package_config_file(
    ${PROJECT_SOURCE_DIR}/cmake/NorvekMathConfig.cmake.in
    ${PROJECT_BINARY_DIR}/NorvekMathConfig.cmake
    INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/NorvekMathConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/NorvekMathConfig.cmake
    ${PROJECT_BINARY_DIR}/NorvekMathConfigVersion.cmake
    DESTINATION ${package_dir})

if(BUILD_SHARED_LIBS)
    set(pkgconfig_cflags "")
    set(pkgconfig_libs "")
else()
    set(pkgconfig_cflags " -DNORVEK_MATH_STATIC")
    set(pkgconfig_libs " -lstdc++ -lm")
endif()
# The prefix, seen from the folder of the pkg-config file, so that an installed tree can be moved.
file(RELATIVE_PATH pkgconfig_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(
    ${PROJECT_SOURCE_DIR}/cmake/norvek_math.pc.in ${PROJECT_BINARY_DIR}/norvek_math.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/norvek_math.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
