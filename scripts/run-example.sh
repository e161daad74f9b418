#!/usr/bin/env bash
# The main job: builds the library and its tools (optimised), then runs
# velcg-gen on the shipped example examples/gain_model (its model
# description model.json and its Python template template.py), builds the
# generated C and steps the generated model, and prints the code descriptor
# velcg-gen wrote beside the sources.
#
#   scripts/run-example.sh [output-directory]    (default: build/example-output)
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
out="${1:-build/example-output}"

cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target velcg_gen velcg_descriptor

rm -rf "$out"
build/release/tools/velcg-gen examples/gain_model/model.json examples/gain_model/template.py -o "$out"

echo "== building the generated code"
cc -std=c99 -Wall -Wextra -Werror -o "$out/demo" "$out/gain_model.c" "$out/gain_model_main.c"
"$out/demo"

echo "== the code descriptor"
build/release/tools/velcg-descriptor dump "$out/codedescriptor.strata"
