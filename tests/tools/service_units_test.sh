#!/bin/sh
# Reviews the generated systemd units offline with `systemd-analyze security`:
# each must be fully configured (no @VAR@ left, ExecStart an absolute path)
# and reach an overall exposure level of at most 4.0.
#
# Usage: service_units_test.sh UNIT_FILE...
# Exit status: 0 all pass, 1 a unit fails, 77 (skipped) where systemd-analyze
# or its offline review is missing.
limit=4.0

if ! command -v systemd-analyze >/dev/null 2>&1; then
  echo "systemd-analyze not installed: skipped"
  exit 77
fi
if ! systemd-analyze --help 2>/dev/null | grep -q -- '--offline'; then
  echo "systemd-analyze has no --offline review: skipped"
  exit 77
fi
[ $# -gt 0 ] || { echo "usage: $0 UNIT_FILE..." >&2; exit 1; }

failed=0
for unit in "$@"; do
  name=$(basename "$unit")
  if [ ! -f "$unit" ]; then
    echo "$name: missing ($unit)"
    failed=1
    continue
  fi
  if grep -q '@[A-Z_]*@' "$unit"; then
    echo "$name: unconfigured placeholders: $(grep -o '@[A-Z_]*@' "$unit" | tr '\n' ' ')"
    failed=1
  fi
  if ! grep -q '^ExecStart=/' "$unit"; then
    echo "$name: ExecStart is not an absolute path"
    failed=1
  fi
  # The review wants the file under its unit name; it needs no binary or user.
  review=$(timeout 60 systemd-analyze security --offline=true "$unit" 2>&1)
  level=$(printf '%s\n' "$review" | sed -n 's/.*Overall exposure level for [^:]*: \([0-9.]*\).*/\1/p')
  if [ -z "$level" ]; then
    echo "$name: no exposure level in systemd-analyze's review:"
    printf '%s\n' "$review" | tail -5
    failed=1
  elif awk -v level="$level" -v limit="$limit" 'BEGIN { exit !(level > limit) }'; then
    echo "$name: exposure $level is above $limit; what is left open:"
    printf '%s\n' "$review" | grep '✗' | head -20
    failed=1
  else
    echo "$name: exposure $level (at most $limit)"
  fi
done
exit $failed
