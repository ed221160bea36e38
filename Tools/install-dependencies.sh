#!/usr/bin/env bash
# Installs what the build and the tests need on Debian or Ubuntu.  Does nothing where all of it is there;
# otherwise uses apt, as root or through sudo.  The argument "fuzz" adds what Tools/fuzz needs, "windows"
# what the build for Windows needs, "tidy" what the target of that name needs.
set -euo pipefail

packages=(
  g++ cmake ninja-build ccache pkg-config        # the build
  libboost-dev libboost-filesystem-dev gettext
  libtbb-dev libeigen3-dev libsqlite3-dev libxml2-dev
  libpng-dev libosmesa6-dev libgl-dev            # pictures
  libcli11-dev nlohmann-json3-dev libedit-dev    # the console
  libgtest-dev libgmock-dev libbenchmark-dev     # tests and benchmarks
  libtinygltf-dev assimp-utils                   # tests that read models back
  locales                                        # tests in other locales
  dpkg-dev file                                  # the Debian packages
  doxygen                                        # the reference of the public headers
  clang-format                                   # the test that the sources are formatted
)
if [ "${1:-}" = fuzz ]; then packages+=(clang-14 libclang-rt-14-dev); fi
if [ "${1:-}" = tidy ]; then packages+=(clang-tidy); fi
if [ "${1:-}" = windows ]; then
  packages+=(g++-mingw-w64-x86-64-posix googletest wine wine64)
  packages+=(debian-archive-keyring tcl make gcc xz-utils unzip) # for Tools/windows/build-dependencies.sh
fi

missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "Needs root to install: ${missing[*]}" >&2; exit 1; }
  as_root=(sudo)
fi
echo "Installing: ${missing[*]}" >&2
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -qq >&2
"${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
