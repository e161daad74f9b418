#!/usr/bin/env bash
# velcg-gen end to end: generates code for both shipped examples, builds the
# generated C, runs it and compares what it prints, checks the code
# descriptor, and checks the exit status and message of each kind of failure.
#
# Output directories change only as a whole: a failing run leaves them byte
# for byte as they were, and unchanged files keep their modification time.
#
#   check_velcg_gen.sh VELCG_GEN VELCG_DESCRIPTOR SOURCE_DIR
#
# Works in a temporary directory, removed on success and kept for
# inspection on failure.
set -uo pipefail

gen="$1"
descriptor="$2"
examples="$3/examples"
. "$(dirname "$0")/../support/check.sh" check_velcg_gen

# Runs a command; its status, standard output and error land in $status,
# $work/stdout and $work/stderr.
run() {
  "$@" >"$work/stdout" 2>"$work/stderr"
  status=$?
}

expect_status() { # expected-status what
  [ "$status" -eq "$1" ] || { fail "$2: exit status $status, expected $1; stderr:"; cat "$work/stderr"; }
}

# Runs a command, then checks its exit status and that its standard error
# holds each text: check STATUS WHAT [TEXT...] -- COMMAND...
check() {
  local expected="$1" what="$2" texts=()
  shift 2
  while [ "$1" != -- ]; do texts+=("$1"); shift; done
  shift
  run "$@"
  expect_status "$expected" "$what"
  for text in "${texts[@]}"; do expect_in "$work/stderr" "$text" "$what"; done
}

expect_in() { # file text what
  grep -qF -- "$2" "$1" || { fail "$3: $(basename "$1") lacks '$2'; it holds:"; cat "$1"; }
}

expect_output() { # expected what
  local actual
  actual=$(cat "$work/stdout")
  if [ "$actual" != "$1" ]; then
    fail "$2 printed:"
    printf '%s\nexpected:\n%s\n' "$actual" "$1"
  fi
}

# Names, sizes, modification times and contents of a directory's files.
snapshot() {
  (cd "$1" && find . -type f -printf '%p %s %T@ ' -exec sha1sum {} \; | sort)
}

expect_unchanged() { # directory snapshot-file what
  snapshot "$1" >"$work/now.snapshot"
  cmp -s "$2" "$work/now.snapshot" || { fail "$3 changed $1:"; diff "$2" "$work/now.snapshot"; }
}

compile() { # directory program sources...
  local dir="$1" program="$2"
  shift 2
  (cd "$dir" && cc -std=c99 -Wall -Wextra -Werror -o "$program" "$@") ||
    fail "the C generated in $dir does not compile"
}

check_descriptor() { # directory
  run "$descriptor" check "$1/codedescriptor.strata"
  expect_status 0 "velcg-descriptor check on $1"
}

# --- gain_model: the template writes every file itself.
out="$work/gain_model"
check 0 "velcg-gen --strict on gain_model" -- "$gen" --strict "$examples/gain_model/model.json" "$examples/gain_model/template.py" -o "$out"
expect_in "$work/stdout" "descriptor written (level 1, 5 blocks)" "velcg-gen on gain_model"
compile "$out" demo gain_model.c gain_model_main.c
run "$out/demo"
expect_output $'step 1: Out1 = 2\nstep 2: Out1 = 4\nstep 3: Out1 = 6\nstep 4: Out1 = 8\nstep 5: Out1 = 10' "gain_model"
# -D overrides the description's values.
run "$gen" "$examples/gain_model/model.json" "$examples/gain_model/template.py" -o "$out" -D steps=3 -D gain=0.5
compile "$out" demo gain_model.c gain_model_main.c
run "$out/demo"
expect_output $'step 1: Out1 = 0.5\nstep 2: Out1 = 1\nstep 3: Out1 = 1.5' "gain_model with -D"
check_descriptor "$out"

# --- sensor_bus: velcg-gen writes the files; level 4 adds systems and root inputs.
out="$work/sensor_bus"
check 0 "velcg-gen on sensor_bus" -- env VEL_FEATURE_VelCGDirectEmitSerialize=4 \
  "$gen" "$examples/sensor_bus/model.json" "$examples/sensor_bus/template.py" -o "$out"
