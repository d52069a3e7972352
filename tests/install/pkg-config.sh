#!/bin/sh
# Builds a C program with what pkg-config says about the installed library, and runs it.
# pkg-config.sh PREFIX LIBDIR SOURCE PROGRAM EMULATOR COMPILER [FLAG...]
set -e
libdir=$1/$2 source=$3 program=$4 emulator=$5
shift 5
PKG_CONFIG_LIBDIR=$libdir/pkgconfig
export PKG_CONFIG_LIBDIR
# shellcheck disable=SC2046 # the flags are separate words
"$@" -std=c99 "$source" -o "$program" $(pkg-config --static --cflags --libs nadir) -Wl,-rpath,"$libdir"
# shellcheck disable=SC2086 # so are the emulator's
$emulator "$program"
