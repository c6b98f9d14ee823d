# Sourced by the scripts beside it: what the project needs from Debian 12, and how they talk.
# shellcheck shell=bash
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# To build the library and the command.
build_packages=(
  ccache
  cmake
  flatbuffers-compiler
  g++-12
  libcli11-dev
  libfast-float-dev
  libflatbuffers-dev
  libfmt-dev
  libhdf5-dev # the export of grids
  ninja-build
  nlohmann-json3-dev
)
# To run every check as well.
test_packages=(
  "${build_packages[@]}"
  clang-14
  clang-format-14
  libclang-rt-14-dev # sanitizers and the fuzzer's main loop
  libgmock-dev
  libgtest-dev
  llvm-14 # llvm-symbolizer: function names in what the sanitizers report
  python3
  python3-vtk9 # reads exported grids back; the largest by far: 50 MB to fetch, 245 MB on the disk
  pkg-config   # a host that is built by it
  zsh          # completion is tested in it too
)
# Arrow's own reader and a database, which read back what we write; for node, from npm's registry.
node_packages=(apache-arrow@21.2.0 @duckdb/node-api@1.5.6-r.1)
tidy_packages=("${test_packages[@]}" clang-tidy-14 clang-tools-14)

jobs=$(nproc)

# Says what comes next, with the seconds since the start.
step() { printf '\n== [%3d s] %s\n' "$SECONDS" "$*"; }

# Installs those of the packages that are missing. Nothing is asked of the network when all are there.
need() {
  local missing=() package
  for package in "$@"; do
    [[ $(dpkg-query -W -f='${Status}' "$package" 2>/dev/null) == *' installed' ]] || missing+=("$package")
  done
  ((${#missing[@]})) || return 0
  if ! command -v apt-get >/dev/null; then
    echo "This is not Debian, so nothing is installed. Wanted are: ${missing[*]}" >&2
    return 0
  fi
  step "Installing ${missing[*]}"
  local as_root=()
  if ((EUID != 0)); then as_root=(sudo); fi
  "${as_root[@]}" apt-get update -q
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -q -y --no-install-recommends "${missing[@]}"
}

# Installs node, unless some node with npm is there, and the node packages in build-node.
need_node() {
  command -v npm >/dev/null || need nodejs npm
  [[ $(cat build-node/installed 2>/dev/null) != "${node_packages[*]}" ]] || return 0
  step "Installing ${node_packages[*]}"
  mkdir -p build-node
  npm install --prefix build-node --no-save --no-package-lock --no-audit --no-fund "${node_packages[@]}"
  echo "${node_packages[*]}" >build-node/installed
}

# All C++ sources, as they lie in the work tree.
sources() { find . -path './build*' -prune -o -type f \( -name '*.h' -o -name '*.cpp' \) -print | sort; }

# The list of the headers that hosts include, by their place in src/, each on a line of its own.
public_headers() { sed -n 's/^  \([^ )]*\.h\))\{0,1\}$/\1/p' cmake/PublicHeaders.cmake; }

export ASAN_SYMBOLIZER_PATH=/usr/bin/llvm-symbolizer-14
