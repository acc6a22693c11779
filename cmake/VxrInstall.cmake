# Installs the library so that find_package(vxr) and pkg-config find it. Headers are installed by their
# subsystems. The pkg-config file names its folders relative to itself: the tree can be moved.
include(CMakePackageConfigHelpers)

install(TARGETS vxr EXPORT vxrTargets LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")
set(VXR_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/vxr")
install(EXPORT vxrTargets NAMESPACE vxr:: DESTINATION "${VXR_CMAKE_DIR}")
configure_package_config_file(cmake/vxrConfig.cmake.in "${PROJECT_BINARY_DIR}/vxrConfig.cmake"
  INSTALL_DESTINATION "${VXR_CMAKE_DIR}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/vxrConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/vxrConfig.cmake" "${PROJECT_BINARY_DIR}/vxrConfigVersion.cmake"
  DESTINATION "${VXR_CMAKE_DIR}")

set(pc_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
file(RELATIVE_PATH VXR_PC_TO_PREFIX "/${pc_dir}" "/")
string(REGEX REPLACE "/$" "" VXR_PC_TO_PREFIX "${VXR_PC_TO_PREFIX}")
configure_file(cmake/vxr.pc.in "${PROJECT_BINARY_DIR}/vxr.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/vxr.pc" DESTINATION "${pc_dir}")

install(DIRECTORY "${PROJECT_SOURCE_DIR}/resources/strokes" DESTINATION "${CMAKE_INSTALL_DATADIR}/vxr"
  FILES_MATCHING PATTERN "*.stroke" PATTERN "*.png")
