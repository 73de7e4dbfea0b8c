# shellcheck shell=bash
# The small system that the kernel starts: a base that changes with the packages of the machine only, and on top of it
# the programs under test. The kernel unpacks both archives one after the other.

guest_modules=(vhci-hcd usb-storage sg sd_mod sr_mod scsi_debug ext4 fuse)
guest_tools=(/bin/udevadm /sbin/modprobe /bin/kmod /usr/bin/sg_dd /usr/bin/sg_inq /usr/bin/sg_raw /usr/bin/lsscsi
  /usr/sbin/usbip /usr/bin/setpriv /usr/bin/fusermount3 /usr/lib/x86_64-linux-gnu/glib-2.0/gio-launch-desktop)

# pack FOLDER ARCHIVE: a compressed archive as the kernel wants it.
pack() {
  (cd "$1" && find . -print0 | LC_ALL=C sort -z | cpio --null --create --format=newc --owner=0:0 --quiet | gzip -1) >"$2.new"
  mv "$2.new" "$2"
}

# copy_program ROOT PROGRAM [TARGET]: a program, without debug information, and the shared libraries that it needs.
copy_program() {
  local root=$1 program=$2 target=${3:-$2} library
  mkdir -p "$root/$(dirname "$target")"
  strip --strip-debug -o "$root/$target" "$program" 2>/dev/null || cp "$program" "$root/$target"
  chmod 755 "$root/$target"
  while IFS= read -r library; do
    [ -e "$root/$library" ] || install -D "$library" "$root/$library"
  done < <(ldd "$program" 2>/dev/null | grep -oE '/[^ ]+')
}

# copy_modules KERNEL ROOT: the modules above with all that they depend on.
copy_modules() {
  local kernel=$1 root=$2 release module path
  release=$(kernel_release "$kernel")
  for module in "${guest_modules[@]}"; do
    while read -r _ path _; do
      install -D -m 644 "$path" "$root/lib/modules/$release/${path#*/lib/modules/"$release"/}"
    done < <(modprobe -d "$kernel/tree" -S "$release" --show-depends "$module" | grep '^insmod ')
  done
  cp "$kernel/tree/lib/modules/$release"/modules.{order,builtin,builtin.modinfo} "$root/lib/modules/$release/"
  depmod -b "$root" "$release"
}

copy_busybox() {
  local root=$1 name
  install -D /bin/busybox "$root/bin/busybox"
  while IFS= read -r name; do
    [ -e "$root/$name" ] || { mkdir -p "$root/$(dirname "$name")" && ln -s /bin/busybox "$root/$name"; }
  done < <(/bin/busybox --list-full)
}

copy_udev() {
  local root=$1
  mkdir -p "$root/lib/systemd" "$root/lib/udev" "$root/etc/udev"
  ln -sf /bin/udevadm "$root/lib/systemd/systemd-udevd"
  cp -r /lib/udev/rules.d "$root/lib/udev/"
}

# The users and groups that udev's rules name, and the one person whose seat the permission tests look at.
write_accounts() {
  local root=$1
  printf '%s\n' root:x:0:0::/root:/bin/sh person:x:1000:1000::/tmp:/bin/sh nobody:x:65534:65534::/tmp:/bin/sh >"$root/etc/passwd"
  { getent group | awk -F: '$3 < 1000 {print $1 ":x:" $3 ":"}' && printf 'person:x:1000:\n'; } >"$root/etc/group"
  printf 'passwd: files\ngroup: files\n' >"$root/etc/nsswitch.conf"
}

# make_base KERNEL ARCHIVE: made anew when the kernel or a package that it copies from has changed.
make_base() {
  local kernel=$1 archive=$2 root=${2%.gz}.d tool stamp
  stamp=$(kernel_release "$kernel"; dpkg-query -W udev busybox-static sg3-utils lsscsi usbip fuse3 libc6; cat "${BASH_SOURCE[0]}")
  if [ -e "$archive" ] && [ "$(cat "$archive.stamp" 2>/dev/null)" = "$stamp" ]; then
    return
  fi
  rm -rf "$root"
  mkdir -p "$root"/{bin,sbin,usr,etc,dev,proc,sys,run,tmp,root,lib64}
  for tool in "${guest_tools[@]}"; do
    need_tool "$tool"
    copy_program "$root" "$tool"
  done
  mkdir -p "$root/usr/share/hwdata" && touch "$root/usr/share/hwdata/usb.ids" # usbip wants one, and takes an empty one
  copy_busybox "$root"
  copy_modules "$kernel" "$root"
  copy_udev "$root"
  write_accounts "$root"
  pack "$root" "$archive"
  rm -rf "$root"
  printf '%s' "$stamp" >"$archive.stamp"
}

# make_programs BUILD ARCHIVE: what is under test, and the cases. The window has no screen there, and brings libraries for minutes.
make_programs() {
  local build=$1 archive=$2 root=${2%.gz}.d program
  rm -rf "$root"
  mkdir -p "$root/kelva" "$root/lib/udev/rules.d"
  for program in "$build"/bin/* "$build"/kernel-bin/*; do
    case $program in */kelva-desktop*) continue ;; esac
    if [ -f "$program" ] && [ -x "$program" ]; then
      copy_program "$root" "$program" "kelva/$(basename "$program")"
    fi
  done
  cp "${BASH_SOURCE[0]%/*}"/guest/* "$root/kelva/"
  cp "${BASH_SOURCE[0]%/*}"/../../packaging/linux/70-kelva.rules "$root/kelva/"
  ln -s /kelva/init "$root/init"
  pack "$root" "$archive"
  rm -rf "$root"
}
