# Makes CMake take a Linux machine for a Mac, as far as it can without one: the project is configured, and nothing is linked.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 20.0.0)
if(CMAKE_OSX_ARCHITECTURES)
  # There is no SDK to ask which processors it knows.
  list(TRANSFORM CMAKE_OSX_ARCHITECTURES REPLACE ".+" "/" OUTPUT_VARIABLE CMAKE_APPLE_ARCH_SYSROOTS)
endif()
# The libraries of this machine stand in for Homebrew's.
set(CMAKE_LIBRARY_ARCHITECTURE "${CMAKE_HOST_SYSTEM_PROCESSOR}-linux-gnu")
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
foreach(language IN ITEMS CXX OBJCXX)
  set(CMAKE_${language}_COMPILER_WORKS TRUE)
endforeach()
set(Qt6_DIR "${CMAKE_CURRENT_LIST_DIR}/stand_in/Qt6")
# Tools of that system's linker; only their names are needed.
set(CMAKE_INSTALL_NAME_TOOL "/bin/true")
set(CMAKE_LIBTOOL "/bin/true")
