#!/bin/sh
# ComposeSkin.sh PROGRAM_SKIN GALLERY_SKIN TARGET
# Writes the gallery's skin with parts of the program's skin in the place of its marks: @ARTWORK@ is what looks
# are made of, and the looks; the others are what stands in a menu bar, a popup, a view with scroll bars and a
# progress bar. So the gallery shows the program's own pieces.
set -eu

work="$3.part"
mkdir -p "$work"
# From a line up to the one that closes it at the same depth.
piece() { # NAME FIRST_LINE LAST_LINE
  sed -n "/$2/,/$3/p" "$program" >"$work/$1"
  test -s "$work/$1" || {
    echo "$program: no $1" >&2
    exit 1
  }
}
program="$1"
piece ARTWORK '^    <Colorizers>' '^    <\/LookLists>'
piece MENU '^ *<Skin Name="mainMenu"' '^              <\/Skin>'
piece POPUP '^ *<Skin Name="popupMenu"' '^                      <\/Skin>'
piece BARS '^ *<SubControl .*Name="corner"' '^                        <!-- 9 pixels high'
sed -i '$d' "$work/BARS"
piece PROGRESS '^ *<Skin Name="progressBar"' '^              <\/Skin>'
set -- "$2" "$3"
script=""
for name in ARTWORK MENU POPUP BARS PROGRESS; do
  script="$script
/@$name@/{
r $work/$name
d
}"
done
sed "$script" "$1" >"$work/skin"
if grep -q '@[A-Z]*@' "$work/skin"; then
  echo "$1: a mark that nothing stands for" >&2
  exit 1
fi
mv "$work/skin" "$2"
rm -r "$work"
