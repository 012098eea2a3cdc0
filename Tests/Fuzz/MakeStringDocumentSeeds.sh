#!/bin/sh
# Writes the seeds of StringDocumentFuzz anew. The first byte of each chooses the user's language, the
# document follows.
set -eu
mkdir -p "$(dirname "$0")/Seeds/StringDocument"
cd "$(dirname "$0")/Seeds/StringDocument"

seed() { printf "$2" >"$1"; }

both='<Locale LCID="0x0007">de</Locale><Locale LCID="0x0009">en</Locale>'
table() { printf '<R><Application Name="A"><StringTable ID="%s"><String ID="K">%s</String></StringTable></Application></R>' "$1" "$2"; }

seed english "\\000$(table Framework "$both")"
seed german "\\001$(table Framework "$both")"
seed swedish "\\003$(table '|A' "$both")"
seed chinese "\\004$(table 'P|c' '<Locale LCID="0x7C04">a</Locale><Locale LCID="4">b</Locale>')"
seed nested "\\001$(table Framework '<Locale LCID="9">a<Locale LCID="7">b<x/>c</Locale>d</Locale>')"
seed twice "\\000$(table Framework '<Locale LCID="9"> a </Locale><Locale LCID="9">&lt;</Locale>')"
seed empty "\\000$(table Framework '<Locale LCID="9"/>')"
seed without-text "\\000$(table '|A' '')"
seed no-identifier '\000<R><StringTable><String><Locale>a</Locale></String></StringTable></R>'
seed broken "\\001<R><StringTable ID='Framework'><String ID='K'>$both</Strin"
seed entities '\000<!DOCTYPE r [<!ENTITY a "x"><!ENTITY b "&a;&a;">]><R><StringTable ID="&b;|&a;"/></R>'
{ printf '\001\377\376'; printf '<?xml version="1.0" encoding="UTF-16"?>%s' "$(table Framework "$both")" | iconv -t UTF-16LE; } >utf-16
