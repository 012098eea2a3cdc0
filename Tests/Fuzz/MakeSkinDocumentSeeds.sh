#!/bin/sh
# Writes the seeds of SkinDocumentFuzz anew.
set -eu
mkdir -p "$(dirname "$0")/Seeds/SkinDocument"
cd "$(dirname "$0")/Seeds/SkinDocument"

document() { printf '<R><Application Name="A">%s</Application></R>' "$1"; }
control() { printf '<SubControl Class="C" Name="%s" %s><Skin LookList="L">%s</Skin></SubControl>' "$1" "$2" "${3:-}"; }

colorizer='<Colorizers><Colorizer Name="c" ColorType="SolidFill" Color="0xFF006991"/></Colorizers>'
gradient='<Colorizer Name="g" ColorType="LinearGradient" Color="FF000000" GradientEndColor="11" GradientStartX="0" GradientStartY="0" GradientEndX="1" GradientEndY=".5"/>'
parts='<Parts><Part Name="p" Width="1" Height="2" ResizeType="Tile" ColorizerName="c" ColorizerAlphaMod="0.5"/></Parts>'
picture='<Part Name="q" Width="1" Height="2" ResizeType="Center" ImageFile="S.png" ImageLocX="0x10" ImageLocY="3" ColorizerMaskFile="M" MaskLocX="1" MaskLocY="2"/>'
client='<ClientPart Name="p" OffsetLeft="1" OffsetTop="2" OffsetRight="-3" OffsetBottom="-4"/>'
others='<NonClientParts Name="n"><NonClientPart Name="p" OffsetLeft="0" Width="3" Height="4"/></NonClientParts>'
text='<TextProperties TextLeftRel="0" TextLeftAbs="1" TextRightRel="1" TextRightAbs="-1" TextHAlign="0.5" TextTopRel="0" TextTopAbs="0" TextBottomRel="1" TextBottomAbs="0" TextVAlign="0.5" TextForegroundPart="p"/>'
looks="<Looks><Look Name=\"l\">$client$others$text</Look></Looks>"
lists='<LookLists><LookList Name="L" NumLooks="2"><Look Name="l" Index="1"/></LookList></LookLists>'
fonts='<FontLocale LCID="0"><FontXLat Name="Arial" XLat="Other"/></FontLocale>'
params='<SubControl Class="C" Name="n"><CreateParamList><CreateParam ID="WANTS_TAB">true</CreateParam></CreateParamList></SubControl>'
layout='XIsDocked="True" XPositionToControl="s" XPositionRel="0.5" YSizeToControl="Self" YSizeAbs="31" TextOverflowXType="Wrap" XMinSizeToControl="Children" TabStop="-1" IsVisible="False"'

document "$colorizer$gradient" >colorizers
document "$colorizer$parts$picture" >parts
document "$colorizer$parts$looks$lists" >looks
document "<Skins><Skin Name=\"s\" FontName=\"Arial\" FontSize=\"8.25\" FontStyle=\"0\">$fonts$(control a 'FontName="Arial" FontSize="12"')</Skin></Skins>" >fonts
document "<Skin>$(control a "$layout" "$(control b 'LayoutOrder="2"')$(control c 'LayoutOrder="1"')")$params</Skin>" >controls
document "$colorizer$parts$looks$lists<Skins><Skin>$(control a '')</Skin><Skin>$(control b '')</Skin></Skins>" >whole
document '<LookList Name="L" NumLooks="99999"/><LookList Name="M" NumLooks="1"/><Look Name="l" Index="-1"/>' >slots
document '<Skin><Skin><SubControl Class="C" Name="n"/></Skin></Skin><SubControl Class="C" Name="o"/>' >out-of-place
document '<Skin><SubControl Class="D"/></Skin>' >without-name
document '<Skin><SubControl Class="D" Name="n"/></Skin>' >unknown-class
printf '<SubControl><Skin><SubControl Class="C" Name="n"></Skin></SubControl>' >broken
{ printf '\377\376'; printf '<?xml version="1.0" encoding="UTF-16"?>%s' "$(document "$colorizer$parts")" | iconv -t UTF-16LE; } >utf-16
