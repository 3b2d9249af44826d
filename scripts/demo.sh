#!/bin/sh
# The main job: build the library and the tool, then run the demo.
# Usage: scripts/demo.sh [FOLDER]   (results go to FOLDER, default lumcv-demo)
set -eu
cd "$(dirname "$0")/.."
scripts/deps.sh build
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build --target lumcv
exec build/tools/lumcv demo "${1:-lumcv-demo}"
