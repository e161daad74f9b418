#!/usr/bin/env bash
# Soak: velcg-gen generates the larger shipped example RUNS times in one
# process. Every run must succeed, and resident memory may grow by at most
# MAX_GROWTH_MIB from run RUNS/10 to the last run (the first runs warm up
# caches and the allocator). Under AddressSanitizer the leak checker runs
# at exit; its quarantine of freed blocks is kept small so that it does not
# look like growth.
#
#   check_velcg_gen_soak.sh VELCG_GEN SOURCE_DIR RUNS MAX_GROWTH_MIB
set -uo pipefail

gen="$1"
example="$2/examples/sensor_bus"
runs="$3"
limit="$4"
work=$(mktemp -d "${TMPDIR:-/tmp}/check_velcg_gen_soak.XXXXXX")
export ASAN_OPTIONS="${ASAN_OPTIONS:+$ASAN_OPTIONS:}quarantine_size_mb=4"

"$gen" "$example/model.json" "$example/template.py" -o "$work/out" --repeat "$runs" >"$work/stdout" 2>"$work/stderr"
status=$?
cat "$work/stderr"
if [ "$status" -ne 0 ]; then
  echo "FAIL: exit status $status (output kept in $work)"
  exit 1
fi
# "velcg-gen: N runs; resident memory A MiB after run 1, B MiB after run K, C MiB after run N"
read -r first warm warm_run last < <(sed -n 's/.*resident memory \([0-9.]*\) MiB after run 1, \([0-9.]*\) MiB after run \([0-9]*\), \([0-9.]*\) MiB.*/\1 \2 \3 \4/p' "$work/stderr")
if [ -z "${last:-}" ]; then
  echo "FAIL: no memory report (output kept in $work)"
  exit 1
fi
if ! awk -v a="$warm" -v b="$last" -v l="$limit" 'BEGIN { exit !(b - a <= l) }'; then
  echo "FAIL: resident memory grew from $warm MiB after run $warm_run to $last MiB after run $runs," \
    "more than $limit MiB (output kept in $work)"
  exit 1
fi
echo "soak: $runs runs; resident $first MiB after run 1, $warm MiB after run $warm_run, $last MiB after run $runs" \
  "(growth from run $warm_run to run $runs at most $limit MiB)"
rm -rf "$work"
