# Homebrew's Qt, as far as configuring and compiling go: the headers of this machine's, without its libraries, which ask for a
# Mac's frameworks. They are read as this system's, whose programs keep Qt's version in a section that a Mac's cannot have.
set(Qt6_VERSION 6.4.0)
foreach(component IN LISTS Qt6_FIND_COMPONENTS)
  if(NOT TARGET Qt6::${component})
    add_library(Qt6::${component} INTERFACE IMPORTED)
    target_compile_definitions(Qt6::${component} INTERFACE QT_NO_VERSION_TAGGING)
    set(headers "/usr/include/${CMAKE_LIBRARY_ARCHITECTURE}/qt6")
    target_include_directories(Qt6::${component} SYSTEM INTERFACE
      "${headers}" "${headers}/QtCore" "${headers}/QtGui" "${headers}/QtWidgets" "${headers}/Qt${component}")
    string(TOUPPER "QT_${component}_LIB" name)
    target_compile_definitions(Qt6::${component} INTERFACE QT_CORE_LIB QT_GUI_LIB ${name})
  endif()
endforeach()
set(Qt6_FOUND TRUE)
