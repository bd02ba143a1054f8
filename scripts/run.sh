#!/usr/bin/env bash
# Builds Ostrakan, makes a ready site under run/site (once) and serves it on loopback until
# Ctrl-C. Usage: bash scripts/run.sh [--listen 127.0.0.1:8080]
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake -S . -B build/release -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build/release --target ostrakan -j"$(nproc)"
binary=build/release/ostrakan
if [[ ! -f run/site/Setup.asp ]]; then
  mkdir -p run
  # init ends with a hint for an installed ostrakan; this script serves the site itself.
  "$binary" init run/site | grep -v '^Serve it with:'
fi
echo "Stop the server with Ctrl-C. Later, serve the same site again with:"
echo "  $binary serve --site run/site $*"
echo "Forgot the password? $binary passwd --site run/site --admin NAME"
exec "$binary" serve --site run/site "$@"
