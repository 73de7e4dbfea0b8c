# What `cmake --install` gives: the library with its headers, CMake package and pkg-config file, and the manual
# pages. The rooms install their own programs.
#
# Each file belongs to one component, for those who make packages: Library (the shared library), Development (headers,
# static library, CMake package, pkg-config file), Tool (kelva), VirtualCamera (kelva-vcam), Helper (the agent, its opener,
# and what starts it), DeviceRules (the udev rule) and Documentation (what none of the programs brings itself).
include(CMakePackageConfigHelpers)

set(kelva_rooms kelva_wifi kelva_usb_osx)
set(kelva_system_libraries "")
if(APPLE)
  list(APPEND kelva_system_libraries "-framework IOKit" "-framework CoreFoundation")
else()
  list(APPEND kelva_rooms darwin_cf darwin_registry darwin_virtual darwin_udev darwin_sg)
  list(APPEND kelva_system_libraries udev)
endif()

# In the tree each room is a target of its own; an embedding program sees one library.
# (The target `kelva` is the command-line tool.)
add_library(kelva_library)
foreach(room IN LISTS kelva_rooms)
  target_sources(kelva_library PRIVATE $<TARGET_OBJECTS:${room}>)
endforeach()
target_link_libraries(kelva_library PUBLIC Boost::headers PRIVATE ${kelva_system_libraries})
target_include_directories(kelva_library INTERFACE
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/kelva>)
if(NOT APPLE)
  target_include_directories(kelva_library INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/kelva/darwin>)
endif()
set_target_properties(kelva_library PROPERTIES
  OUTPUT_NAME kelva EXPORT_NAME kelva LINKER_LANGUAGE CXX
  VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
target_compile_features(kelva_library INTERFACE cxx_std_20)

install(TARGETS kelva_library EXPORT KelvaTargets
  ARCHIVE COMPONENT Development
  LIBRARY COMPONENT Library NAMELINK_COMPONENT Development)
install(EXPORT KelvaTargets NAMESPACE Kelva:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Kelva COMPONENT Development)

# Headers that an embedding program includes; the rooms' inner headers stay in the tree.
install(FILES
  src/wifi/Camera.h src/wifi/CameraDirent.h src/wifi/CameraError.h src/wifi/DcfObj.h src/wifi/Sha1obj.h
  src/wifi/VscCdb.h src/wifi/VscRecords.h src/usb/osx/OsxCamera.h src/usb/osx/OsxCameraError.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kelva COMPONENT Development)
if(NOT APPLE)
  install(DIRECTORY darwin/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kelva/darwin COMPONENT Development
    FILES_MATCHING PATTERN "*.h")
  # Where cameras come from is the embedding program's choice as well.
  install(FILES darwin/registry/Registry.h darwin/registry/CameraEntries.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kelva/darwin/registry COMPONENT Development)
  install(FILES darwin/cf/EventLoop.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kelva/darwin/cf COMPONENT Development)
  install(FILES darwin/udev/UdevSource.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kelva/darwin/udev COMPONENT Development)
  install(FILES darwin/virtual/VirtualRegistry.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kelva/darwin/virtual COMPONENT Development)
endif()

configure_package_config_file(cmake/KelvaConfig.cmake.in "${CMAKE_CURRENT_BINARY_DIR}/KelvaConfig.cmake"
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Kelva)
write_basic_package_version_file("${CMAKE_CURRENT_BINARY_DIR}/KelvaConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/KelvaConfig.cmake" "${CMAKE_CURRENT_BINARY_DIR}/KelvaConfigVersion.cmake"
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Kelva COMPONENT Development)

# pkg-config finds its folders from where the file itself lies, so the installed tree may be moved.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig"
  OUTPUT_VARIABLE kelva_prefix_from_pkgconfig)
set(kelva_pc_libraries "")
foreach(library IN LISTS kelva_system_libraries)
  string(REGEX REPLACE "^([^-].*)$" "-l\\1" flag "${library}")
  string(APPEND kelva_pc_libraries " ${flag}")
endforeach()
configure_file(cmake/kelva.pc.in "${CMAKE_CURRENT_BINARY_DIR}/kelva.pc" @ONLY)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/kelva.pc" DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT Development)

if(APPLE OR NOT KELVA_BUILD_PROGRAMS)
  return()  # the pages are those of the Linux agent
endif()
file(GLOB kelva_manuals CONFIGURE_DEPENDS docs/man/*.1 docs/man/*.8)
foreach(page IN LISTS kelva_manuals)
  cmake_path(GET page EXTENSION LAST_ONLY section)
  string(SUBSTRING "${section}" 1 -1 section)
  install(FILES "${page}" DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section} COMPONENT Helper)
endforeach()
