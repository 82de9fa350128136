# shellcheck shell=bash disable=SC2034
# What the scripts of this folder share. They source it, and stand in the repository's root
# from then on.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
mkdir -p build/log

build_packages=( g++ cmake ninja-build pkg-config libpcap-dev libcli11-dev nlohmann-json3-dev
   libtomlplusplus-dev libmicrohttpd-dev )
# What the presets build unless told otherwise, tests and benchmark included.
preset_packages=( "${build_packages[@]}" libgtest-dev libgmock-dev libbenchmark-dev python3 )
demo_packages=( iproute2 python3 tcpdump )
test_packages=( iproute2 tshark )
clang_packages=( clang libclang-rt-14-dev )
format_packages=( clang-format )

if command -v ccache > /dev/null; then
   export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi

# The command or the header that shows, on any system, that a package of Debian's is there.
proof() {
   case $1 in
      ninja-build) echo ninja ;;
      iproute2) echo ip ;;
      clang) echo clang++ ;;
      libpcap-dev) echo pcap/pcap.h ;;
      libcli11-dev) echo CLI/CLI.hpp ;;
      nlohmann-json3-dev) echo nlohmann/json.hpp ;;
      libtomlplusplus-dev) echo toml++/toml.h ;;
      libmicrohttpd-dev) echo microhttpd.h ;;
      libgtest-dev) echo gtest/gtest.h ;;
      libgmock-dev) echo gmock/gmock.h ;;
      libbenchmark-dev) echo benchmark/benchmark.h ;;
      libclang-rt-14-dev)
         echo "$(clang++ -print-resource-dir)/lib/linux/libclang_rt.fuzzer-$(uname -m).a" ;;
      *) echo "$1" ;;
   esac
}

present() {
   local state sign
   state=$(dpkg-query -W -f '${db:Status-Status}' "$1" 2> /dev/null) || state=none
   [ "$state" != installed ] || return 0
   sign=$(proof "$1" 2> /dev/null)
   case $sign in
      /*) [ -e "$sign" ] ;;
      *.h | *.hpp) [ -e "/usr/include/$sign" ] || [ -e "/usr/local/include/$sign" ] ;;
      # PATH of a plain user may lack the folders of ip and its like.
      *) PATH=$PATH:/usr/sbin:/sbin command -v "$sign" > /dev/null ;;
   esac
}

# need PACKAGE...: installs those that are missing, or says in one line that it cannot.
need() {
   local package missing=() as_root=( env )
   for package; do
      present "$package" || missing+=( "$package" )
   done
   [ ${#missing[@]} -gt 0 ] || return 0

   [ "$(id -u)" = 0 ] || as_root=( sudo env )
   if ! command -v apt-get > /dev/null || ! command -v "${as_root[0]}" > /dev/null; then
      echo "cannot install what is missing (it takes apt-get, and root or sudo): ${missing[*]}" >&2
      exit 1
   fi
   echo "installing ${missing[*]}"
   as_root+=( DEBIAN_FRONTEND=noninteractive apt-get -q -y -o DPkg::Lock::Timeout=300 )
   # A list of packages that cannot be brought up to date may still do.
   "${as_root[@]}" update > build/log/apt-update 2>&1 || true
   logged apt-install "${as_root[@]}" install --no-install-recommends "${missing[@]}" || {
      echo "cannot install what is missing: ${missing[*]}" >&2
      exit 1
   }
}

# logged NAME COMMAND...: runs it with its output in build/log/NAME, of which the end is
# shown if it fails.
logged() {
   local log=build/log/$1
   shift
   "$@" > "$log" 2>&1 || {
      local status=$?
      tail -n 60 "$log" >&2
      echo "failed, all of it in $log: $*" >&2
      return $status
   }
}
