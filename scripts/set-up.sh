# Sourced by run and test: what a fresh Debian machine needs, and how a preset is configured and built.
# Every step that has nothing to do is skipped in a few milliseconds.

packages_to_build="g++ cmake ninja-build ccache libcli11-dev libfmt-dev nlohmann-json3-dev libpugixml-dev libedit-dev pkg-config"
packages_to_test="libgtest-dev libgmock-dev librapidcheck-dev libsqlite3-dev mdbtools python3 nodejs"
packages_to_fuzz="clang libclang-rt-14-dev"
packages_to_measure="libbenchmark-dev libsqlite3-dev"
packages_for_windows="g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix mingw-w64-tools wine wine64 libwine-dev"

say() { printf '%s\n' "$*" >&2; }

# need_packages NAME...: installs those that are missing; remembers in build/ that they were there.
need_packages() {
  local stamp
  stamp="build/.packages-$(printf '%s' "$*" | cksum | cut -d' ' -f1)"
  [[ -e $stamp ]] && return
  local missing=()
  local name
  for name in "$@"; do
    dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null | grep -qx installed || missing+=("$name")
  done
  if ((${#missing[@]})); then
    say "Installing ${missing[*]}"
    local as_root=()
    [[ $(id -u) -eq 0 ]] || as_root=(sudo)
    if ! { "${as_root[@]}" apt-get update -qq &&
      DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null; }; then
      say "These packages are needed and could not be installed: ${missing[*]}"
      return 1
    fi
  fi
  mkdir -p build
  touch "$stamp"
}

# build_preset PRESET TARGET...: configures the preset once and whenever presets have changed, then builds; silent when
# everything is up to date.
build_preset() {
  local preset=$1
  shift
  if [[ ! -e build/$preset/build.ninja || CMakePresets.json -nt build/$preset/build.ninja ]]; then
    say "Configuring build/$preset"
    cmake --preset "$preset" >/dev/null
    touch "build/$preset/build.ninja"
  fi
  if ! ninja -C "build/$preset" -n "$@" 2>/dev/null | grep -q 'no work to do'; then
    say "Building build/$preset"
    ninja -C "build/$preset" "$@" >&2
  fi
}
