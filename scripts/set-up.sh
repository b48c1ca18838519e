# shellcheck shell=bash disable=SC2034
# Sourced by run, test and other scripts: what a fresh Debian machine needs, and how a preset is configured and built.
# Every step that has nothing to do takes some milliseconds.

packages_to_build="g++ cmake ninja-build libcli11-dev libfmt-dev nlohmann-json3-dev libpugixml-dev libedit-dev pkg-config"
packages_to_test="libgtest-dev"
# Without these a build takes longer, or some tests, which are counted, are not run.
packages_for_comfort="ccache"
packages_for_more_tests="libsqlite3-dev mdbtools python3 nodejs"
packages_to_fuzz="clang libclang-rt-14-dev"
packages_for_style="clang-format clang-tidy"
packages_to_measure="libsqlite3-dev"
packages_for_windows="g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix mingw-w64-tools libwine-dev libgtest-dev python3"
packages_for_wine="wine wine64"

say() { printf '%s\n' "$*" >&2; }

# missing_packages NAME...: prints the names of those that are not installed.
missing_packages() {
  local installed
  installed=$(dpkg-query -W -f='${Package} ${db:Status-Status}\n' "$@" 2>/dev/null || true)
  local name
  for name in "$@"; do
    grep -qx "$name installed" <<<"$installed" || printf '%s\n' "$name"
  done
}

# install_packages NAME...: returns 1 where that is not possible.
install_packages() {
  local as_root=()
  if (($(id -u))); then
    if ! command -v sudo >/dev/null; then
      say "Only root can install packages, and there is no sudo."
      return 1
    fi
    as_root=(sudo)
  fi
  "${as_root[@]}" apt-get update -qq &&
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
      apt-get install -y -qq --no-install-recommends "$@" >/dev/null
}

# get_packages NAME...: installs those that are missing. Leaves in the array not_installed those that could not be
# installed and returns 1 then.
get_packages() {
  mapfile -t not_installed < <(missing_packages "$@")
  ((${#not_installed[@]})) || return 0
  say "Installing ${not_installed[*]}"
  install_packages "${not_installed[@]}"
}

# need_packages NAME...: the same for those without which nothing goes on.
need_packages() {
  get_packages "$@" && return
  say "These packages are needed and could not be installed: ${not_installed[*]}"
  say "With a network, as root: apt-get install ${not_installed[*]}"
  return 1
}

# want_packages WHAT NAME...: the same for those without which WHAT is left out.
want_packages() {
  local what=$1
  shift
  get_packages "$@" && return
  say "These packages could not be installed, therefore $what: ${not_installed[*]}"
  return 1
}

# would_like_packages WHAT NAME...: the same for those that nobody asked for: going on without them is no failure, and
# what could not be installed is not tried again within the hour, because that takes time, and sudo wants a password.
would_like_packages() {
  local what=$1 failed=build/.could-not-install
  shift
  if [[ -n $(find "$failed" -mmin -60 2>/dev/null) ]]; then
    mapfile -t not_installed < <(missing_packages "$@")
    ((${#not_installed[@]} == 0)) ||
      say "These packages could not be installed within the last hour, therefore $what: ${not_installed[*]}"
  elif ! want_packages "$what" "$@"; then
    mkdir -p build
    touch "$failed"
  fi
}

# build_preset PRESET TARGET...: configures the preset once and whenever presets or installed packages have changed,
# then builds; silent when everything is up to date.
build_preset() {
  local preset=$1
  shift
  local ninja_file=build/$preset/build.ninja
  if [[ ! -e $ninja_file || CMakePresets.json -nt $ninja_file || /var/lib/dpkg/status -nt $ninja_file ]]; then
    say "Configuring build/$preset"
    cmake --preset "$preset" >/dev/null
    touch "$ninja_file"
  fi
  if ! ninja -C "build/$preset" -n "$@" 2>/dev/null | grep -q 'no work to do'; then
    say "Building build/$preset"
    ninja -C "build/$preset" "$@" >&2
  fi
}
