# shellcheck shell=bash
# Debian's kernel package, fetched once and unpacked into a folder of the build; nothing of it is installed.

# fetch_kernel FOLDER: leaves FOLDER/tree/boot/vmlinuz-* and FOLDER/tree/lib/modules/*.
fetch_kernel() {
  local folder=$1
  if [ -e "$folder/tree/.complete" ]; then
    return
  fi
  mkdir -p "$folder"
  # Lists of packages that are older than the kernel name one that is no longer there.
  download_kernel "$folder" || { refresh_lists "$folder" && download_kernel "$folder"; } ||
    fail "apt could not download Debian's kernel package; its words are in $folder/fetch.log."
  rm -rf "$folder/tree"
  mkdir "$folder/tree"
  dpkg-deb -x "$folder"/linux-image-*.deb "$folder/tree"
  depmod -b "$folder/tree" "$(kernel_release "$folder")"
  touch "$folder/tree/.complete"
}

download_kernel() {
  local package
  package=$(apt-cache depends linux-image-amd64 | awk '/Depends:/ {print $2; exit}')
  [ -n "$package" ] || return 1
  note "fetching $package with apt"
  rm -f "$1"/linux-image-*.deb
  (cd "$1" && apt-get download -q "$package" >>fetch.log 2>&1)
}

refresh_lists() {
  note "the package lists of this machine are out of date; refreshing them (apt-get update)"
  local words=(apt-get update -q)
  [ "$(id -u)" = 0 ] || words=(sudo -n "${words[@]}")
  "${words[@]}" >>"$1/fetch.log" 2>&1
}

# kernel_release FOLDER: the release of the kernel that was fetched, such as 6.1.0-56-amd64.
kernel_release() {
  basename "$1"/tree/lib/modules/*
}
