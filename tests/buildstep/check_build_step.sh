#!/usr/bin/env bash
# Generation as a build step of a user's project, against an installed
# package, with Ninja and an empty environment:
#   1. a clean build generates, compiles and runs both examples;
#   2. a second build runs no command;
#   3. after touching a template (same bytes) the generator runs, and no
#      compiler does;
#   4. after changing one block of a description, exactly the files whose
#      bytes changed are rewritten, and only what includes them recompiles.
#
#   check_build_step.sh PREFIX SOURCE_DIR
#
# Works in a temporary directory, removed on success and kept on failure.
set -uo pipefail

prefix="$1"
source_dir="$2"
. "$(dirname "$0")/../support/check.sh" check_build_step
clean_env=(env -i PATH=/usr/bin:/bin HOME="$work")

project="$work/project"
mkdir -p "$project"
cp "$source_dir/tests/buildstep/CMakeLists.txt" "$project/"
cp -r "$source_dir/examples/gain_model" "$source_dir/examples/sensor_bus" "$project/"
rm -f "$project"/*/README.md
build="$work/build"

build_log() { # name: builds, the log in $work/NAME.log
  "${clean_env[@]}" ninja -C "$build" >"$work/$1.log" 2>&1 || { fail "build $1:"; cat "$work/$1.log"; }
}
count() { # pattern log
  grep -c -- "$1" "$work/$2.log"
}

"${clean_env[@]}" cmake -S "$project" -B "$build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >"$work/configure.log" 2>&1 ||
  { fail "configure:"; cat "$work/configure.log"; }

# Into a file first: under pipefail, grep -q quitting early would let ninja
# die of SIGPIPE and fail the pipeline at random.
"${clean_env[@]}" ninja -C "$build" -t commands >"$work/commands.txt"
grep -q -- "velcg-gen .* --strict" "$work/commands.txt" ||
  fail "velcg_generate(... STRICT) does not run velcg-gen --strict"

# 1. A clean build, and the programs it made.
build_log clean
[ "$(count "Generating" clean)" -eq 2 ] || fail "the clean build did not generate both examples"
out=$("$build/gain_model_demo")
[ "$out" = $'step 1: Out1 = 0.5\nstep 2: Out1 = 1\nstep 3: Out1 = 1.5' ] || fail "gain_model_demo printed: $out"
out=$(printf '180 1\n200 2\n' | "$build/sensor_bus_demo")
[ "$out" = $'step 1: temperature=9 exposure=0 status.level=1 status.mode=Low\nstep 2: temperature=14.5 exposure=9 status.level=2 status.mode=Low' ] ||
  fail "sensor_bus_demo printed: $out"

# 2. Nothing to do.
build_log again
grep -q "ninja: no work to do." "$work/again.log" || { fail "a second build ran commands:"; cat "$work/again.log"; }

# 3. A touched template: generation only.
sleep 1.1
touch "$project/sensor_bus/template.py"
build_log touched
[ "$(count "Generating sensor_bus_code" touched)" -eq 1 ] || fail "touching the template did not run the generator"
[ "$(count "Building C object" touched)" -eq 0 ] || { fail "touching the template recompiled:"; cat "$work/touched.log"; }
build_log touched_again
grep -q "ninja: no work to do." "$work/touched_again.log" || fail "the build after the touched template ran commands"

# 4. One block changed: its two limits read each other's model parameter.
code="$build/sensor_bus_code"
cp -r "$code" "$work/before"
find "$code" -type f -printf '%P %T@\n' | sort >"$work/mtimes.before"
sleep 1.1
python3 - "$project/sensor_bus/model.json" <<'PY'
import sys
path = sys.argv[1]
text = open(path).read()
lower = '"name": "Lower",\n                "modelParameters": [2]'
upper = '"name": "Upper",\n                "modelParameters": [3]'
assert text.count(lower) == 1 and text.count(upper) == 1
text = text.replace(lower, lower[:-2] + "3]").replace(upper, upper[:-2] + "2]")
open(path, "w").write(text)
PY
build_log changed
find "$code" -type f -printf '%P %T@\n' | sort >"$work/mtimes.after"
rewritten=$(comm -13 "$work/mtimes.before" "$work/mtimes.after" | cut -d' ' -f1 | sort | tr '\n' ' ')
differing=$(for f in "$code"/* "$code"/.velcg-gen-manifest; do
  cmp -s "$f" "$work/before/$(basename "$f")" || basename "$f"
done | sort | tr '\n' ' ')
[ "$rewritten" = "$differing" ] || fail "rewritten: '$rewritten', but bytes changed in: '$differing'"
case "$differing" in *sensor_bus.c*) ;; *) fail "the changed block did not change sensor_bus.c ($differing)" ;; esac
compiled=$(grep -o "Building C object [^ ]*" "$work/changed.log" | sed 's|.*/||; s|\.o$||' | sort | tr '\n' ' ')
expected=$(for f in $differing; do case "$f" in *.c) echo "$f" ;; esac; done | sort | tr '\n' ' ')
[ "$compiled" = "$expected" ] || fail "recompiled '$compiled', expected '$expected'"

finish "build step: clean, no-op, touched and changed builds behave"
