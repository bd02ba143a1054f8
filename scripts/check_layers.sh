#!/usr/bin/env bash
# Fails when an #include runs from a lower layer of src/ up to a higher one.
# Layers, lowest first: core, platform, frame, the feature folders, admin, engine.
set -uo pipefail
cd "$(dirname "$0")/../src"
rank() {
  case "$1" in
    core) echo 0 ;; platform) echo 1 ;; frame) echo 2 ;;
    access | categories | keywords | records | gathering | generation | search) echo 3 ;;
    admin) echo 4 ;; engine) echo 5 ;; *) echo "" ;;
  esac
}
status=0
while IFS=: read -r file _ line; do
  from=${file%%/*}
  to=$(sed -E 's/.*#include "([a-z_]+)\/.*/\1/' <<<"$line")
  rf=$(rank "$from"); rt=$(rank "$to")
  [[ -z "$rf" || -z "$rt" ]] && continue
  # Feature folders may use each other only as records uses categories' lookups; a feature
  # folder never reaches up to admin or engine, and a lower layer never reaches up at all.
  if ((rt > rf)); then
    echo "layering: $file includes $to/ ($line)"
    status=1
  fi
done < <(grep -rn -E '^#include "[a-z_]+/' --include='*.h' --include='*.cpp' .  | sed 's#^\./##')
((status == 0)) && echo "layering: every include points down"
exit $status
