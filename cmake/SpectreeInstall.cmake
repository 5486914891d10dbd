# find_package(Spectree) gives Spectree::spectree; spectree.pc does the same for pkg-config.
include(CMakePackageConfigHelpers)
set(SPECTREE_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/Spectree")
install(TARGETS spectree EXPORT SpectreeTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT lib NAMELINK_COMPONENT dev)
install(EXPORT SpectreeTargets NAMESPACE Spectree:: DESTINATION "${SPECTREE_CMAKE_DIR}" COMPONENT dev)
configure_package_config_file(cmake/SpectreeConfig.cmake.in
    "${CMAKE_CURRENT_BINARY_DIR}/SpectreeConfig.cmake" INSTALL_DESTINATION "${SPECTREE_CMAKE_DIR}")
write_basic_package_version_file("${CMAKE_CURRENT_BINARY_DIR}/SpectreeConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/SpectreeConfig.cmake"
              "${CMAKE_CURRENT_BINARY_DIR}/SpectreeConfigVersion.cmake"
    DESTINATION "${SPECTREE_CMAKE_DIR}" COMPONENT dev)
# The .pc file finds its prefix from where it stands, so that an installed tree can be moved.
file(RELATIVE_PATH SPECTREE_PC_TO_PREFIX "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file(cmake/spectree.pc.in "${CMAKE_CURRENT_BINARY_DIR}/spectree.pc" @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/spectree.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT dev)
