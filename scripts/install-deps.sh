#!/usr/bin/env bash
# Installs the Debian packages that building (and, with --test, testing) needs; only what is
# missing, so a prepared machine pays nothing.
set -euo pipefail

packages=(build-essential cmake pkg-config libsqlite3-dev libcurl4-openssl-dev libicu-dev
          libpcre2-dev libboost-dev libpq-dev nlohmann-json3-dev)
if [[ "${1:-}" == "--test" ]]; then
  packages+=(libgtest-dev libgumbo-dev libbenchmark-dev chromium fonts-wqy-zenhei sqlite3 wrk nginx postgresql
            clang-14 libclang-rt-14-dev)
  command -v node >/dev/null || packages+=(nodejs npm)
fi

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if ((${#missing[@]})); then
  echo "Installing: ${missing[*]}"
  SUDO=""
  [[ $(id -u) -ne 0 ]] && SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi
