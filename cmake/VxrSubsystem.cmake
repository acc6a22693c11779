# How every folder of the project is built: one call per folder, with explicit lists.
#
#   vxr_add_subsystem(platform/graphics/path   the folder's path under src/vxr
#       USES platform/base ...           the folders that its files include, all of them on lower floors
#       BACKENDS CAIRO ...               the libraries whose headers they include
#       HEADERS Path.h ...               installed
#       PRIVATE_HEADERS PathFlattener.h  seen inside the library only
#       SOURCES Path.cpp ...)
#
# An include that the call does not list stops the build. Each folder is an object library; together they
# make libvxr.so, and the tests link the same objects so that hidden symbols can be reached.

find_package(PkgConfig REQUIRED)
pkg_check_modules(CAIRO REQUIRED IMPORTED_TARGET cairo>=1.16)
pkg_check_modules(PIXMAN REQUIRED IMPORTED_TARGET pixman-1)
pkg_check_modules(LCMS REQUIRED IMPORTED_TARGET lcms2)
pkg_check_modules(PNG REQUIRED IMPORTED_TARGET libpng)
pkg_check_modules(CLIPPER REQUIRED IMPORTED_TARGET polyclipping)
pkg_check_modules(XML REQUIRED IMPORTED_TARGET libxml-2.0)
find_package(fmt REQUIRED)

set(VXR_BACKENDS PkgConfig::CAIRO PkgConfig::PIXMAN PkgConfig::LCMS PkgConfig::PNG PkgConfig::CLIPPER PkgConfig::XML fmt::fmt)

# The path in an #include is the path in the tree and in the installed headers.
set(VXR_INCLUDE_ROOT "${PROJECT_SOURCE_DIR}/src")

# Language level, warnings and floating-point rules shared by every target of the project.
# Rounding steps are part of the library's contract: nothing may fuse or reorder them.
function(vxr_compile_options target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    POSITION_INDEPENDENT_CODE ON)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
    -ffp-contract=off $<$<BOOL:${VXR_WERROR}>:-Werror>)
endfunction()

# Stops the configuration when a source or header of this folder stands in no list.
function(vxr_check_lists)
  file(GLOB found RELATIVE "${CMAKE_CURRENT_SOURCE_DIR}" CONFIGURE_DEPENDS
    "${CMAKE_CURRENT_SOURCE_DIR}/*.h" "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp")
  foreach(file IN LISTS found)
    if(NOT file IN_LIST ARGN)
      message(FATAL_ERROR "${CMAKE_CURRENT_SOURCE_DIR}/${file} is in no list of its CMakeLists.txt")
    endif()
  endforeach()
endfunction()

# Fails the build when a file of the folder includes what the folder does not list.
function(vxr_check_floors target folder)
  cmake_parse_arguments(ARG "" "" "USES;BACKENDS;FILES" ${ARGN})
  set(stamp "${CMAKE_CURRENT_BINARY_DIR}/floors.stamp")
  set(script "${PROJECT_SOURCE_DIR}/cmake/CheckFloors.cmake")
  add_custom_command(OUTPUT "${stamp}"
    COMMAND "${CMAKE_COMMAND}" "-DROOT=${VXR_INCLUDE_ROOT}/vxr" "-DFOLDER=${folder}" "-DUSES=${ARG_USES}"
      "-DBACKENDS=${ARG_BACKENDS}" "-DFILES=${ARG_FILES}" "-DSTAMP=${stamp}" -P "${script}"
    DEPENDS ${ARG_FILES} "${script}" "${CMAKE_CURRENT_SOURCE_DIR}/CMakeLists.txt"
    COMMENT "" VERBATIM)
  add_custom_target(${target}_floors DEPENDS "${stamp}")
  add_dependencies(${target} ${target}_floors)
endfunction()

function(vxr_add_subsystem folder)
  cmake_parse_arguments(ARG "" "" "USES;BACKENDS;HEADERS;PRIVATE_HEADERS;SOURCES" ${ARGN})
  set(files ${ARG_HEADERS} ${ARG_PRIVATE_HEADERS} ${ARG_SOURCES})
  vxr_check_lists(${files})
  string(REPLACE "/" "_" target "vxr_${folder}")
  add_library(${target} OBJECT ${files})
  vxr_compile_options(${target})
  target_compile_definitions(${target} PRIVATE VXR_BUILDING)
  target_include_directories(${target} PUBLIC "${VXR_INCLUDE_ROOT}")
  vxr_check_floors(${target} ${folder} USES ${ARG_USES} BACKENDS ${ARG_BACKENDS} FILES ${files})
  # Object libraries of lower floors must exist by now: a circle stops the configuration.
  foreach(used IN LISTS ARG_USES)
    string(REPLACE "/" "_" lower "vxr_${used}")
    if(NOT TARGET ${lower})
      message(FATAL_ERROR "${folder} uses ${used}, which is not a lower floor")
    endif()
  endforeach()
  foreach(backend IN LISTS ARG_BACKENDS)
    target_link_libraries(${target} PRIVATE PkgConfig::${backend})
  endforeach()
  target_link_libraries(${target} PRIVATE fmt::fmt)
  set_property(GLOBAL APPEND PROPERTY VXR_SUBSYSTEMS ${target})
  install(FILES ${ARG_HEADERS} DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/vxr/${folder}")
endfunction()

# A test program per folder; every TEST in it is a CTest test of its own.
function(vxr_add_tests name)
  cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS" ${ARGN})
  vxr_check_lists(${ARG_SOURCES} ${ARG_HEADERS})
  set(target vxr_test_${name})
  add_executable(${target} ${ARG_SOURCES})
  vxr_compile_options(${target})
  target_include_directories(${target} PRIVATE "${PROJECT_SOURCE_DIR}")
  target_compile_definitions(${target} PRIVATE VXR_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
  target_link_libraries(${target} PRIVATE vxr_testing ${VXR_BACKENDS} GTest::gmock_main)
  gtest_discover_tests(${target} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 300)
endfunction()
