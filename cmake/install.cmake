# What `cmake --install` puts where: both libraries with their headers, the command, and what a build that uses the
# libraries finds them by: fikleipa::fikleipa and fikleipa::pxutil for CMake, fikleipa.pc and pxutil.pc for pkg-config.
include(CMakePackageConfigHelpers)

# The names are the same whether the package was installed or is a folder of a larger build.
add_library(fikleipa::fikleipa ALIAS fikleipa)
add_library(fikleipa::pxutil ALIAS pxutil)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/fikleipa)

# Everything finds its library relative to itself, so that an installed tree works from wherever it lies. A host still
# puts its own libpxutil first by LD_LIBRARY_PATH or LD_PRELOAD. The build tree has the same path, to which CMake would
# otherwise add an empty element: the current folder.
set_target_properties(fikleipa PROPERTIES INSTALL_RPATH "$ORIGIN" BUILD_WITH_INSTALL_RPATH ON)
if(TARGET fikleipa_tool)
    file(RELATIVE_PATH bin_to_lib ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set(paths "$ORIGIN/${bin_to_lib}" "$ORIGIN/../lib") # where it is installed, and where it is built
    list(REMOVE_DUPLICATES paths)
    set_target_properties(fikleipa_tool PROPERTIES INSTALL_RPATH "${paths}" BUILD_WITH_INSTALL_RPATH ON)
    install(TARGETS fikleipa_tool)
endif()

install(TARGETS fikleipa pxutil EXPORT fikleipa)
install(FILES include/fikleipa.h include/fikleipa_from_rgb.h pxutil/pxutil.h TYPE INCLUDE)

install(EXPORT fikleipa NAMESPACE fikleipa:: FILE fikleipa-targets.cmake DESTINATION ${package_dir})
configure_package_config_file(cmake/fikleipa-config.cmake.in fikleipa-config.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(fikleipa-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/fikleipa-config.cmake ${PROJECT_BINARY_DIR}/fikleipa-config-version.cmake
    DESTINATION ${package_dir})

file(RELATIVE_PATH pkgconfig_to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" pkgconfig_to_prefix ${pkgconfig_to_prefix})
configure_file(cmake/fikleipa.pc.in fikleipa.pc @ONLY)
configure_file(cmake/pxutil.pc.in pxutil.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/fikleipa.pc ${PROJECT_BINARY_DIR}/pxutil.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
