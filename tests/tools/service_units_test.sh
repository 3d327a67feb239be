#!/bin/sh
# Reviews the generated systemd units offline: each must be fully configured
# (no @VAR@ left, ExecStart an absolute path) and reach an overall exposure
# level of at most 4.0 in `systemd-analyze security`.
# With --verify, each must also pass `systemd-analyze verify` (which needs
# the programs the units name, so it is for installed units).
# Usage: service_units_test.sh [--verify] UNIT_FILE...  Exit 77 (skipped)
# without an offline-capable systemd-analyze.
systemd-analyze --help 2>/dev/null | grep -q -- '--offline' || { echo "skipped"; exit 77; }
verify=0
[ "${1:-}" = --verify ] && { verify=1; shift; }
failed=0
for unit in "$@"; do
  if [ $verify = 1 ] && ! systemd-analyze verify "$unit"; then
    echo "$unit: systemd-analyze verify failed"
    failed=1
  fi
  if grep -q '@[A-Z_]*@' "$unit" || ! grep -q '^ExecStart=/' "$unit"; then
    echo "$unit: not fully configured"
    failed=1
  fi
  review=$(timeout 60 systemd-analyze security --offline=true --threshold=40 "$unit" 2>&1) || {
    echo "$unit: exposure above 4.0 (or no review); left open:"
    printf '%s\n' "$review" | grep '✗'
    failed=1
  }
  printf '%s\n' "$review" | grep 'Overall exposure level' || echo "$review"
done
exit $failed