for f in sensor_bus.h sensor_bus.c sensor_bus_types.h sensor_bus_main.c; do
  expect_in "$work/stdout" "wrote $out/$f" "velcg-gen on sensor_bus"
done
compile "$out" demo sensor_bus.c sensor_bus_main.c
run sh -c "printf '180 1\n200 2\n260 3\n300 5\n150 4\n' | '$out/demo'"
expect_output "step 1: temperature=9 exposure=0 status.level=1 status.mode=Low
step 2: temperature=14.5 exposure=9 status.level=2 status.mode=Low
step 3: temperature=20.25 exposure=23.5 status.level=3 status.mode=Normal
step 4: temperature=25.125 exposure=43.75 status.level=5 status.mode=High
step 5: temperature=20.0625 exposure=68.875 status.level=4 status.mode=Normal" "sensor_bus"
check_descriptor "$out"
check 0 "velcg-descriptor dump on sensor_bus" -- "$descriptor" dump "$out/codedescriptor.strata"
# Every record kind that a model's tree reaches. Region records are never
# referenced from it (ports record data interfaces, not regions).
for kind in Model System BlockHierarchyMap GraphicalSystem GraphicalBlock Port State BlockParameter \
  ModelParameter DataInterface ToAsyncQueueBlock ExternalInput IOMap CoderGroup; do
  grep -Eq "(^|[]:] )$kind\$" "$work/stdout" || fail "the sensor_bus descriptor dump shows no $kind record"
done

# The README's samples that query a store read this one as they say.
/usr/bin/python3 "$(dirname "$0")/check_readme_samples.py" "$examples/../README.md" "$out" ||
  fail "the README's descriptor samples"

# --- a second run: nothing changes, not even a modification time; --check agrees
snapshot "$out" >"$work/sensor_bus.snapshot"
check 0 "velcg-gen again on sensor_bus" -- env VEL_FEATURE_VelCGDirectEmitSerialize=4 \
  "$gen" "$examples/sensor_bus/model.json" "$examples/sensor_bus/template.py" -o "$out"
expect_output "velcg-gen: 0 file(s) written, 4 unchanged, 0 removed; descriptor unchanged (level 4, 15 blocks)" \
  "velcg-gen again on sensor_bus"
expect_unchanged "$out" "$work/sensor_bus.snapshot" "a second run"
# A check stages in the system's temporary directory and leaves nothing there.
mkdir "$work/tmp"
check 0 "velcg-gen --check on a current directory" -- env VEL_FEATURE_VelCGDirectEmitSerialize=4 \
  TMPDIR="$work/tmp" "$gen" --check "$examples/sensor_bus/model.json" "$examples/sensor_bus/template.py" -o "$out"
printf '/* edited */\n' >>"$out/sensor_bus.c"
snapshot "$out" >"$work/edited.snapshot"
check 1 "velcg-gen --check on an edited file" -- env VEL_FEATURE_VelCGDirectEmitSerialize=4 \
  TMPDIR="$work/tmp" "$gen" --check "$examples/sensor_bus/model.json" "$examples/sensor_bus/template.py" -o "$out"
expect_output "$out/sensor_bus.c would be written
velcg-gen: $out: out of date" "velcg-gen --check on an edited file"
expect_unchanged "$out" "$work/edited.snapshot" "velcg-gen --check"
[ -z "$(ls -A "$work/tmp")" ] || fail "velcg-gen --check left $(ls -A "$work/tmp") in the temporary directory"

