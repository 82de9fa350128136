#!/usr/bin/env bash
# Installs a build into a prefix of its own, builds the agent and the observer against it with
# find_package( mrp ) and with pkg-config, and runs them; then the installed command.
# Environment: CMAKE, BUILD (the build folder), CXX and CXXFLAGS (those of that build).
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# Not the prefix that the build was configured for: the installed tree may be moved.
prefix=$work/prefix

"$CMAKE" --install "$BUILD" --prefix "$prefix" > "$work/install.log" || {
   cat "$work/install.log"
   exit 1
}
libdir=$(dirname "$(find "$prefix" -name 'libmrp.*' -print -quit)")
export LD_LIBRARY_PATH=$libdir

echo "by find_package"
"$CMAKE" -S "$here" -B "$work/built" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
   -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_CXX_FLAGS="$CXXFLAGS"
"$CMAKE" --build "$work/built"
"$work/built/agent"
"$work/built/observer"

echo "by pkg-config"
export PKG_CONFIG_PATH=$libdir/pkgconfig
for program in agent:mrp observer:mrp-observer; do
   flags=$(pkg-config --cflags --libs "${program#*:}")
   # shellcheck disable=SC2086
   "$CXX" -std=c++20 $CXXFLAGS "$here/${program%:*}.cpp" $flags -o "$work/program"
   "$work/program"
done

if [ -e "$BUILD/bin/mrp" ]; then
   echo "the command"
   "$prefix/bin/mrp" -h > /dev/null
fi
