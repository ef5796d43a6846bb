# shellcheck shell=bash
# The Debian packages that ./dev needs, and how it gets them. Sourced by ./dev.

# shellcheck disable=SC2034  # the lists are used by ./dev
build_packages=(cmake ninja-build g++ pkg-config libgtest-dev libgmock-dev libcli11-dev
  nlohmann-json3-dev libcairo2-dev libfontconfig-dev libsqlite3-dev libzint-dev nettle-dev)
demo_packages=(fonts-dejavu-core python3)
test_packages=(bash-completion fonts-dejavu-core groff-base python3)
check_packages=(clang-format clang-tidy doxygen python3)
docs_packages=(doxygen)
package_packages=(debhelper dpkg-dev lintian)
trial_packages=(debootstrap)
fuzz_packages=(clang libclang-rt-dev)
prove_packages=(llvm)
bench_packages=(libbenchmark-dev libspdlog-dev python3)

# need_packages NAME …: returns when all are there. Where some are missing, root gets them installed;
# anybody else is told the command and the script ends.
need_packages() {
  command -v dpkg-query >/dev/null || return 0 # not Debian: what is missing will show in the build
  local package missing=()
  for package in "$@"; do
    is_installed "$package" || missing+=("$package")
  done
  ((${#missing[@]})) || return 0

  if ((EUID != 0)); then
    echo "Missing Debian packages. This installs them:" >&2
    echo "  sudo apt-get install --no-install-recommends ${missing[*]}" >&2
    exit 1
  fi
  echo "Installing missing Debian packages: ${missing[*]}"
  apt-get update --quiet
  DEBIAN_FRONTEND=noninteractive \
    apt-get install --quiet --yes --no-install-recommends "${missing[@]}"
}

is_installed() {
  [[ $(dpkg-query --show --showformat='${db:Status-Status}\n' "$1" 2>/dev/null) == installed* ]]
}
