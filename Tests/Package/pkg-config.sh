#!/usr/bin/env bash
# Another project finds the package with pkg-config.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
needs pkg-config

try_pkg_config "$installed" "$VN_WORK/pkg-config"

# Directories may be configured as absolute paths, and are taken as they are then.
work=$VN_WORK/absolute
fresh "$work"
cat >"$work/CMakeLists.txt" <<END
cmake_minimum_required(VERSION 3.25)
project(VnCommonData10 VERSION $VN_VERSION LANGUAGES CXX)
include(GNUInstallDirs)
set(VN_INSTALL_HEADERS "\${CMAKE_INSTALL_INCLUDEDIR}/VnCommonData10")
include($VN_SOURCES/Tools/cmake/VnPkgConfig.cmake)
END
"$VN_CMAKE" -S "$work" -B "$work/build" -DCMAKE_CXX_COMPILER="$VN_CXX" -DCMAKE_INSTALL_PREFIX=/opt/vn \
  -DCMAKE_INSTALL_LIBDIR=/srv/lib64 >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
export PKG_CONFIG_PATH=$work/build
same "libdir" "$(pkg-config --variable=libdir VnCommonData10)" /srv/lib64
same "includedir" "$(pkg-config --variable=includedir VnCommonData10)" /opt/vn/include/VnCommonData10
