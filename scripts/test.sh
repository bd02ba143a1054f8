#!/usr/bin/env bash
# Builds Ostrakan and runs every test: units, components, the engine over loopback and the
# browser tests in headless Chromium; then builds the fuzz targets with clang and runs each
# briefly (20 seconds).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh --test
(cd tests/browser && npm ci --no-audit --no-fund --loglevel=error)
cmake -S . -B build/test -DCMAKE_BUILD_TYPE=Debug -DOSTRAKAN_SANITIZE=ON >/dev/null
cmake --build build/test -j"$(nproc)"
(cd build/test && ctest --output-on-failure --timeout 900 "$@")

CC=clang CXX=clang++ cmake -S . -B build/fuzz -DCMAKE_BUILD_TYPE=Debug -DOSTRAKAN_FUZZ=ON >/dev/null
cmake --build build/fuzz -j"$(nproc)" --target request_fuzz page_file_fuzz statement_adapter_fuzz
cd build/fuzz
ctest --output-on-failure --timeout 120 -R '_fuzz$'
