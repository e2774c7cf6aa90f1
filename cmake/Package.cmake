# krender_package(library): installs a library with its headers, its CMake package and its pkg-config file.
include(CMakePackageConfigHelpers)

# The folders of the pkg-config files: relative to where the files stand, unless they were configured as absolute.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
           OUTPUT_VARIABLE prefix_from_pc)
set(pc_libdir "\${prefix}")
set(pc_includedir "\${prefix}")
cmake_path(APPEND pc_libdir ${CMAKE_INSTALL_LIBDIR})
cmake_path(APPEND pc_includedir ${CMAKE_INSTALL_INCLUDEDIR})

function(krender_package library)
  set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/${library})
  configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/${library}Config.cmake.in
                                ${PROJECT_BINARY_DIR}/${library}Config.cmake INSTALL_DESTINATION ${package_dir})
  write_basic_package_version_file(${PROJECT_BINARY_DIR}/${library}ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${library}.pc.in ${PROJECT_BINARY_DIR}/${library}.pc @ONLY)

  install(TARGETS ${library} EXPORT ${library}Targets FILE_SET HEADERS)
  install(EXPORT ${library}Targets NAMESPACE krender:: DESTINATION ${package_dir})
  install(FILES ${PROJECT_BINARY_DIR}/${library}Config.cmake ${PROJECT_BINARY_DIR}/${library}ConfigVersion.cmake
          DESTINATION ${package_dir})
  install(FILES ${PROJECT_BINARY_DIR}/${library}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()
