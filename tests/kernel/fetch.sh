# shellcheck shell=bash
# Debian's kernel package, fetched once and unpacked into a folder of the build; nothing of it is installed.

# fetch_kernel FOLDER: leaves FOLDER/tree/boot/vmlinuz-* and FOLDER/tree/lib/modules/*.
fetch_kernel() {
  local folder=$1 package
  if [ -e "$folder/tree/.complete" ]; then
    return
  fi
  package=$(apt-cache depends linux-image-amd64 | awk '/Depends:/ {print $2; exit}')
  [ -n "$package" ] || fail "apt knows no kernel package (linux-image-amd64); run apt-get update and try again."
  mkdir -p "$folder"
  note "fetching $package with apt"
  (cd "$folder" && apt-get download -q "$package" >fetch.log 2>&1) ||
    fail "apt could not download $package; its words are in $folder/fetch.log."
  rm -rf "$folder/tree"
  mkdir "$folder/tree"
  dpkg-deb -x "$folder/$package"_*.deb "$folder/tree"
  depmod -b "$folder/tree" "$(kernel_release "$folder")"
  touch "$folder/tree/.complete"
}

# kernel_release FOLDER: the release of the kernel that was fetched, such as 6.1.0-56-amd64.
kernel_release() {
  basename "$1"/tree/lib/modules/*
}
