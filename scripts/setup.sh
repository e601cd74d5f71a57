#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs the Debian packages that the build, the tests and the client need. Only what is missing is installed:
# on a machine that has everything it needs neither network nor root.
set -euo pipefail

packages=(
  # build
  build-essential cmake ninja-build ccache mold pkg-config clang-format-19 clang-tidy-19 binutils git
  # libraries
  qtbase5-dev qttools5-dev-tools libqt5svg5-dev libqt5sql5-sqlite
  libboost-dev libbson-dev liblua5.4-dev libicu-dev libsodium-dev
  libtomlplusplus-dev prometheus-cpp-dev libspdlog-dev libsystemd-dev libsqlite3-dev libssl-dev libqt5sql5-psql libpq-dev
  # tests
  librapidcheck-dev python3 clang libclang-rt-dev postgresql openssl groff-base doxygen
  # packages
  abigail-tools appstream desktop-file-utils dpkg-dev file lintian systemd xz-utils
  # what the client shows
  fonts-noto-cjk breeze-icon-theme qttranslations5-l10n
)

missing=()
for package in "${packages[@]}"; do
  [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
as_root=()
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null; then
    echo "These packages are missing and installing them needs root: ${missing[*]}" >&2
    exit 1
  fi
  as_root=(sudo)
fi
"${as_root[@]}" apt-get update -q
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}"
