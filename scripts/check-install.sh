#!/bin/sh
# Installs a build into a scratch prefix and builds a small consumer against
# it twice: with find_package(rvpcv) and with pkg-config.
set -eu
build=${1:-build/release}
src=$(cd "$(dirname "$0")/.." && pwd)
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
cmake --install "$build" --prefix "$tmp/prefix" >/dev/null
mkdir -p "$tmp/consumer"
cat > "$tmp/consumer/CMakeLists.txt" <<'CM'
cmake_minimum_required(VERSION 3.25)
project(consumer C)
find_package(rvpcv 7.1 REQUIRED)
add_executable(consumer main.c)
target_link_libraries(consumer PRIVATE rvpcv::rvpcv rvpcv::core)
CM
cp "$src/tests/abi/c99_client.c" "$tmp/consumer/main.c"
cmake -S "$tmp/consumer" -B "$tmp/consumer/build" -DCMAKE_PREFIX_PATH="$tmp/prefix" >/dev/null
cmake --build "$tmp/consumer/build" >/dev/null
LD_LIBRARY_PATH="$tmp/prefix/lib" "$tmp/consumer/build/consumer"
PKG_CONFIG_PATH="$tmp/prefix/lib/pkgconfig" cc -std=c99 "$tmp/consumer/main.c" -o "$tmp/pc" \
  $(PKG_CONFIG_PATH="$tmp/prefix/lib/pkgconfig" pkg-config --cflags --libs rvpcv)
LD_LIBRARY_PATH="$tmp/prefix/lib" "$tmp/pc"
# The installed tool and Python package run without LD_LIBRARY_PATH.
"$tmp/prefix/bin/rvpcv" --version
"$tmp/prefix/bin/rvpcv" demo "$tmp/demo" >/dev/null
if /usr/bin/python3 -c "import cffi, numpy" 2>/dev/null; then
  PYTHONPATH="$tmp/prefix/lib/python3/dist-packages" /usr/bin/python3 -c \
    "import numpy as np, rvpcv; a = np.arange(12, dtype=np.uint8).reshape(3, 4); \
assert (rvpcv.absdiff(a, a) == 0).all(); print('python:', rvpcv.version()['version'], rvpcv.kernel_level())"
fi
echo "install check: find_package and pkg-config consumers, the tool and the Python package ran"
