# The frame of the shell checks, sourced with the check's name: a work
# directory, fail() to count a failed check, and finish() to end, which
# keeps the work directory for inspection when a check failed.
work=$(mktemp -d "${TMPDIR:-/tmp}/$1.XXXXXX")
failures=0

fail() {
  echo "FAIL: $*"
  failures=$((failures + 1))
}

finish() { # message on success
  if [ "$failures" -ne 0 ]; then
    echo "$failures check(s) failed; files kept in $work"
    exit 1
  fi
  rm -rf "$work"
  echo "$1"
}
