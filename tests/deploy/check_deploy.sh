#!/usr/bin/env bash
# Checks the files of deploy/ with the tools that will read them: `nginx -t` on the nginx site
# and `systemd-analyze verify` on the units (which must print nothing about it: unknown keys and
# bad values are only warnings there). Exits 77, "skipped", when neither tool is installed.
# Usage: check_deploy.sh SOURCE_DIR OSTRAKAN_BINARY
set -uo pipefail
src=$1
binary=$2
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
checked=0
status=0

if command -v nginx >/dev/null; then
  mkdir -p "$tmp/nginx/logs"
  cat >"$tmp/nginx/nginx.conf" <<CONF
pid $tmp/nginx/nginx.pid;
error_log $tmp/nginx/error.log;
events {}
http {
  access_log off;
  include $src/deploy/nginx-ostrakan.conf;
}
CONF
  if nginx -t -q -p "$tmp/nginx" -c "$tmp/nginx/nginx.conf"; then
    echo "deploy: nginx -t accepts deploy/nginx-ostrakan.conf"
  else
    echo "deploy: nginx -t rejects deploy/nginx-ostrakan.conf"
    status=1
  fi
  checked=1
else
  echo "deploy: nginx is not installed; the nginx site is not checked"
fi

if command -v systemd-analyze >/dev/null; then
  # The units name the installed binary; the check needs one that exists. The template unit
  # is checked as one of its instances.
  for unit in ostrakan.service ostrakan-worker.service ostrakan@.service; do
    copy=${unit/@./@8081.}
    sed "s#/usr/local/bin/ostrakan#$binary#" "$src/deploy/$unit" >"$tmp/$copy"
    out=$(systemd-analyze verify "$tmp/$copy" 2>&1)
    rc=$?
    if ((rc != 0)) || grep -q "ostrakan" <<<"$out"; then
      echo "deploy: systemd-analyze verify finds problems in deploy/$unit:"
      echo "$out"
      status=1
    else
      echo "deploy: systemd-analyze verify accepts deploy/$unit"
    fi
  done
  checked=1
else
  echo "deploy: systemd-analyze is not installed; the unit is not checked"
fi

((checked == 0)) && exit 77
exit $status