# --- options reach the template; files of earlier runs that are no longer
# generated are removed, and nothing else
printf 'import os\nfor name, text in options.items():\n    open(os.path.join(outputDirectory, name), "w").write(text)\n' >"$work/options.py"
out="$work/options"
check 0 "velcg-gen with -D" -- "$gen" "$examples/gain_model/model.json" "$work/options.py" -o "$out" -D extra.txt=one -Dsecond.txt=a=b
[ "$(cat "$out/extra.txt")" = one ] && [ "$(cat "$out/second.txt")" = a=b ] || fail "-D did not reach the template"
touch "$out/mine.txt"
run "$gen" "$examples/gain_model/model.json" "$work/options.py" -o "$out" -D second.txt=a=b
expect_in "$work/stdout" "removed $out/extra.txt" "velcg-gen after a file is no longer generated"
[ ! -e "$out/extra.txt" ] && [ -e "$out/second.txt" ] && [ -e "$out/mine.txt" ] ||
  fail "velcg-gen removed the wrong files: $(ls "$out")"

# Manifests and descriptions naming files outside the output directory are
# refused: OutputDirectory_test.cpp and ModelDescriptionErrors_test.cpp.

# The depfile names what the template read, paths with spaces escaped.
mkdir -p "$work/odd dir"
printf 'def value():\n    return 1\n' >"$work/odd dir/helper_mod.py"
printf 'data\n' >"$work/odd dir/data #1.txt"
printf 'import sys\nsys.path.insert(0, %s)\nimport helper_mod\nopen(%s).read()\n' \
  "'$work/odd dir'" "'$work/odd dir/data #1.txt'" >"$work/reads.py"
check 0 "velcg-gen --depfile" -- "$gen" "$examples/gain_model/model.json" "$work/reads.py" -o "$work/reads" --depfile "$work/reads.d"
expect_in "$work/reads.d" "$work/reads/.velcg-gen-manifest:" "the depfile"
expect_in "$work/reads.d" "${work}/odd\ dir/helper_mod.py" "the depfile"
expect_in "$work/reads.d" "${work}/odd\ dir/data\ \#1.txt" "the depfile"
expect_in "$work/reads.d" "$examples/gain_model/model.json" "the depfile"
! grep -q "python3\.[0-9]*/os\.py" "$work/reads.d" || fail "the depfile names standard library modules"

# One run at a time: with --no-wait a second run fails naming the directory;
# a holder killed with SIGKILL leaves no lock behind.
mkdir "$work/locked"
flock --no-fork "$work/locked" sleep 30 &
holder=$!
sleep 0.3
check 1 "velcg-gen --no-wait into a locked directory" "Another run is generating into '$work/locked'" -- \
  "$gen" --no-wait "$examples/gain_model/model.json" "$work/options.py" -o "$work/locked"
kill -KILL "$holder"
wait "$holder" 2>/dev/null
check 0 "velcg-gen after the lock holder was killed" -- \
  "$gen" --no-wait "$examples/gain_model/model.json" "$work/options.py" -o "$work/locked"

# Inside a virtual environment (VIRTUAL_ENV) templates import its packages;
# this one renders the header's guard with Jinja2 (from the system's
# packages, which the environment includes) through the bridge.
/usr/bin/python3 -m venv --without-pip --system-site-packages "$work/venv"
site_dir=$(echo "$work"/venv/lib/python3*/site-packages)
printf 'GUARD = "{{ name | upper }}_H"\n' >"$site_dir/venv_guard.py"
cat >"$work/jinja.py" <<'EOF'
import jinja2
import velcg
import venv_guard

bridge = velcg.bridge(repository)
guard = jinja2.Template(venv_guard.GUARD).render(name=model.getName())
text = jinja2.Template("#ifndef {{ g }}\n#define {{ g }}\n").render(g=guard)
bridge.addSectionContent(0, "Includes", text)
bridge.addSectionContent(0, "Documentation", "#endif\n")
EOF
check 0 "velcg-gen in a virtual environment" -- \
  env VIRTUAL_ENV="$work/venv" "$gen" "$examples/gain_model/model.json" "$work/jinja.py" -o "$work/jinja"
expect_in "$work/jinja/gain_model.h" "#define GAIN_MODEL_H" "a Jinja2 template in a virtual environment"
check 1 "velcg-gen outside the virtual environment" "No module named 'venv_guard'" -- \
  "$gen" "$examples/gain_model/model.json" "$work/jinja.py" -o "$work/jinja"

