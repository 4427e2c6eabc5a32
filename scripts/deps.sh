#!/bin/sh
# Installs what building and testing need, when it is missing (Debian).
set -eu
need=""
for p in cmake g++ make pkg-config libgtest-dev libbenchmark-dev libpng-dev binutils qemu-user python3-cffi python3-numpy python3-pytest clang libclang-rt-14-dev libomp-14-dev; do
  dpkg -s "$p" >/dev/null 2>&1 || need="$need $p"
done
[ -z "$need" ] && exit 0
echo "installing:$need"
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO=sudo
$SUDO apt-get update -qq
DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq $need
