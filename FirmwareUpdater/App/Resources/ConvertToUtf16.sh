#!/bin/sh
# ConvertToUtf16.sh SOURCE TARGET
# Writes an XML document that is kept as UTF-8 as UTF-16, little endian with a byte order mark. A
# declaration that still said UTF-8 would make the parser refuse the result.
set -eu

head -n 1 "$1" | grep -q 'encoding="UTF-8"' || {
  echo "$1: the first line declares no encoding=\"UTF-8\"" >&2
  exit 1
}
work="$2.part"
sed '1s/encoding="UTF-8"/encoding="UTF-16"/' "$1" >"$work.utf8"
printf '\377\376' >"$work"
iconv -f UTF-8 -t UTF-16LE "$work.utf8" >>"$work"
rm "$work.utf8"
mv "$work" "$2"
