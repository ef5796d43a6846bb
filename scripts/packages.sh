# shellcheck shell=bash
# The Debian packages that ./dev needs, and functions that install them. Sourced by ./dev.

# shellcheck disable=SC2034  # the lists are used by ./dev
build_packages=(cmake ninja-build g++ pkg-config libgtest-dev libgmock-dev libcli11-dev
  nlohmann-json3-dev libcairo2-dev libfontconfig-dev libjpeg-dev libmicrohttpd-dev libpango1.0-dev libpng-dev
  libsdbus-c++-dev libsqlite3-dev libzint-dev nettle-dev zlib1g-dev)
demo_packages=(fonts-dejavu-core python3)
test_packages=(bash-completion dbus-daemon fonts-dejavu-core groff-base python3 zsh)
check_packages=(clang clang-format clang-tidy doxygen gobjc libgnustep-base-dev python3)
docs_packages=(doxygen)
package_packages=(build-essential debhelper dh-python libcups2-dev libpappl-dev lintian pybuild-plugin-pyproject python3-all
  python3-setuptools python3-wheel)
trial_packages=(debootstrap)
real_packages=(avahi-daemon bluez bluez-test-tools busybox-static chromium clang cups cups-client cups-daemon
  cups-filters cups-ipp-utils fonts-freefont-ttf fonts-wqy-microhei gobjc kmod libcups2-dev libgnustep-base-dev
  libpappl-dev mypy python3-pytest qemu-system-x86)
fuzz_packages=(clang libclang-rt-dev)
prove_packages=(llvm)
bench_packages=(libbenchmark-dev libcups2-dev libspdlog-dev python3)

# need_packages NAME …: returns when all packages are installed. For root it installs the missing
# packages. For other users it shows the command that installs them, and ends the script.
need_packages() {
  command -v dpkg-query >/dev/null || return 0 # not Debian: the build will show the missing packages
  local package missing=()
  for package in "$@"; do
    is_installed "$package" || missing+=("$package")
  done
  ((${#missing[@]})) || return 0

  if ((EUID != 0)); then
    echo "Missing Debian packages. This installs them:" >&2
    echo "  $(command_for_others "${missing[@]}")" >&2
    exit 1
  fi
  quietly "installing ${missing[*]}" build/log/packages.txt \
    env DEBIAN_FRONTEND=noninteractive sh -c "$(installation "${missing[@]}")"
}

# installation NAME …: writes the commands by which root installs the packages. They first download
# the package lists, because a new system has none.
installation() {
  echo "apt-get update && apt-get install --yes --no-install-recommends $*"
}

# command_for_others NAME …: writes the command by which a user who is not root installs the
# packages.
command_for_others() {
  local run_as_root="su -c"
  command -v sudo >/dev/null && run_as_root="sudo sh -c"
  echo "$run_as_root '$(installation "$@")'"
}

is_installed() {
  [[ $(dpkg-query --show --showformat='${db:Status-Status}\n' "$1" 2>/dev/null) == installed* ]]
}
