# How every folder of the project is built: one call per folder, with explicit lists.
#
#   vxr_add_subsystem(geometry
#       HEADERS VXRGeometry.h ...        installed
#       PRIVATE_HEADERS PathFlattener.h  seen inside the library only
#       SOURCES VXRGeometry.cpp ...)
#
# Each subsystem is an object library; together they make libvxr.so, and the tests link the same
# objects so that hidden symbols can be reached.

find_package(PkgConfig REQUIRED)
pkg_check_modules(CAIRO REQUIRED IMPORTED_TARGET cairo>=1.16)
pkg_check_modules(PIXMAN REQUIRED IMPORTED_TARGET pixman-1)
pkg_check_modules(LCMS REQUIRED IMPORTED_TARGET lcms2)
pkg_check_modules(PNG REQUIRED IMPORTED_TARGET libpng)
pkg_check_modules(CLIPPER REQUIRED IMPORTED_TARGET polyclipping)
find_package(fmt REQUIRED)

set(VXR_BACKENDS PkgConfig::CAIRO PkgConfig::PIXMAN PkgConfig::LCMS PkgConfig::PNG PkgConfig::CLIPPER fmt::fmt)

# Sources include <vxr/FOLDER/File.h> whether vxr is being built or is installed.
set(VXR_INCLUDE_ROOT "${PROJECT_BINARY_DIR}/include")
file(MAKE_DIRECTORY "${VXR_INCLUDE_ROOT}")
file(CREATE_LINK "${PROJECT_SOURCE_DIR}/src" "${VXR_INCLUDE_ROOT}/vxr" SYMBOLIC)

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

function(vxr_add_subsystem name)
  cmake_parse_arguments(ARG "" "" "HEADERS;PRIVATE_HEADERS;SOURCES" ${ARGN})
  vxr_check_lists(${ARG_HEADERS} ${ARG_PRIVATE_HEADERS} ${ARG_SOURCES})
  set(target vxr_${name})
  add_library(${target} OBJECT ${ARG_SOURCES} ${ARG_HEADERS} ${ARG_PRIVATE_HEADERS})
  vxr_compile_options(${target})
  target_compile_definitions(${target} PRIVATE VXR_BUILDING)
  target_include_directories(${target} PUBLIC "${VXR_INCLUDE_ROOT}")
  target_link_libraries(${target} PRIVATE ${VXR_BACKENDS})
  set_property(GLOBAL APPEND PROPERTY VXR_SUBSYSTEMS ${target})
  file(RELATIVE_PATH folder "${PROJECT_SOURCE_DIR}/src" "${CMAKE_CURRENT_SOURCE_DIR}")
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
