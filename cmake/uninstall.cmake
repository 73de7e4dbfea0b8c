# Removes what the last `cmake --install BUILD` put there, and the folders that this leaves empty. DESTDIR counts as it does
# while installing. Usage: cmake -DBUILD=FOLDER -P uninstall.cmake
cmake_minimum_required(VERSION 3.25)

file(GLOB manifests "${BUILD}/install_manifest*.txt")
if(NOT manifests)
  message(FATAL_ERROR "Nothing was installed from ${BUILD}: it has no install_manifest.txt. Name the folder that was built and installed.")
endif()

# Folders that a system or a person has anyway, also while they are empty; besides these, all that lie directly below /.
set(kept "$ENV{HOME}" /usr/local)
foreach(folder IN ITEMS bin etc include lib libexec man sbin share src share/man)
  list(APPEND kept "/usr/${folder}" "/usr/local/${folder}")
endforeach()

# remove_empty_folders(FILE): the folders of a removed file, from the inside out, as long as they are empty.
function(remove_empty_folders file)
  cmake_path(GET file PARENT_PATH folder)
  while(folder MATCHES "/.+/" AND NOT folder IN_LIST kept)
    file(GLOB content "$ENV{DESTDIR}${folder}/*" "$ENV{DESTDIR}${folder}/.*")
    if(content OR NOT IS_DIRECTORY "$ENV{DESTDIR}${folder}")
      return()
    endif()
    file(REMOVE_RECURSE "$ENV{DESTDIR}${folder}")
    cmake_path(GET folder PARENT_PATH folder)
  endwhile()
endfunction()

foreach(manifest IN LISTS manifests)
  file(STRINGS "${manifest}" installed)
  foreach(file IN LISTS installed)
    file(REMOVE "$ENV{DESTDIR}${file}")
    if(EXISTS "$ENV{DESTDIR}${file}" OR IS_SYMLINK "$ENV{DESTDIR}${file}")
      message(FATAL_ERROR "$ENV{DESTDIR}${file} could not be removed; repeat this with the rights of the installation (sudo).")
    endif()
    remove_empty_folders("${file}")
  endforeach()
  file(REMOVE "${manifest}")
endforeach()
