#!/usr/bin/env python3
"""The loop of bench/chain_template.py over the module velcg_floor
(bench/FloorExtension.cpp), which wraps the same chain with bare pointers:
the least a template over a natively held model costs. Loading the
description is not timed; reading the block list and the loop are, as in
velcg-gen's template phase. Prints the time and writes the statements the
loop made to OUT, for comparison with the plain script's output.

    bench/floor_chain.py MODULE_DIR DESCRIPTION.json OUT
"""

import json
import sys
import time


def main():
    module_dir, description, out = sys.argv[1:4]
    sys.path.insert(0, module_dir)
    import velcg_floor

    with open(description, encoding="utf-8") as f:
        velcg_floor.load(json.load(f)["hierarchy"]["subsystems"][0]["blocks"])
    start = time.perf_counter()
    statements = []
    for block in velcg_floor.blocks():
        inputs = block.DataInputPorts
        outputs = block.DataOutputPorts
        if inputs and outputs:
            statements.append(f"    {outputs[0].Regions[0].Source} = 2.0 * {inputs[0].Regions[0].Source};\n")
    text = "".join(statements)
    looped = time.perf_counter()
    with open(out, "w", encoding="utf-8", newline="") as f:
        f.write(text)
    print(f"floor: template {looped - start:.3f} s", file=sys.stderr)


if __name__ == "__main__":
    main()