# --- failures
check 2 "velcg-gen without arguments" "usage: velcg-gen MODEL.json TEMPLATE.py -o OUTDIR" -- "$gen"
check 2 "velcg-gen without -o" "velcg-gen: error: missing -o OUTDIR" -- \
  "$gen" "$examples/sensor_bus/model.json" "$examples/sensor_bus/template.py"
check 0 "velcg-gen --help" -- "$gen" --help
expect_in "$work/stdout" "--depfile FILE" "velcg-gen --help"
check 1 "velcg-gen with a switch that is no integer" "VEL_FEATURE_VelCGDirectEmitSerialize holds '7x', which is not an integer" -- \
  env VEL_FEATURE_VelCGDirectEmitSerialize=7x "$gen" "$examples/sensor_bus/model.json" "$examples/sensor_bus/template.py" -o "$work/switch"
check 0 "velcg-gen at level 0" -- env VEL_FEATURE_VelCGDirectEmitSerialize=0 \
  "$gen" "$examples/gain_model/model.json" "$examples/gain_model/template.py" -o "$work/level0"
expect_in "$work/stdout" "no descriptor (level 0)" "velcg-gen at level 0"
[ ! -e "$work/level0/codedescriptor.strata" ] || fail "velcg-gen wrote a descriptor at level 0"
touch "$work/afile"
check 1 "velcg-gen into a path through a file" \
  "velcg-gen: error: Cannot create the output directory '$work/afile/sub': Not a directory. [VelCG:Generation:CannotCreateDirectory]" -- \
  "$gen" "$examples/sensor_bus/model.json" "$examples/sensor_bus/template.py" -o "$work/afile/sub"

printf '{\n  "format": "velcg-model-description",\n  "formatVersion": 1,\n  "name": }\n' >"$work/bad.json"
check 1 "velcg-gen on malformed JSON" "$work/bad.json:4:11: not valid JSON" -- \
  "$gen" "$work/bad.json" "$examples/sensor_bus/template.py" -o "$work/bad"

# A template that raises after writing leaves the earlier outputs byte for byte.
printf 'import os\nopen(os.path.join(outputDirectory, "sensor_bus.h"), "w").write("half")\ndef fail():\n    raise RuntimeError("deliberate failure")\n\n\nfail()\n' >"$work/raises.py"
check 1 "velcg-gen with a template that raises" "File \"$work/raises.py\", line 4, in fail" \
  "RuntimeError: deliberate failure" -- "$gen" "$examples/sensor_bus/model.json" "$work/raises.py" -o "$work/sensor_bus"
expect_unchanged "$work/sensor_bus" "$work/edited.snapshot" "a template that raises"

cat >"$work/writes.py" <<'EOF'
import os

import velcg

bridge = velcg.bridge(repository)
bridge.addSectionContent(0, "Includes", "/* from the bridge */\n")
with open(os.path.join(outputDirectory, bridge.getStringAttribute(0, "Name")), "w") as f:
    f.write("/* written by the template */\n")
bridge.setAttribute(0, "WrittenToDisk", True)
# Placed but never retrieved: velcg-gen writes the file and warns.
bridge.addCustomSection(1, "Declarations", "Notes")
bridge.customContents(1).addContentToSection("Notes", "/* never retrieved */\n")
bridge.customContents(1).setCustomTokenInUse("Notes")
EOF
check 0 "velcg-gen with a template that writes a file" "velcg-gen: warning: Custom section 'Notes' of file" -- \
  "$gen" "$examples/sensor_bus/model.json" "$work/writes.py" -o "$work/writes"
if [ "$(cat "$work/writes/sensor_bus.h" 2>&1)" != "/* written by the template */" ]; then
  fail "velcg-gen wrote again the file the template wrote:"
  cat "$work/writes/sensor_bus.h"
fi
[ -e "$work/writes/sensor_bus.c" ] || fail "velcg-gen did not write the files the template left"
! grep -qF "never retrieved */" "$work/writes/"* || fail "velcg-gen wrote a custom section placed but never retrieved"

# Warnings name the file and the section; with --strict they fail the run,
# which leaves the output directory as it was.
cat >"$work/careless.py" <<'EOF'
import velcg

