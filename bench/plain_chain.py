#!/usr/bin/env python3
"""The script a user would write instead of velcg-gen and
bench/chain_template.py: json.load of the description of
bench/make_description.py, a loop, f-strings, the two files written. It
writes the same bytes as velcg-gen with that template, and no descriptor.

    bench/plain_chain.py DESCRIPTION.json OUTDIR [--times]
"""

import json
import os
import sys
import time


def main():
    description, out = sys.argv[1], sys.argv[2]
    start = time.perf_counter()
    with open(description, encoding="utf-8") as f:
        model = json.load(f)
    loaded = time.perf_counter()
    statements = []
    for block in model["hierarchy"]["subsystems"][0]["blocks"]:
        inputs = block.get("dataInputPorts")
        outputs = block.get("dataOutputPorts")
        if inputs and outputs:
            statements.append(f"    {outputs[0]['regions'][0]['source']} = 2.0 * {inputs[0]['regions'][0]['source']};\n")
    root = model["systems"][0]
    name = model["name"]
    header = f"void {root['startFcn']}(void);\nvoid {root['outputUpdateFcn']}(void);\n"
    source = f'#include "{name}.h"\n' + f"\nvoid {root['outputUpdateFcn']}(void)\n{{\n" + "".join(statements) + "}\n"
    looped = time.perf_counter()
    os.makedirs(out, exist_ok=True)
    files = {file["name"]: text for file, text in zip(model["files"], (header, source))}
    for file_name, text in files.items():
        with open(os.path.join(out, file_name), "w", encoding="utf-8", newline="") as f:
            f.write(text)
    written = time.perf_counter()
    if "--times" in sys.argv[3:]:
        print(f"plain: load {loaded - start:.3f} s, template {looped - loaded:.3f} s, write {written - looped:.3f} s",
              file=sys.stderr)


if __name__ == "__main__":
    main()
