# What `cmake --install` gives: the library with its headers, CMake package and pkg-config file, and the manual
# pages. The rooms install their own programs.
#
# Each file belongs to one component, for those who make packages: Library (the shared library), Development (headers,
# static library, CMake package, pkg-config file), Tool (kelva), Mount (kelva-mount), Desktop (the window and its workers),
# VirtualCamera (kelva-vcam), Helper (the agent, its opener, and what starts it), DeviceRules (the udev rule) and
# Documentation (what none of the programs brings itself).
include(CMakePackageConfigHelpers)

install(TARGETS kelva_library EXPORT KelvaTargets
  ARCHIVE COMPONENT Development
  LIBRARY COMPONENT Library NAMELINK_COMPONENT Development)
if(TARGET kelva_vcam)
  install(TARGETS kelva_vcam EXPORT KelvaTargets)
endif()
install(EXPORT KelvaTargets NAMESPACE Kelva:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Kelva COMPONENT Development)

foreach(header IN LISTS kelva_headers)
  install(FILES "${header}" DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kelva COMPONENT Development)
endforeach()

configure_package_config_file(cmake/KelvaConfig.cmake.in "${CMAKE_CURRENT_BINARY_DIR}/KelvaConfig.cmake"
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Kelva)
write_basic_package_version_file("${CMAKE_CURRENT_BINARY_DIR}/KelvaConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/KelvaConfig.cmake" "${CMAKE_CURRENT_BINARY_DIR}/KelvaConfigVersion.cmake"
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Kelva COMPONENT Development)

# pkg-config finds its folders from where the file itself lies, so that the installed tree may be moved; but below /usr,
# which nobody moves, by plain paths, which pkg-config then leaves out as the compiler's own. Which of the two is known at
# installation. What libkelva itself needs is private: a program that links libkelva.a asks with --static.
set(kelva_pc_requires "")
set(kelva_pc_libraries "")
if(APPLE)
  list(JOIN kelva_system_libraries " " kelva_pc_libraries)
else()
  set(kelva_pc_requires libudev)
endif()
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig"
  OUTPUT_VARIABLE kelva_prefix_from_pkgconfig)
set(kelva_pc_prefix "\${pcfiledir}/${kelva_prefix_from_pkgconfig}")
configure_file(cmake/kelva.pc.in "${CMAKE_CURRENT_BINARY_DIR}/pkgconfig/moved/kelva.pc" @ONLY)
set(kelva_pc_prefix /usr)
configure_file(cmake/kelva.pc.in "${CMAKE_CURRENT_BINARY_DIR}/pkgconfig/usr/kelva.pc" @ONLY)
install(CODE "
  set(place moved)
  if(CMAKE_INSTALL_PREFIX STREQUAL \"/usr\")
    set(place usr)
  endif()
  file(INSTALL \"${CMAKE_CURRENT_BINARY_DIR}/pkgconfig/\${place}/kelva.pc\"
    DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/pkgconfig\")" COMPONENT Development)

if(APPLE)
  return()  # the pages are those of the Linux agent and of the window there
endif()
file(GLOB kelva_manuals CONFIGURE_DEPENDS docs/man/*.1 docs/man/*.8)
foreach(page IN LISTS kelva_manuals)
  cmake_path(GET page EXTENSION LAST_ONLY section)
  string(SUBSTRING "${section}" 1 -1 section)
  if(page MATCHES "kelva-desktop" AND KELVA_BUILD_DESKTOP)
    install(FILES "${page}" DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section} COMPONENT Desktop)
  elseif(NOT page MATCHES "kelva-desktop" AND KELVA_BUILD_HELPER)
    install(FILES "${page}" DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section} COMPONENT Helper)
  endif()
endforeach()
