#!/usr/bin/env bash
# Builds and runs every test:
#   1. the layout of every C++ file of the tree against .clang-format;
#   2. an optimised build, installed into a prefix inside the build tree,
#      then run from there with an empty environment: a separate consumer
#      project built against that install with find_package(velcg), one of
#      its programs running a Python template; the installed tools, velcg-gen
#      generating both examples; the installed module; a project generating
#      both examples as a build step (velcg_generate) that rebuilds only what
#      changed; velcg-gen generating the larger example 1,000 times in one
#      process with flat resident memory; 100 pairs of velcg-gen runs into
#      one directory at once;
#   3. the whole suite under ThreadSanitizer (the tests labelled "threads"
#      start threads of their own; the rest check that nothing else races);
#   4. the whole suite under AddressSanitizer and UndefinedBehaviorSanitizer;
#   5. every libFuzzer target for 60 seconds on its checked-in corpus
#      (scripts/fuzz.sh), failing on any finding.
# The presets of steps 2 to 4 treat compiler warnings as errors.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
jobs=$(nproc)

# Each phase prints its name when it starts and its time when the next one
# starts; the last line gives the whole time.
phase_name=""
phase_start=$SECONDS
phase() { # name, or nothing at the end
  if [ -n "$phase_name" ]; then echo "== $phase_name: done in $((SECONDS - phase_start)) s"; fi
  phase_name=${1:-}
  phase_start=$SECONDS
  if [ -n "$phase_name" ]; then echo "== $phase_name"; fi
}

phase "format check"
mapfile -d '' sources < <(find . \( -path ./build -o -path ./install -o -path ./.git \) -prune -o \
  -type f \( -name '*.cpp' -o -name '*.hpp' -o -name '*.c' -o -name '*.h' \) -print0 | sort -z)
clang-format --dry-run --Werror "${sources[@]}"
echo "format check: ${#sources[@]} files"

phase "install and consumer check"
cmake --preset release >/dev/null
cmake --build --preset release -j "$jobs"
rm -rf build/install build/consumer build/install-check
cmake --install build/release --prefix "$PWD/build/install" >/dev/null
# Every installed header lies under include/velcg.
stray=$(find build/install/include -mindepth 1 -maxdepth 1 ! -name velcg)
if [ -n "$stray" ]; then
  echo "install: outside include/velcg: $stray" >&2
  exit 1
fi
# Everything installed runs from the prefix with an empty environment: no
# LD_LIBRARY_PATH, no PYTHONPATH beyond the module's own folder.
clean_env=(env -i PATH=/usr/bin:/bin)
"${clean_env[@]}" cmake -S tests/consumer -B build/consumer -G Ninja -DCMAKE_PREFIX_PATH="$PWD/build/install" >/dev/null
"${clean_env[@]}" cmake --build build/consumer -j "$jobs"
"${clean_env[@]}" build/consumer/velcg_consumer
"${clean_env[@]}" build/consumer/velcg_python_consumer
for tool in velcg-gen velcg-inspect velcg-descriptor; do
  "${clean_env[@]}" "build/install/bin/$tool" --help >/dev/null
  "${clean_env[@]}" "build/install/bin/$tool" --version
done
for example in gain_model sensor_bus; do
  "${clean_env[@]}" build/install/bin/velcg-gen "examples/$example/model.json" "examples/$example/template.py" \
    -o "build/install-check/$example"
  "${clean_env[@]}" build/install/bin/velcg-descriptor check "build/install-check/$example/codedescriptor.strata"
done
# The installed Python module imports from its site-packages folder, with its stubs beside it.
site=$(echo build/install/lib/python3*/site-packages)
test -f "$site/velcg.pyi"
test -f "$site/velcg_template.pyi"
"${clean_env[@]}" PYTHONPATH="$PWD/$site" /usr/bin/python3 -c 'import velcg; print("velcg module:", len(velcg.sectionNames), "section names")'
phase "generation as a build step"
# A separate project generating both examples with velcg_generate (Ninja).
tests/buildstep/check_build_step.sh "$PWD/build/install" "$PWD"
phase "soak: 1,000 runs in one process"
# The larger example generated 1,000 times in one process: resident memory
# may grow by at most 2 MiB from run 100 to run 1,000.
tests/tools/check_velcg_gen_soak.sh build/release/tools/velcg-gen . 1000 2
phase "velcg-gen killed in every phase"
# velcg-gen killed in every phase of a run of 20,000 blocks.
tests/tools/check_velcg_gen_kill.sh build/release/tools/velcg-gen . 20000
phase "concurrent runs into one directory"
# 100 pairs of runs started at once into one output directory.
tests/tools/check_velcg_gen_concurrent.sh build/release/tools/velcg-gen build/release/tools/velcg-descriptor . 100

phase "all tests under ThreadSanitizer"
cmake --preset tsan >/dev/null
cmake --build --preset tsan -j "$jobs"
ctest --preset tsan -j "$jobs"

phase "all tests under AddressSanitizer and UndefinedBehaviorSanitizer"
cmake --preset asan >/dev/null
cmake --build --preset asan -j "$jobs"
ctest --preset asan -j "$jobs"

phase "fuzz targets, 60 s each"
scripts/fuzz.sh 60
phase
echo "test.sh: every check passed in $SECONDS s"
