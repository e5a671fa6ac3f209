# `cmake --install build --prefix P`: the libraries into P/lib (GNUInstallDirs),
# the programs into P/bin, and for programs that link against the link library a
# pkg-config file and a CMake package (vorn_lapack_link::vorn_lapack_link).
# Everything finds its neighbours by RUNPATH: the link library and the GPU library
# carry $ORIGIN, and vorn-run finds the libraries from its own place.
include(CMakePackageConfigHelpers)

install(TARGETS vorn_lapack_link vorn_lapack_gfortran lapackcpu lapackcpu_hooks LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(TARGET vorn_lapack_cblas)
  install(TARGETS vorn_lapack_cblas LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()

# The GPU library, libvorn_lapack.so beside the link library: the CUDA one where
# it was built, else the emulator, which says so when it is installed.
if(VORN_INSTALL_CUDA)
  # Keeps the CUDA libraries' folder in its RUNPATH where the loader would not look.
  set_target_properties(vorn_cuda PROPERTIES INSTALL_RPATH_USE_LINK_PATH ON)
  install(TARGETS vorn_cuda LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
else()
  install(TARGETS vorn_emulator LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(CODE [[message(STATUS "The GPU library installed is the emulator: it computes on the CPU (the CUDA library was not built)")]])
endif()

# pkg-config: relocatable, the prefix taken from the .pc file's own place.
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH pkgconfig_to_prefix /${pkgconfig_dir} /)
string(REGEX REPLACE "/$" "" pkgconfig_to_prefix "${pkgconfig_to_prefix}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/vorn_lapack_link.pc.in ${CMAKE_BINARY_DIR}/vorn_lapack_link.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/vorn_lapack_link.pc DESTINATION ${pkgconfig_dir})

# The CMake package. The link library's target links the GPU library privately,
# which an exported target set would have to carry along; the package instead
# declares the one imported library itself.
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vorn_lapack_link)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/vorn_lapack_link-config.cmake.in
  ${CMAKE_BINARY_DIR}/vorn_lapack_link-config.cmake INSTALL_DESTINATION ${package_dir} PATH_VARS CMAKE_INSTALL_LIBDIR)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/vorn_lapack_link-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/vorn_lapack_link-config.cmake ${CMAKE_BINARY_DIR}/vorn_lapack_link-config-version.cmake
  DESTINATION ${package_dir})
