#!/usr/bin/env bash
# Installs the Debian packages the build needs. Idempotent: packages already
# present are skipped, and apt is not touched when nothing is missing.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config
  libboost-dev libboost-thread-dev libboost-locale-dev
  libsqlite3-dev sqlite3 libsqlitecpp-dev nlohmann-json3-dev libsimdjson-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  clang-format clang libclang-rt-dev
  pybind11-dev python3-dev python3-pytest python3-jsonschema python3-jinja2 python3-jedi python3-hypothesis
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

if [ ${#missing[@]} -eq 0 ]; then
  echo "install-deps: all ${#packages[@]} packages present"
  exit 0
fi

echo "install-deps: installing ${missing[*]}"
sudo=""
if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
