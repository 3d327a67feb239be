#!/usr/bin/env bash
# Installs the build into a temporary prefix and checks what a packager and a
# user of the installed tree get: units that name the installed programs (and
# pass `systemd-analyze verify` where it can run offline), man pages, the licence,
# configctl's bash completion, and the README's C++ examples built with
# find_package and, from a moved copy of the tree, with pkg-config, one of
# them run against the installed configd.
# Usage: install_test.sh SOURCE_DIR BUILD_DIR CMAKE CXX SANITIZE MAN_PAGES(ON|OFF)
set -euo pipefail
src=$1 build=$2 cmake=$3 cxx=$4 sanitize=$5 man_pages=$6
work=$(mktemp -d)
configd_pid=""
cleanup() {
  [ -n "$configd_pid" ] && kill "$configd_pid" 2>/dev/null && wait "$configd_pid" || true
  rm -rf "$work"
}
trap cleanup EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

# A sanitizer build's library needs its runtime in the programs that link it.
flags=""
[ -n "$sanitize" ] && flags="-fsanitize=$sanitize"

prefix=$work/prefix
"$cmake" --install "$build" --prefix "$prefix" >/dev/null

for unit in configd configweb; do
  file=$prefix/lib/systemd/system/$unit.service
  grep -qx "ExecStart=$prefix/bin/$unit\( .*\)\?" "$file" || fail "$file: ExecStart is not $prefix/bin/$unit"
done
# The installed units pass `systemd-analyze verify` and the sandboxing review.
status=0
sh "$src/tests/tools/service_units_test.sh" --verify "$prefix"/lib/systemd/system/configd.service \
  "$prefix"/lib/systemd/system/configweb.service || status=$?
case $status in
  0) ;;
  77) echo "no offline-capable systemd-analyze: installed units not verified" ;;
  *) fail "the installed units" ;;
esac
if [ "$man_pages" = ON ]; then
  for page in man8/configd.8 man1/configctl.1 man8/configweb.8; do
    grep -q '^\.SH OPTIONS\|^\.SS "Options:"\|^\.TP' "$prefix/share/man/$page" || fail "no man page $page"
  done
fi
grep -q 'Apache License' "$prefix/share/doc/zynconfig/LICENSE" || fail "no LICENSE"

# The completion, as bash-completion loads it, completing with the installed
# configctl: a command, a parameter name (full and short), preset numbers.
completions() {
  PATH=$prefix/bin:$PATH bash -c '. "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1))
    _configctl; printf "%s\n" "${COMPREPLY[@]}"' bash \
    "$prefix/share/bash-completion/completions/configctl" "$@"
}
[ "$(completions configctl --json ex)" = export-mapping ] || fail "completing a command"
completions configctl get FrontPanelL | grep -qx FrontPanelLock || fail "completing a short name"
completions configctl --uri socket://x describe eParamID_SystemN | grep -qx eParamID_SystemName ||
  fail "completing a full name"
[ "$(completions configctl preset recall '' | wc -l)" = 41 ] || fail "completing preset numbers"

# The README's C++ blocks, each a program of its own.
mkdir "$work/app"
awk -v dir="$work/app" '/^```cpp$/ { n++; file = dir "/readme_" n ".cpp"; next }
  /^```/ { file = ""; next } file { print > file }' "$src/README.md"
examples=$(cd "$work/app" && ls readme_*.cpp | sed 's/\.cpp$//')
[ -n "$examples" ] || fail "no C++ block in README.md"
{
  echo "cmake_minimum_required(VERSION 3.16)"
  echo "project(readme_examples LANGUAGES CXX)"
  echo "find_package(zynconfig REQUIRED)"
  for example in $examples; do
    echo "add_executable($example $example.cpp)"
    echo "target_link_libraries($example PRIVATE zynconfig::config)"
  done
} >"$work/app/CMakeLists.txt"
"$cmake" -S "$work/app" -B "$work/app-build" -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_CXX_FLAGS="$flags -Wall -Wextra -Werror" >/dev/null ||
  fail "find_package(zynconfig) from $prefix"
"$cmake" --build "$work/app-build" -j2 >/dev/null || fail "building the README's examples with CMake"

# pkg-config, from a copy of the tree somewhere else: nothing may point back
# at the prefix it was installed to.
moved=$work/moved
mv "$prefix" "$moved"
export PKG_CONFIG_PATH=$moved/lib/pkgconfig
for example in $examples; do
  # shellcheck disable=SC2046
  "$cxx" $flags -Wall -Wextra -Werror "$work/app/$example.cpp" -o "$work/$example" \
    $(pkg-config --cflags --libs zynconfig) || fail "building $example with pkg-config"
done

# The parameter ID example against the installed configd: it locks the panel.
mkfifo "$work/ready"
"$moved/bin/configd" --port 0 --tcp-port 0 --udp-port 0 --multicast-port $((30000 + RANDOM % 20000)) \
  --state-dir "$work/state" >"$work/ready" 2>"$work/configd.err" &
configd_pid=$!
port=""
while read -r -t 30 line; do
  case $line in "configd: ready on port "*) port=${line##* }; break ;; esac
done <"$work/ready"
[ -n "$port" ] || fail "configd not ready: $(cat "$work/configd.err")"
uri=socket://127.0.0.1:$port/configid=0
example=$(grep -l eParamID_FrontPanelLock "$work"/app/readme_*.cpp | head -1)
program=$work/$(basename "$example" .cpp)
LD_LIBRARY_PATH=$moved/lib "$program" "$uri" >"$work/out" 2>"$work/err" ||
  fail "$program $uri: $(cat "$work/err")"
grep -q 'front panel locked' "$work/out" || fail "the example printed: $(cat "$work/out")"
# A client that does nothing wrong writes nothing on standard error; the
# diagnostics switch brings the library's own lines back (here: a URI
# without its config ID).
[ -s "$work/err" ] && fail "the example wrote on standard error: $(cat "$work/err")"
LIBCONFIG_VERBOSE=0 LD_LIBRARY_PATH=$moved/lib "$program" "socket://127.0.0.1:$port" \
  >/dev/null 2>"$work/err" || fail "$program without configid: $(cat "$work/err")"
[ -s "$work/err" ] && fail "LIBCONFIG_VERBOSE=0 showed: $(cat "$work/err")"
LIBCONFIG_VERBOSE=1 LD_LIBRARY_PATH=$moved/lib "$program" "socket://127.0.0.1:$port" \
  >/dev/null 2>"$work/err" || fail "$program without configid: $(cat "$work/err")"
grep -q '^SocketFactory::Connect - unable to read configid' "$work/err" ||
  fail "LIBCONFIG_VERBOSE=1 showed: $(cat "$work/err")"
"$moved/bin/configctl" --uri "$uri" get FrontPanelLock | grep -q '= 1 (Locked)' ||
  fail "the panel is not locked"
echo "ok"
