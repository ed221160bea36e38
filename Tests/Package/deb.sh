#!/usr/bin/env bash
# The Debian packages: what they say of themselves, and that what they unpack works.
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
needs dpkg dpkg-deb dpkg-shlibdeps file pkg-config

work=$VN_WORK-deb
fresh "$work"
"$VN_CPACK" --config "$VN_BUILD/CPackConfig.cmake" -B "$work" >"$work/log" 2>&1 ||
  { cat "$work/log"; exit 1; }

architecture=$(dpkg --print-architecture)
runtime=$work/vncommondata10_${VN_VERSION}_$architecture.deb
pictures=$work/vncommondata10-pictures_${VN_VERSION}_$architecture.deb
development=$work/vncommondata10-dev_${VN_VERSION}_$architecture.deb
field() { dpkg-deb --field "$1" "$2"; }
for package in "$runtime" "$pictures" "$development"; do
  [ -f "$package" ] || fail "there is no $package"
  same "the version" "$(field "$package" Version)" "$VN_VERSION"
done

# The packages of the system that the programs need are named.
depends=$(field "$runtime" Depends)
for package in libc6 libstdc++6; do
  grep -qF "$package" <<<"$depends" || fail "$package isn't among $depends"
done
# What draws is large, and comes apart.
if grep -q osmesa <<<"$depends"; then fail "what draws is among $depends"; fi
depends=$(field "$pictures" Depends)
for package in "vncommondata10 (= $VN_VERSION)" libosmesa6; do
  grep -qF "$package" <<<"$depends" || fail "$package isn't among $depends"
done
depends=$(field "$development" Depends)
for package in "vncommondata10 (= $VN_VERSION)" libboost-dev libtbb-dev; do
  grep -qF "$package" <<<"$depends" || fail "$package isn't among $depends"
done

# To run, one package is enough.
dpkg -x "$runtime" "$work/run"
try_console "$work/run/usr"
if [ -e "$work/run/usr/include" ]; then fail "headers in the package to run"; fi
if [ -e "$work/run/usr/Server" ]; then fail "/usr/Server in the package"; fi
for file in AddInMgr/Configuration/Schema/AddinSchema.xsd CommonData/Configuration/VnCommonData10.xml; do
  [ -s "$work/run/usr/share/VnCommonData10/Server/$file" ] || fail "no $file in the package"
done
for file in bash-completion/completions/vnconsole zsh/vendor-completions/_vnconsole; do
  [ -s "$work/run/usr/share/$file" ] || fail "no $file in the package"
done
for file in copyright README.md Docs/embedding.md licenses/libboost-dev.txt; do
  [ -s "$work/run/usr/share/doc/vncommondata10/$file" ] || fail "no $file in the package"
done
missing=$(ldd "$work"/run/usr/lib/*.so* "$work/run/usr/bin/vnconsole" | grep 'not found' || true)
[ -z "$missing" ] || fail "$missing"

# To build, it takes both.
dpkg -x "$runtime" "$work/build"
dpkg -x "$development" "$work/build"
try_find_package "$work/build/usr" "$work/find-package"
try_pkg_config "$work/build/usr" "$work/pkg-config"
