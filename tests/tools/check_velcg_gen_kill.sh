#!/usr/bin/env bash
# velcg-gen killed with SIGKILL at points spread over every phase of a run
# (loading, the first serialization pass, the template, writing, the second
# pass), at switch levels 1 and 2. After each kill the output directory
# holds either the complete outputs of the run before or the complete new
# ones (the staging directory aside), and the next run leaves exactly the
# new ones with no staging directory.
#
#   check_velcg_gen_kill.sh VELCG_GEN SOURCE_DIR [BLOCKS]
set -uo pipefail

gen="$1"
source_dir="$2"
blocks="${3:-20000}"
. "$(dirname "$0")/../support/check.sh" check_velcg_gen_kill

# Names and contents of the files a directory holds, its staging directory aside.
snapshot() {
  (cd "$1" && find . -path ./.velcg-gen-staging -prune -o -type f -print0 | sort -z | xargs -0 -r sha1sum)
}

python3 "$source_dir/bench/make_description.py" "$blocks" -o "$work/old.json"
python3 "$source_dir/bench/make_description.py" "$((blocks + 1))" -o "$work/new.json"
template="$source_dir/bench/chain_template.py"
for level in 1 2; do
  VEL_FEATURE_VelCGDirectEmitSerialize=$level "$gen" "$work/old.json" "$template" -o "$work/old$level" -q ||
    fail "generating the old model"
  VEL_FEATURE_VelCGDirectEmitSerialize=$level "$gen" "$work/new.json" "$template" -o "$work/new$level" -q \
    --times 2>"$work/times$level" || fail "generating the new model"
  snapshot "$work/old$level" >"$work/old$level.sum"
  snapshot "$work/new$level" >"$work/new$level.sum"
done

# Kill points in milliseconds: the middle of each phase as --times measured
# it (at level 2 the passes run on their own, half of "serialize" each),
# and points spread evenly over the whole run.
points() { # level
  read -r load tmpl write serialize < <(sed -n 's/.*load \([0-9.]*\) s, template \([0-9.]*\) s, write \([0-9.]*\) s, serialize \([0-9.]*\) s.*/\1 \2 \3 \4/p' "$work/times$1")
  python3 - "$load" "$tmpl" "$write" "$serialize" <<'PY'
import sys
load, tmpl, write, ser = (float(x) * 1000 for x in sys.argv[1:])
pass1 = ser / 2
bounds = [load, pass1, tmpl, write, ser - pass1]
start, mids = 0.0, []
for length in bounds:
    mids.append(start + length / 2)
    start += length
total = start
mids += [total * k / 8 for k in range(1, 8)]
print(" ".join(str(int(m)) for m in mids))
PY
}

kills=0
for level in 1 2; do
  for ms in $(points $level); do
    out="$work/run"
    rm -rf "$out"
    cp -a "$work/old$level" "$out"
    VEL_FEATURE_VelCGDirectEmitSerialize=$level "$gen" "$work/new.json" "$template" -o "$out" -q &
    pid=$!
    sleep "$(awk -v m="$ms" 'BEGIN { printf "%.3f", m / 1000 }')"
    kill -KILL "$pid" 2>/dev/null
    wait "$pid" 2>/dev/null
    kills=$((kills + 1))
    snapshot "$out" >"$work/run.sum"
    if ! cmp -s "$work/run.sum" "$work/old$level.sum" && ! cmp -s "$work/run.sum" "$work/new$level.sum"; then
      fail "killed after $ms ms at level $level: the directory is neither the old nor the new outputs:"
      diff "$work/old$level.sum" "$work/run.sum"
    fi
    VEL_FEATURE_VelCGDirectEmitSerialize=$level "$gen" "$work/new.json" "$template" -o "$out" -q ||
      fail "the run after a kill at $ms ms failed"
    snapshot "$out" >"$work/run.sum"
    cmp -s "$work/run.sum" "$work/new$level.sum" || fail "the run after a kill at $ms ms left other outputs"
    [ ! -e "$out/.velcg-gen-staging" ] || fail "the run after a kill at $ms ms left its staging directory"
  done
done

finish "velcg-gen killed $kills times: each time the old or the new outputs, then the new ones"
