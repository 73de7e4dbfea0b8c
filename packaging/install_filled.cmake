# Included by the scripts that run while installing, when the prefix is known: --prefix may have changed it since the
# project was configured.

# install_filled(TEMPLATE SCRATCH FOLDER): fills a template x.in with the variables of the moment, and installs it as
# FOLDER/x, below DESTDIR when that is set.
function(install_filled template scratch folder)
  cmake_path(GET template STEM LAST_ONLY name)
  # One build may be installed to several places at once.
  string(SHA1 place "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}")
  configure_file("${template}" "${scratch}/${place}/${name}" @ONLY)
  file(INSTALL DESTINATION "${folder}" TYPE FILE FILES "${scratch}/${place}/${name}")
  file(REMOVE_RECURSE "${scratch}/${place}")
  # Where file(INSTALL) notes what install_manifest.txt will list.
  set(CMAKE_INSTALL_MANIFEST_FILES "${CMAKE_INSTALL_MANIFEST_FILES}" PARENT_SCOPE)
endfunction()
