#!/usr/bin/env bash
# velcg-gen's warnings as a template author reads them, and --strict: text
# added to a section a file lacks and a file left empty are reported with the
# file and the section; with --strict the same run fails with exit status 1
# and leaves the output directory byte for byte as it was.
#
#   check_velcg_gen_strict.sh VELCG_GEN SOURCE_DIR
#
# Works in a temporary directory, removed on success and kept on failure.
set -uo pipefail

gen="$1"
example="$2/examples/sensor_bus"
work=$(mktemp -d "${TMPDIR:-/tmp}/check_velcg_gen_strict.XXXXXX")
failures=0
fail() {
  echo "FAIL: $*"
  failures=$((failures + 1))
}
run() {
  "$@" >"$work/stdout" 2>"$work/stderr"
  status=$?
}
expect_status() { # expected-status what
  [ "$status" -eq "$1" ] || { fail "$2: exit status $status, expected $1; stderr:"; cat "$work/stderr"; }
}
expect_in() { # file text what
  grep -qF -- "$2" "$1" || { fail "$3: $(basename "$1") lacks '$2'; it holds:"; cat "$1"; }
}
snapshot() {
  (cd "$1" && find . -type f -printf '%p %s %T@ ' -exec sha1sum {} \; | sort)
}

cat >"$work/careless.py" <<'PY'
import velcg

bridge = velcg.bridge(repository)
names = [bridge.getStringAttribute(i, "Name") for i in range(bridge.numberOfFiles)]
bridge.addSectionContent(names.index("sensor_bus_types.h"), "Functions", "void dropped(void);\n")
for i, name in enumerate(names):
    if name != "sensor_bus.c":
        bridge.addSectionContent(i, "Includes", "/* filled */\n")
PY
dropped="20 byte(s) added to the Functions section of file 'sensor_bus_types.h' were dropped: a data-types file \
has no Functions section (its sections are Includes, Defines and Typedefs). [VelCG:VelCGFileContent:MissingSection]"
empty="File 'sensor_bus.c' was written empty: no text was added to any of its sections (set its attribute \
\"Filter\" to true to leave it unwritten). [VelCG:VelCGFile:WrittenEmpty]"

out="$work/out"
run "$gen" "$example/model.json" "$work/careless.py" -o "$out"
expect_status 0 "velcg-gen with warnings"
expect_in "$work/stderr" "velcg-gen: warning: $dropped" "velcg-gen with warnings"
expect_in "$work/stderr" "velcg-gen: warning: $empty" "velcg-gen with warnings"

printf '/* edited */\n' >>"$out/sensor_bus.h"
snapshot "$out" >"$work/before"
run "$gen" --strict "$example/model.json" "$work/careless.py" -o "$out"
expect_status 1 "velcg-gen --strict with warnings"
expect_in "$work/stderr" "velcg-gen: error: $dropped" "velcg-gen --strict with warnings"
expect_in "$work/stderr" "velcg-gen: error: $empty" "velcg-gen --strict with warnings"
snapshot "$out" >"$work/after"
cmp -s "$work/before" "$work/after" || { fail "velcg-gen --strict changed $out:"; diff "$work/before" "$work/after"; }

run "$gen" --strict "$example/model.json" "$example/template.py" -o "$out"
expect_status 0 "velcg-gen --strict without warnings"

if [ "$failures" -ne 0 ]; then
  echo "$failures check(s) failed; files kept in $work"
  exit 1
fi
rm -rf "$work"
echo "velcg-gen: warnings name the file and the section; --strict fails on them"