bridge = velcg.bridge(repository)
names = [bridge.getStringAttribute(i, "Name") for i in range(bridge.numberOfFiles)]
bridge.addSectionContent(names.index("sensor_bus_types.h"), "Functions", "void dropped(void);\n")
for i, name in enumerate(names):
    if name != "sensor_bus.c":
        bridge.addSectionContent(i, "Includes", "/* filled */\n")
EOF
dropped="20 byte(s) added to the Functions section of file 'sensor_bus_types.h' were dropped: a data-types file \
has no Functions section (its sections are Includes, Defines and Typedefs). [VelCG:VelCGFileContent:MissingSection]"
empty="File 'sensor_bus.c' was written empty: no text was added to any of its sections (set its attribute \
\"Filter\" to true to leave it unwritten). [VelCG:VelCGFile:WrittenEmpty]"
out="$work/careless"
check 0 "velcg-gen with warnings" "velcg-gen: warning: $dropped" "velcg-gen: warning: $empty" -- \
  "$gen" "$examples/sensor_bus/model.json" "$work/careless.py" -o "$out"
printf '/* edited */\n' >>"$out/sensor_bus.h"
snapshot "$out" >"$work/careless.snapshot"
check 1 "velcg-gen --strict with warnings" "velcg-gen: error: $dropped" "velcg-gen: error: $empty" -- \
  "$gen" --strict "$examples/sensor_bus/model.json" "$work/careless.py" -o "$out"
expect_unchanged "$out" "$work/careless.snapshot" "velcg-gen --strict with warnings"

# Faults met while writing the generated files: each run fails naming the
# file, and the output directory stays as it was. The descriptor is switched
# off where it would meet the fault first, or race with it: the first pass
# writes into the staging directory while the template runs.
printf 'import shutil\n\nshutil.rmtree(outputDirectory)\n' >"$work/vanishes.py"
check 1 "velcg-gen into a directory that vanished" \
  "velcg-gen: error: Cannot write the file '$work/vanished/sensor_bus.h': No such file or directory." -- \
  env VEL_FEATURE_VelCGDirectEmitSerialize=0 "$gen" "$examples/sensor_bus/model.json" "$work/vanishes.py" \
  -o "$work/vanished"

# A file size limit of 2 KiB (sensor_bus.c is larger), with SIGXFSZ ignored so that the write fails
# instead of killing the process.
out="$work/limited"
cp -a "$work/sensor_bus" "$out"
snapshot "$out" >"$work/limited.snapshot"
check 1 "velcg-gen under a file size limit" "velcg-gen: error: $out/sensor_bus.c: " "File too large." -- \
  bash -c 'trap "" XFSZ; ulimit -f 2; exec "$@"' limited env VEL_FEATURE_VelCGDirectEmitSerialize=0 \
  "$gen" "$examples/sensor_bus/model.json" "$examples/sensor_bus/template.py" -o "$out"
expect_unchanged "$out" "$work/limited.snapshot" "velcg-gen under a file size limit"

# A write-protected output directory; the superuser, whom permissions do not
# bind, runs velcg-gen as the user nobody (where nobody can reach the build
# and the example; the library's own tests cover the same fault in any case).
out="$work/protected"
mkdir -m 555 "$out"
as_user=()
if [ "$(id -u)" -eq 0 ]; then
  chmod 755 "$work"
  as_user=(setpriv --reuid=65534 --regid=65534 --clear-groups)
fi
if "${as_user[@]}" test -x "$gen" -a -r "$examples/sensor_bus/template.py" 2>/dev/null; then
  check 1 "velcg-gen into a write-protected directory" \
    "velcg-gen: error: Cannot create the staging directory '$out/.velcg-gen-staging': Permission denied." -- \
    "${as_user[@]}" env VEL_FEATURE_VelCGDirectEmitSerialize=0 \
    "$gen" "$examples/sensor_bus/model.json" "$examples/sensor_bus/template.py" -o "$out"
else
  echo "note: the user nobody cannot run $gen; the write-protected directory case is left out"
fi

finish "velcg-gen: both examples build and run, failures are reported"
