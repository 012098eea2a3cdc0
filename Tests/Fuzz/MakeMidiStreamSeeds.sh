#!/bin/sh
# Writes the seeds of MidiStreamFuzz anew. The first byte of each chooses the buffer size
# (plus 1), the second where the stream is torn; the stream follows.
set -eu
cd "$(dirname "$0")/Seeds/MidiStream"

seed() { printf "$2" >"$1"; }

seed channel-messages '\037\001\200\001\002\237\003\004\300\005\345\006\007'
seed running-status '\037\002\220\001\002\003\004\005\006\300\007\010'
seed system-common '\037\003\361\001\362\002\003\363\004\366\364\005\365\006'
seed real-time '\037\204\370\220\372\001\373\002\374\376\377\371\375'
seed exclusive '\037\005\360\000\000\027\160\367'
seed exclusive-in-pieces '\003\006\360\001\002\003\004\005\006\007\010\011\367'
seed exclusive-exact '\003\201\360\001\002\367\360\003\004\367'
seed exclusive-with-real-time '\003\202\360\370\001\376\002\372\003\004\371\367'
seed exclusive-cut-off '\037\203\360\001\002\360\003\367\360\004\220\005\006'
seed exclusive-cut-off-in-pieces '\003\205\360\001\002\003\004\360\005\006\007\366\367'
seed stray-bytes '\037\001\001\002\177\367\367\003\360\367\004'
