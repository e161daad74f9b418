#!/usr/bin/env bash
# Builds the libFuzzer targets (preset "fuzz": clang, AddressSanitizer and
# UndefinedBehaviorSanitizer) and runs each for SECONDS (default 60) on a
# copy of its checked-in seed corpus under fuzz/corpus/. New inputs stay in
# the copy (build/fuzz/corpus/<name>); each target's progress goes to
# build/fuzz/logs/<target>.log and one summary line to the terminal.
# Crashes, leaks and timeouts are saved to build/fuzz/artifacts/, their
# report is printed, and they make the script fail.
#   scripts/fuzz.sh [SECONDS]
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-60}
jobs=$(nproc)

scripts/install-deps.sh
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$jobs"

# target binary : corpus folder
targets=(
  velcg_fuzz_model_description:model_description
  velcg_fuzz_text:text
  velcg_fuzz_bridge:bridge
  velcg_fuzz_client:client
  velcg_fuzz_store:store
)

export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
artifacts=build/fuzz/artifacts
logs=build/fuzz/logs
mkdir -p "$artifacts" "$logs"
failed=()
for entry in "${targets[@]}"; do
  binary=build/fuzz/fuzz/${entry%%:*}
  corpus=${entry#*:}
  [ -x "$binary" ] || { echo "fuzz: $binary was not built" >&2; exit 1; }
  work=build/fuzz/corpus/$corpus
  rm -rf "$work"
  mkdir -p "$work"
  cp -R "fuzz/corpus/$corpus/." "$work/"
  name=$(basename "$binary")
  log=$logs/$name.log
  if "$binary" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="$artifacts/$name-" "$work" >"$log" 2>&1; then
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    added=$(sed -n 's/^stat::new_units_added: *//p' "$log")
    echo "fuzz: $name: ${seconds} s, ${runs:-?} inputs run, ${added:-?} new, no findings ($log)"
  else
    failed+=("$name")
    echo "fuzz: $name: FINDING ($log):"
    grep -n -m1 -A40 -E '^==[0-9]+==|runtime error|ERROR: libFuzzer|Test unit written' "$log" || tail -n 40 "$log"
  fi
done

if [ ${#failed[@]} -ne 0 ]; then
  echo "fuzz: findings in ${failed[*]} (see $artifacts)" >&2
  exit 1
fi
echo "fuzz: no findings"
