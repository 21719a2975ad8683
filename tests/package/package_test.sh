#!/usr/bin/env bash
# package_test.sh BUILD_DIR HOST_SOURCE SCRATCH
# Makes the Debian package from BUILD_DIR, unpacks it into SCRATCH/root (as
# dpkg would install it, but relocated), checks that it holds the library,
# the headers, the CMake package config, GeoDB.csv and zanrec, builds the
# host in HOST_SOURCE against it with find_package(ZanData CONFIG REQUIRED),
# and runs the host and the tool from the scratch root.
set -euo pipefail
build=$1 host=$2 scratch=$3
rm -rf "$scratch"
mkdir -p "$scratch/pkg"

cpack -G DEB --config "$build/CPackConfig.cmake" -B "$scratch/pkg" >"$scratch/cpack.log" 2>&1 ||
  { cat "$scratch/cpack.log"; exit 1; }
deb=$(ls "$scratch"/pkg/zandata_*.deb)
echo "package: $(basename "$deb")"
dpkg-deb --info "$deb" | sed -n 's/^ *\(Package\|Version\|Architecture\|Depends\):/  &/p'
dpkg-deb -x "$deb" "$scratch/root"

usr=$scratch/root/usr
# The library's folder: /usr/lib/<multiarch> or /usr/lib, as the install
# rules chose.
lib=$(find "$usr/lib" -name 'libzandata.so' | head -1)
[ -n "$lib" ] || { echo "missing from the package: libzandata.so"; exit 1; }
multiarch=$(dirname "$lib")
for f in "$multiarch/libzandata.so" "$usr/include/zandata/ZanData.h" "$usr/include/zandata/core/platform/CArchive.h" \
         "$multiarch/cmake/ZanData/ZanDataConfig.cmake" "$multiarch/cmake/ZanData/ZanDataConfigVersion.cmake" \
         "$multiarch/cmake/ZanData/ZanDataTargets.cmake" "$usr/share/zandata/GeoDB.csv" "$usr/bin/zanrec"; do
  [ -e "$f" ] || { echo "missing from the package: ${f#"$scratch/root"}"; exit 1; }
done
# A relocated install must not lean on the build machine's paths.
if grep -rl -e "$build" -e "$(cd "$host/../../.." && pwd)" "$multiarch/cmake/ZanData"; then
  echo "the package config names a path of the build machine"
  exit 1
fi

cmake -S "$host" -B "$scratch/host" -G Ninja -DCMAKE_PREFIX_PATH="$usr" -DCMAKE_BUILD_TYPE=Release \
  >"$scratch/host-configure.log" 2>&1 || { cat "$scratch/host-configure.log"; exit 1; }
grep -q "ZanData_DIR:PATH=$multiarch" "$scratch/host/CMakeCache.txt" ||
  { echo "find_package took ZanData from elsewhere:"; grep ZanData_DIR "$scratch/host/CMakeCache.txt"; exit 1; }
cmake --build "$scratch/host" >"$scratch/host-build.log" 2>&1 || { cat "$scratch/host-build.log"; exit 1; }

ZAN_DATA_DIR=$usr/share/zandata "$scratch/host/host"
LD_LIBRARY_PATH=$multiarch "$usr/bin/zanrec" --help >/dev/null
echo "package test passed"
