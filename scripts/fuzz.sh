#!/usr/bin/env bash
# Builds the libFuzzer targets (preset "fuzz": clang, AddressSanitizer and
# UndefinedBehaviorSanitizer) and runs each for SECONDS (default 60) on a
# copy of its checked-in seed corpus under fuzz/corpus/. New inputs stay in
# the copy (build/fuzz/corpus/<name>); crashes, leaks and timeouts are saved
# to build/fuzz/artifacts/ and make the script fail.
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
mkdir -p "$artifacts"
failed=()
for entry in "${targets[@]}"; do
  binary=build/fuzz/fuzz/${entry%%:*}
  corpus=${entry#*:}
  [ -x "$binary" ] || { echo "fuzz: $binary was not built" >&2; exit 1; }
  work=build/fuzz/corpus/$corpus
  rm -rf "$work"
  mkdir -p "$work"
  cp -R "fuzz/corpus/$corpus/." "$work/"
  echo "== $(basename "$binary") for ${seconds}s"
  if ! "$binary" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="$artifacts/$(basename "$binary")-" "$work"; then
    failed+=("$(basename "$binary")")
  fi
done

if [ ${#failed[@]} -ne 0 ]; then
  echo "fuzz: findings in ${failed[*]} (see $artifacts)" >&2
  exit 1
fi
echo "fuzz: no findings"
