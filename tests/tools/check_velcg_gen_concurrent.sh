#!/usr/bin/env bash
# Pairs of velcg-gen runs started at once into one output directory, of two
# different models and of the same model: runs take turns, and each pair
# ends with a descriptor that describes exactly one run's model with that
# model's coder groups, each once.
#
#   check_velcg_gen_concurrent.sh VELCG_GEN VELCG_DESCRIPTOR SOURCE_DIR PAIRS
set -uo pipefail

gen="$1"
descriptor="$2"
examples="$3/examples"
pairs="$4"
. "$(dirname "$0")/../support/check.sh" check_velcg_gen_concurrent

generate() { # example directory
  "$gen" "$examples/$1/model.json" "$examples/$1/template.py" -o "$2" -q 2>>"$work/stderr"
}

# "MODEL GROUP,GROUP,..." of a descriptor.
describe() {
  "$descriptor" dump --json "$1" | python3 -c '
import json, sys
model = json.load(sys.stdin)
print(model["ModelName"], ",".join(g["Name"] for g in model["CoderGroups"]))'
}

expected=()
for example in gain_model sensor_bus; do
  generate "$example" "$work/$example" || fail "generating $example alone"
  expected+=("$(describe "$work/$example/codedescriptor.strata")")
done

for ((i = 1; i <= pairs; i++)); do
  for second in sensor_bus gain_model; do
    out="$work/shared"
    rm -rf "$out"
    generate gain_model "$out" &
    first_pid=$!
    generate "$second" "$out" || fail "pair $i: the $second run failed"
    wait "$first_pid" || fail "pair $i: the gain_model run failed"
    "$descriptor" check "$out/codedescriptor.strata" >/dev/null || fail "pair $i: the descriptor does not check out"
    got=$(describe "$out/codedescriptor.strata")
    [ "$got" = "${expected[0]}" ] || [ "$got" = "${expected[1]}" ] ||
      fail "pair $i (gain_model and $second): the descriptor describes '$got'"
  done
done
if [ -s "$work/stderr" ]; then
  fail "the runs reported:"
  cat "$work/stderr"
fi

finish "velcg-gen: $pairs pairs of concurrent runs of two models and of one, each a descriptor of one run"
