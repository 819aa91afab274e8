# Sourced by the commands of this project. Expects `top` to hold the checkout's folder.

say() { printf '%s\n' "$*" >&2; }
fail() { say "$*"; exit 1; }

as_root() {
  if [ "$(id -u)" = 0 ]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    return 127
  fi
}

build_packages="g++ cmake ninja-build ccache qt6-base-dev qt6-base-dev-tools libgl-dev libasio-dev libboost1.74-dev libssl-dev libxcb1-dev libxcb-randr0-dev pkg-config"
run_packages="libqt6widgets6 libqt6svg6 qt6-translations-l10n fonts-dejavu-core x11-utils"
server_packages="python3 python3-openssl openssl"
test_packages="$server_packages mold xvfb xauth curl lftp"
fuzz_packages="clang-16 libclang-rt-16-dev"
check_packages="git clang-format-14 clang-tidy-16 $fuzz_packages"

missing_packages() {
  local package
  for package in "$@"; do
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || printf '%s ' "$package"
  done
}

# Installs the Debian packages that are not there yet; silent when nothing is missing.
install_packages() {
  command -v dpkg-query >/dev/null || fail "This command installs Debian packages, and this system has none."
  local missing log
  missing=$(missing_packages "$@")
  [ -n "$missing" ] || return 0
  say "Installing: $missing"
  log=$(mktemp)
  if ! { as_root apt-get update -q && as_root env DEBIAN_FRONTEND=noninteractive \
         apt-get install -y -q --no-install-recommends $missing; } >"$log" 2>&1; then
    tail -n 5 "$log" >&2
    rm -f "$log"
    fail "These packages could not be installed (no network, or no right to install?): $missing"
  fi
  rm -f "$log"
}

# Configures and builds one preset, quietly; the log is shown when it fails. Further arguments are targets.
build() {
  local preset=$1 log
  shift
  export CCACHE_BASEDIR=$top CCACHE_NOHASHDIR=1
  mkdir -p "$top/build" 2>/dev/null && [ -w "$top/build" ] || fail "The folder $top/build cannot be written to."
  log=$top/build/$preset.log
  say "Building ($preset) ..."
  if ! { cmake -S "$top" --preset "$preset" && cmake --build "$top/build/$preset" ${*:+--target "$@"}; } >"$log" 2>&1
  then
    grep -E -A 8 'error|FAILED' "$log" | head -n 60 >&2
    fail "The build failed; the whole log is in $log."
  fi
}
