# shellcheck shell=bash
# Installs what is missing of tools/packages-*.txt, and says what and why. Needs say.sh.
root=${root:?the folder of the repository}

# packages_of LIST GROUP...: the packages of these groups, as "name reason" lines.
packages_of() {
  local list=$1
  shift
  awk -v groups=" $* " '!/^#/ && NF >= 3 && index(groups, " " $2 " ") {
    name = $1; $1 = ""; $2 = ""; sub(/^ +/, ""); print name " " $0 }' "$list"
}

# missing_of: those of the "name reason" lines on standard input whose package is not installed.
missing_of() {
  local wanted installed
  wanted=$(cat)
  installed=$(installed_packages)
  awk 'NR == FNR { have[$1] = 1; next } !($1 in have)' <(printf '%s\n' "$installed") <(printf '%s\n' "$wanted")
}

installed_packages() {
  if [ "$package_system" = apt ]; then
    dpkg-query -W -f '${db:Status-Status} ${Package}\n' | awk '$1 == "installed" { print $2 }'
  else
    brew list --formula -1
  fi
}

# as_root COMMAND...: runs it with the rights to install packages.
as_root() {
  if [ "$(id -u)" = 0 ]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    return 127
  fi
}

apt_get() {
  as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -o Dpkg::Use-Pty=0 -o DPkg::Lock::Timeout=300 "$@" </dev/null
}

# apt_install NAME...: installs, after refreshing the package lists when there are none or they are too old to serve.
apt_install() {
  local log=$1
  shift
  if compgen -G '/var/lib/apt/lists/*_Packages*' >/dev/null; then
    apt_get install -y --no-install-recommends "$@" >"$log" 2>&1 && return
    say "The package lists of this machine are out of date; refreshing them (apt-get update)."
  else
    say "This machine has no package lists yet; fetching them (apt-get update)."
  fi
  apt_get update >"$log" 2>&1
  apt_get install -y --no-install-recommends "$@" >>"$log" 2>&1
}

install_packages() {
  local log
  log=$(mktemp "${TMPDIR:-/tmp}/kelva-packages.XXXXXX")
  if [ "$package_system" = apt ]; then
    if [ "$(id -u)" != 0 ] && ! command -v sudo >/dev/null; then
      die 1 "installing packages needs root, and sudo is not here; run as root: apt-get install $*"
    fi
    apt_install "$log" "$@" || die 1 "apt-get could not install them ($(last_complaint "$log")); check the network and the package sources, then run this again. The whole log is $log."
  else
    brew install "$@" >"$log" 2>&1 ||
      die 1 "brew could not install them ($(last_complaint "$log")); check the network, then run this again. The whole log is $log."
  fi
  rm -f "$log"
}

# last_complaint LOG: the line of a package manager's log that says best what went wrong; an unreachable server first.
last_complaint() {
  local pattern
  for pattern in 'Temporary failure|Could not (resolve|connect)|Connection (failed|refused|timed out)' '^(E:|Err|Error)' '.'; do
    if grep -E "$pattern" "$1" | tail -n 1 | sed 's/^ *//' | grep .; then
      return
    fi
  done
}

# need_packages GROUP...: makes sure that the packages of these groups are installed.
need_packages() {
  local list lines names
  find_package_system
  [ "$package_system" != none ] || return 0
  list="$root/tools/packages-debian.txt"
  [ "$package_system" = apt ] || list="$root/tools/packages-homebrew.txt"
  lines=$(packages_of "$list" "$@" | missing_of)
  [ -n "$lines" ] || return 0
  say "Installing what this machine does not have yet:"
  printf '%s\n' "$lines" | awk '{ name = $1; $1 = ""; printf "  %-22s %s\n", name, $0 }'
  read -r -a names <<<"$(printf '%s\n' "$lines" | cut -d' ' -f1 | tr '\n' ' ')"
  install_packages "${names[@]}"
}

# Sets package_system to apt, brew or none.
find_package_system() {
  if command -v apt-get >/dev/null && command -v dpkg-query >/dev/null; then
    package_system=apt
  elif command -v brew >/dev/null; then
    package_system=brew
  elif [ "$(uname -s)" = Darwin ]; then
    die 1 "Homebrew is missing, and it is what installs cmake, ninja and boost here; install it from https://brew.sh and run this again."
  else
    package_system=none
    say "This system has neither apt-get nor Homebrew: the packages of tools/packages-debian.txt are taken as installed."
  fi
}
