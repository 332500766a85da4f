#!/bin/sh
# Installs the build in BUILD_DIR into a scratch prefix and builds and runs
# SOURCE against it with `pkg-config --cflags --libs talvo` only.
set -eu
build_dir=$1
source=$2
work=$(mktemp -d "${TMPDIR:-/tmp}/talvo-consumer.XXXXXX")
trap 'rm -rf "$work"' EXIT

cmake --install "$build_dir" --prefix "$work/prefix" > "$work/install.log"
libdir=$(ls -d "$work"/prefix/lib*/pkgconfig | head -n 1)
export PKG_CONFIG_PATH="$libdir"
flags=$(pkg-config --cflags --libs talvo)
# shellcheck disable=SC2086
clang -o "$work/consumer" "$source" $flags
"$work/consumer"
# The framework's resources are found from the installed library.
# shellcheck disable=SC2086
clang -o "$work/resources" "$(dirname "$0")/resources.m" $flags
"$work/resources"
