#!/usr/bin/env bash
# The main job: builds the library (optimised) and runs the example code
# generator, which compiles the model "gain_model" into C sources; then
# builds those sources and steps the generated model, and prints the code
# descriptor the generator wrote beside them.
#
#   scripts/run-example.sh [output-directory]    (default: build/example-output)
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
out="${1:-build/example-output}"

cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target velcg_example_codegen velcg_descriptor

rm -rf "$out"
build/release/examples/velcg_example_codegen "$out"

echo "== building the generated code"
cc -std=c99 -Wall -Wextra -Werror -o "$out/demo" "$out/gain_model.c" "$out/gain_model_main.c"
"$out/demo" 5 2

echo "== the code descriptor"
build/release/tools/velcg_descriptor dump "$out/codedescriptor.strata"
