# Build helpers: compiler options live here and nowhere else.

set(ZV_ROOT ${CMAKE_CURRENT_LIST_DIR}/..)

function(zv_options target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Werror)
  # g++ 12 at -O2 reports a false -Wrestrict inside std::string when a literal
  # is prepended to a string (GCC bug 105651, fixed in 13); keep it a warning.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(${target} PRIVATE -Wno-error=restrict)
  endif()
  if(ZV_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=address,undefined
                           -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=address,undefined)
  endif()
endfunction()

# A subsystem of the module: an object library compiled with hidden
# visibility, later linked whole into libzvkeel4.so.
#   zv_module_library(stats SOURCES a.cpp b.cpp)
function(zv_module_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES" ${ARGN})
  add_library(zv_${name} OBJECT ${ARG_SOURCES})
  zv_options(zv_${name})
  set_target_properties(zv_${name} PROPERTIES CXX_VISIBILITY_PRESET hidden
                        VISIBILITY_INLINES_HIDDEN ON)
  # The platform's headers are named directly so that a subsystem compiles
  # before the stand-in libraries are built.
  target_include_directories(zv_${name} PUBLIC ${ZV_ROOT}/src
    ${ZV_ROOT}/platform/win/include ${ZV_ROOT}/platform/grid/include
    ${ZV_ROOT}/platform/chart/include ${ZV_ROOT}/platform/counsel/include)
  target_link_libraries(zv_${name} PUBLIC zvwin zvgrid zvchart zvcounsel)
  set_property(GLOBAL APPEND PROPERTY ZV_MODULE_PARTS zv_${name})
endfunction()

# A stand-in for a library of the platform: a shared library of its own.
#   zv_platform_library(zvgrid SOURCES ... LIBS ...)
function(zv_platform_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_library(${name} SHARED ${ARG_SOURCES})
  zv_options(${name})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/include)
  target_link_libraries(${name} PUBLIC ${ARG_LIBS})
endfunction()

# A GoogleTest program; each test case becomes a CTest test.
#   zv_test(special_functions_test SOURCES x_test.cpp LIBS zvkeel4_static)
function(zv_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  zv_options(${name})
  target_include_directories(${name} PRIVATE ${ZV_ROOT}/tests)
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gtest GTest::gtest_main GTest::gmock)
  target_compile_definitions(${name} PRIVATE
    ZV_RESOURCE_DIR="${ZV_RESOURCE_DIR}" ZV_DATA_DIR="${ZV_DATA_DIR}"
    ZV_TEST_DATA_DIR="${ZV_ROOT}/tests/data" ZV_BIN_DIR="${CMAKE_BINARY_DIR}/bin")
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST
    PROPERTIES ENVIRONMENT "ZIVARA_RESOURCES=${ZV_RESOURCE_DIR}")
endfunction()

# A Google Benchmark program.
function(zv_bench name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  zv_options(${name})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} benchmark::benchmark benchmark::benchmark_main)
  target_compile_definitions(${name} PRIVATE ZV_RESOURCE_DIR="${ZV_RESOURCE_DIR}"
                             ZV_DATA_DIR="${ZV_DATA_DIR}")
endfunction()

# Adds every listed folder that has a CMakeLists.txt, so that subsystems can
# arrive one at a time.
macro(zv_add_present)
  foreach(dir ${ARGN})
    if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${dir}/CMakeLists.txt)
      add_subdirectory(${dir})
    endif()
  endforeach()
endmacro()

# A subsystem folder whose sources are all its .cpp files.
function(zv_module_folder name)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(sources)
    zv_module_library(${name} SOURCES ${sources})
  endif()
endfunction()

# Every *_test.cpp of the folder becomes a test program linked with LIBS.
function(zv_test_folder)
  cmake_parse_arguments(ARG "" "" "LIBS" ${ARGN})
  file(GLOB tests CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*_test.cpp)
  file(GLOB helpers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*_support.cpp)
  foreach(src ${tests})
    get_filename_component(name ${src} NAME_WE)
    zv_test(${name} SOURCES ${src} ${helpers} LIBS ${ARG_LIBS})
  endforeach()
endfunction()
