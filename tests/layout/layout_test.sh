#!/bin/sh
# The project's layout as a check: the library (classes/) includes nothing of
# the tools, and a tool includes only its own folder, the shared tools/common
# layer and the library. Prints each include that breaks this.
root=$1
status=0
for dir in "$root"/classes "$root"/tools/*/; do
  dir=${dir%/}
  own=$(basename "$dir")
  case $own in
    classes) allowed='config|support' ;;
    common) allowed='common|config|support' ;;
    *) allowed="$own|common|config|support" ;;
  esac
  bad=$(grep -rnE '#include "[^"]+/' "$dir" --include='*.h' --include='*.cpp' |
    grep -vE "#include \"($allowed)/")
  if [ -n "$bad" ]; then
    echo "$bad"
    status=1
  fi
done
exit $status
