#!/usr/bin/env bash
# Builds Ostrakan, makes a ready site under run/site (once) and serves it on loopback.
# Usage: bash scripts/run.sh [--listen 127.0.0.1:8080]
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake -S . -B build/release -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build/release --target ostrakan -j"$(nproc)"
if [[ ! -f run/site/Setup.asp ]]; then
  mkdir -p run
  build/release/ostrakan init run/site
fi
exec build/release/ostrakan serve --site run/site "$@"
