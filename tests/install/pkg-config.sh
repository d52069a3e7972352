#!/bin/sh
# Builds each of a folder's C programs with what pkg-config says about the installed libraries.
# pkg-config.sh PREFIX LIBDIR SOURCES PROGRAMS COMPILER [FLAG...]
set -e
libdir=$1/$2 sources=$3 programs=$4
shift 4
PKG_CONFIG_LIBDIR=$libdir/pkgconfig
export PKG_CONFIG_LIBDIR
mkdir -p "$programs"
for source in "$sources"/*.c; do
  # shellcheck disable=SC2046 # the flags are separate words
  "$@" -std=c99 "$source" -o "$programs/$(basename "$source" .c)" $(pkg-config --static --cflags --libs nadirground) \
    -Wl,-rpath,"$libdir"
done
