#!/usr/bin/env bash
# The reference for template writers, docs/templates.md, is exactly what
# `velcg-inspect reference` writes from the library's tables.
#
#   check_reference.sh VELCG_INSPECT SOURCE_DIR
set -uo pipefail

page=$(mktemp "${TMPDIR:-/tmp}/templates.XXXXXX.md")
trap 'rm -f "$page"' EXIT
"$1" reference --output "$page" || exit 1
if ! diff -u "$2/docs/templates.md" "$page"; then
  echo "docs/templates.md differs from the library; regenerate it with"
  echo "  velcg-inspect reference --output docs/templates.md"
  exit 1
fi
