# libkelva. In the tree each room is a library of its own, which the project's programs link; an embedding program sees
# one library, Kelva::kelva, and one folder of headers, <kelva/...>. (The target `kelva` is the command-line tool.)

set(kelva_rooms kelva_platform kelva_wifi kelva_usb_osx kelva_embed)
# What a program includes. The rooms' inner headers stay in the tree.
set(kelva_headers
  src/wifi/Camera.h src/wifi/CameraDirent.h src/wifi/CameraError.h src/wifi/DcfObj.h src/wifi/FileReader.h
  src/wifi/FileWriter.h src/wifi/Sha1obj.h src/wifi/Traced.h src/wifi/VscCdb.h src/wifi/VscRecords.h
  src/usb/osx/Listener.h src/usb/osx/OsxCameraError.h
  embed/CameraSource.h embed/EventLoop.h)
if(APPLE)
  list(APPEND kelva_headers src/usb/osx/OsxCamera.h)
  set(kelva_system_libraries "-framework IOKit" "-framework CoreFoundation")
elseif(KELVA_PLATFORM STREQUAL "portable")
  # In the place of the frameworks: a registry that nobody fills.
  list(APPEND kelva_rooms darwin_cf darwin_registry darwin_no_default)
else()
  # darwin_udev_default: who names no source gets the machine's cameras.
  list(APPEND kelva_rooms kelva_bus darwin_cf darwin_registry darwin_udev darwin_udev_default darwin_sg)
  list(APPEND kelva_headers embed/VirtualBus.h)
  set(kelva_system_libraries udev)
endif()

add_library(kelva_library)
add_library(Kelva::kelva ALIAS kelva_library)
foreach(room IN LISTS kelva_rooms)
  target_sources(kelva_library PRIVATE $<TARGET_OBJECTS:${room}>)
endforeach()
target_link_libraries(kelva_library PUBLIC Boost::headers PRIVATE ${kelva_system_libraries})
kelva_harden(kelva_library)
target_compile_features(kelva_library INTERFACE cxx_std_20)
target_include_directories(kelva_library INTERFACE
  $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
set_target_properties(kelva_library PROPERTIES
  OUTPUT_NAME kelva EXPORT_NAME kelva LINKER_LANGUAGE CXX
  VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})  # until 1.0 each 0.x is one of its own
if(BUILD_SHARED_LIBS AND NOT APPLE)
  set(kelva_exports "${PROJECT_SOURCE_DIR}/cmake/libkelva.map")
  set(kelva_interposed "${PROJECT_SOURCE_DIR}/cmake/libkelva.dynamic")
  target_link_options(kelva_library PRIVATE
    "LINKER:--version-script=${kelva_exports}" LINKER:-Bsymbolic "LINKER:--dynamic-list=${kelva_interposed}")
  set_target_properties(kelva_library PROPERTIES LINK_DEPENDS "${kelva_exports};${kelva_interposed}")
endif()

# The same include tree as the installed one, for programs that build this project as a part of theirs.
file(MAKE_DIRECTORY "${PROJECT_BINARY_DIR}/include/kelva")
foreach(header IN LISTS kelva_headers)
  cmake_path(GET header FILENAME name)
  file(CREATE_LINK "${PROJECT_SOURCE_DIR}/${header}" "${PROJECT_BINARY_DIR}/include/kelva/${name}" SYMBOLIC COPY_ON_ERROR)
endforeach()

# Virtual cameras for an application's tests: <kelva/VirtualBus.h>. Their code is in libkelva, so that a process has one
# registry of cameras. macOS has no virtual cameras and no such target.
if(NOT APPLE)
  add_library(kelva_vcam INTERFACE)
  add_library(Kelva::vcam ALIAS kelva_vcam)
  target_link_libraries(kelva_vcam INTERFACE kelva_library)
  set_target_properties(kelva_vcam PROPERTIES EXPORT_NAME vcam)
endif()
