"""Runs the README's samples that read a code descriptor on the store of
the shipped example sensor_bus: the sqlite3 shell query must print the
table the README shows, and the Python sample the same rows.

    check_readme_samples.py README.md DIRECTORY_OF_THE_STORE
"""

import re
import subprocess
import sys

readme, directory = sys.argv[1], sys.argv[2]
text = open(readme, encoding="utf-8").read()
blocks = re.findall(r"```(\w*)\n(.*?)```", text, re.S)
shell = next(i for i, (kind, body) in enumerate(blocks) if kind == "sh" and "sqlite3 -readonly -box" in body)
expected = blocks[shell + 1][1]
python = next(body for kind, body in blocks[shell:] if kind == "python" and "import sqlite3" in body)

printed = subprocess.run(["bash", "-c", blocks[shell][1]], cwd=directory, capture_output=True, text=True, check=True)
failures = []
if printed.stdout != expected:
    failures.append(f"the sqlite3 sample prints\n{printed.stdout}\nbut the README shows\n{expected}")
rows = [line.strip("│ ").split(" │ ") for line in expected.splitlines() if line.startswith("│")][1:]
printed = subprocess.run([sys.executable, "-c", python], cwd=directory, capture_output=True, text=True, check=True)
wanted = "".join(f"{s.strip()}: {b.strip()}\n" for s, b in rows)
if printed.stdout != wanted:
    failures.append(f"the Python sample prints\n{printed.stdout}\nbut the table shows\n{wanted}")
for failure in failures:
    print("FAIL:", failure)
sys.exit(1 if failures else 0)
