#!/usr/bin/env bash
# Installs what the build needs from Debian's packages. Idempotent: it asks
# apt only for what is missing.
set -euo pipefail

packages=(
  build-essential cmake g++ git
  libboost-dev libboost-thread-dev libboost-date-time-dev libboost-system-dev
  nlohmann-json3-dev libspdlog-dev libfmt-dev libcli11-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  libunicorn-dev libzydis-dev libzycore-dev binutils libedit-dev
  libcrypt-dev openocd gdb pkg-config tmux gcovr
  clang-14 libclang-rt-14-dev
)

missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" || missing+=("$package")
done

if ((${#missing[@]} > 0)); then
  echo "Installing: ${missing[*]}"
  sudo_cmd=()
  if [[ $(id -u) -ne 0 ]]; then sudo_cmd=(sudo); fi
  "${sudo_cmd[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
