#!/usr/bin/env bash
# Runs the example generator, builds what it wrote with a C compiler and
# checks the generated model's output.
set -euo pipefail
generator="$1"
out="$2"
rm -rf "$out"
"$generator" "$out"
for f in gain_model.h gain_model.c gain_model_types.h gain_model_main.c; do
  [ -s "$out/$f" ] || { echo "missing $out/$f"; exit 1; }
done
cc -std=c99 -Wall -Wextra -Werror -o "$out/demo" "$out/gain_model.c" "$out/gain_model_main.c"
result=$("$out/demo")
expected=$'step 1: Out1 = 0.5\nstep 2: Out1 = 1\nstep 3: Out1 = 1.5'
if [ "$result" != "$expected" ]; then
  printf 'generated model printed:\n%s\nexpected:\n%s\n' "$result" "$expected"
  exit 1
fi
echo "generated code builds and steps correctly"
