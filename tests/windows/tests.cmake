# The test programs of the Windows build, run under Wine (tools/test-windows.sh):
# every test that needs neither OpenBLAS nor the CPU adapter over it (those two
# exist on Linux only). Included from tests/CMakeLists.txt in place of the Linux
# list.

# googletest has no MinGW-w64 package: it is built from the sources that Debian's
# googletest package installs, with this build's compilers, as static libraries.
set(VORN_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "googletest's sources, built for the Windows tests")
if(NOT EXISTS ${VORN_GOOGLETEST_SOURCE}/CMakeLists.txt)
  message(FATAL_ERROR "no googletest sources in ${VORN_GOOGLETEST_SOURCE} (Debian: googletest)")
endif()
set(BUILD_SHARED_LIBS OFF)
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(gtest_disable_pthreads ON CACHE BOOL "googletest uses Windows' own threads" FORCE)
add_subdirectory(${VORN_GOOGLETEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
include(GoogleTest)

# The programs run under Wine; gtest_discover_tests lists their tests through it.
if(NOT CMAKE_CROSSCOMPILING_EMULATOR AND CMAKE_HOST_UNIX)
  find_program(VORN_WINE NAMES wine64 PATHS /usr/lib/wine NO_DEFAULT_PATH)
  find_program(VORN_WINE NAMES wine64 wine REQUIRED)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${VORN_WINE})
endif()

add_library(vorn_test_support STATIC support/test_support.cpp)
target_include_directories(vorn_test_support PUBLIC ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/tests/support
                           ${CMAKE_SOURCE_DIR}/backends/include)
target_link_libraries(vorn_test_support PUBLIC gmock gtest)

# What every test program of this build has: the exit status of a crash (see
# crash_exit.cpp), and no MinGW runtime DLLs to find at run time.
function(vorn_windows_test_program target)
  target_sources(${target} PRIVATE ${CMAKE_SOURCE_DIR}/tests/windows/crash_exit.cpp)
  target_link_options(${target} PRIVATE -static)
  gtest_discover_tests(${target} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 30)
endfunction()

# As on Linux: each test of a process test program is a ctest test and a process
# of its own; the tests of a unit test program share one.
function(vorn_add_process_tests target)
  add_executable(${target} ${ARGN} ${CMAKE_SOURCE_DIR}/tests/support/process_test_main.cpp)
  target_link_libraries(${target} PRIVATE vorn_test_support)
  vorn_windows_test_program(${target})
endfunction()

function(vorn_add_unit_tests target)
  add_executable(${target} ${ARGN})
  target_link_libraries(${target} PRIVATE vorn_test_support gtest_main)
  vorn_windows_test_program(${target})
endfunction()

# The loader finds a test's DLLs in the program's own folder: the ones built for
# the tests land there, the link library and the emulator's vorn_lapack.dll are
# copied there.
function(vorn_copy_beside target)
  foreach(library IN LISTS ARGN)
    add_custom_command(TARGET ${target} POST_BUILD
      COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_FILE:${library}> $<TARGET_FILE_DIR:${target}>)
  endforeach()
endfunction()

# A file of the build as the test programs name it: Wine shows the host's root
# folder as drive Z:.
function(vorn_windows_path variable path)
  set(${variable} "Z:${path}" PARENT_SCOPE)
endfunction()

# The route predicate and the reasons' words, over the two core files they need.
vorn_add_unit_tests(frame_route_predicate_tests frame/route_predicate_test.cpp
  ${CMAKE_SOURCE_DIR}/routing/issue_reason.cpp ${CMAKE_SOURCE_DIR}/core/link_state.cpp)

# The crossover table's names and defaults.
vorn_add_unit_tests(crossover_table_tests routing/crossover_table_test.cpp ${CMAKE_SOURCE_DIR}/routing/crossover_table.cpp)

# The routed frame over the link core, a fake GPU library defined in the test and
# the recording CPU library, linked so that the test reads its record. The test
# loads it by its bare name, as Windows programs name their DLLs: the loader gives
# back the module the program already holds.
add_library(recording_cpu SHARED frame/recording_cpu.cpp)
target_include_directories(recording_cpu PRIVATE ${CMAKE_SOURCE_DIR})
target_link_options(recording_cpu PRIVATE -static)
set_target_properties(recording_cpu PROPERTIES PREFIX "")
vorn_add_process_tests(frame_classes_tests frame/frame_classes_test.cpp
  $<TARGET_OBJECTS:vorn_link_core> $<TARGET_OBJECTS:vorn_platform>)
target_link_libraries(frame_classes_tests PRIVATE recording_cpu)
target_compile_definitions(frame_classes_tests PRIVATE RECORDING_CPU_PATH="$<TARGET_FILE_NAME:recording_cpu>")

# The default CPU library of the Windows tests, lapackcpu.dll, with one routine:
# spotrf. The link library and the emulator both find it without a setting.
add_library(spotrf_cpu SHARED windows/spotrf_cpu.cpp)
target_include_directories(spotrf_cpu PRIVATE ${CMAKE_SOURCE_DIR})
target_link_options(spotrf_cpu PRIVATE -static)
set_target_properties(spotrf_cpu PROPERTIES PREFIX "" OUTPUT_NAME lapackcpu)
vorn_windows_path(spotrf_cpu_path $<TARGET_FILE:spotrf_cpu>)

# The crossover list file through the link core and spotrf, over the emulator.
vorn_add_process_tests(crossover_list_tests routing/crossover_list_test.cpp
  ${CMAKE_SOURCE_DIR}/routines/routed/cholesky_triangular.cpp
  $<TARGET_OBJECTS:vorn_link_core> $<TARGET_OBJECTS:vorn_platform>)
target_link_libraries(crossover_list_tests PRIVATE vorn_emulator)
target_compile_definitions(crossover_list_tests PRIVATE VORN_TEST_LAPACKCPU="$<TARGET_FILE_NAME:spotrf_cpu>"
                           VORN_TEST_EMULATOR_CPU="$<TARGET_FILE_NAME:spotrf_cpu>")
add_dependencies(crossover_list_tests spotrf_cpu)
vorn_copy_beside(crossover_list_tests vorn_emulator)

# The link library as an application sees it: start-up, the log, the CPU library's
# binding and the control calls, over the
# emulator and lapackcpu.dll.
vorn_add_process_tests(link_startup_tests link/startup_test.cpp)
vorn_add_process_tests(link_cpu_binding_tests link/cpu_binding_test.cpp)
vorn_add_process_tests(link_control_calls_tests link/control_calls_test.cpp)
# The program that the start-up tests run to watch a process exit.
add_executable(link_exit_child link/exit_child.cpp)
target_link_libraries(link_exit_child PRIVATE vorn_lapack_link)
target_link_options(link_exit_child PRIVATE -static)
vorn_copy_beside(link_exit_child vorn_lapack_link vorn_emulator)
vorn_windows_path(exit_child_path $<TARGET_FILE:link_exit_child>)
foreach(target link_startup_tests link_cpu_binding_tests link_control_calls_tests)
  target_link_libraries(${target} PRIVATE vorn_lapack_link)
  add_dependencies(${target} spotrf_cpu link_exit_child)
  target_compile_definitions(${target} PRIVATE VORN_TEST_LAPACKCPU="${spotrf_cpu_path}"
                             VORN_TEST_EXIT_CHILD="${exit_child_path}")
  vorn_copy_beside(${target} vorn_lapack_link vorn_emulator)
endforeach()

# The export surface: the routine tables against the published prototypes, the
# loaded DLL's export table, the .def file, the four spellings and lsame, and
# every forwarded routine's words reaching a recording CPU library.
find_file(VORN_LAPACK_HEADER lapack.h PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
find_file(VORN_BLAS_HEADER cblas_f77.h PATHS /usr/include/x86_64-linux-gnu /usr/include
          NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
vorn_windows_path(lapack_header ${VORN_LAPACK_HEADER})
vorn_windows_path(blas_header ${VORN_BLAS_HEADER})
vorn_add_unit_tests(exports_word_counts_tests exports/word_counts_test.cpp)
target_compile_definitions(exports_word_counts_tests PRIVATE VORN_LAPACK_HEADER="${lapack_header}"
                           VORN_BLAS_HEADER="${blas_header}")

vorn_windows_path(def_file ${CMAKE_BINARY_DIR}/generated/vorn_lapack_link.def)
vorn_add_process_tests(exports_surface_tests exports/export_surface_test.cpp)
add_dependencies(exports_surface_tests vorn_lapack_link)
target_compile_definitions(exports_surface_tests PRIVATE
  VORN_TEST_LINK_LIBRARY="$<TARGET_FILE_NAME:vorn_lapack_link>" VORN_TEST_DEF_FILE="${def_file}")
vorn_copy_beside(exports_surface_tests vorn_lapack_link vorn_emulator)

add_library(recording_forwarded_cpu SHARED exports/recording_forwarded_cpu.cpp)
target_include_directories(recording_forwarded_cpu PRIVATE ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/backends/include)
target_link_options(recording_forwarded_cpu PRIVATE -static)
set_target_properties(recording_forwarded_cpu PROPERTIES PREFIX "")
vorn_add_process_tests(exports_forwarded_routines_tests exports/forwarded_routines_test.cpp)
add_dependencies(exports_forwarded_routines_tests vorn_lapack_link recording_forwarded_cpu)
target_compile_definitions(exports_forwarded_routines_tests PRIVATE
  VORN_TEST_LINK_LIBRARY="$<TARGET_FILE_NAME:vorn_lapack_link>"
  RECORDING_CPU_PATH="$<TARGET_FILE_NAME:recording_forwarded_cpu>")
vorn_copy_beside(exports_forwarded_routines_tests vorn_lapack_link vorn_emulator)
