#!/usr/bin/env python3
"""Writes a model description of N blocks for benchmarks.

    bench/make_description.py N [-o FILE]

The model "chain" has one root system and one subsystem of N blocks: an
inport, N-2 gain blocks and an outport, each block with a data input port
and a data output port of one region each (the first and last block have
one of them), every block fed by the one before. Its files are a module
header and source (chain.h, chain.c). bench/chain_template.py is a template
for it:

    bench/make_description.py 100000 -o /tmp/chain.json
    velcg-gen /tmp/chain.json bench/chain_template.py -o /tmp/chain --times
"""

import argparse
import json
import sys


def port(source):
    return {"regions": [{"source": source}]}


def block(index, kind, inputs, outputs):
    name = f"{kind}{index}"
    b = {"name": name, "sid": f"chain:{index + 1}", "blockPath": f"chain/{name}", "type": kind}
    if kind == "Inport":
        b["isInport"] = True
    if kind == "Outport":
        b["isOutport"] = True
    if inputs:
        b["dataInputPorts"] = [port(s) for s in inputs]
    if outputs:
        b["dataOutputPorts"] = [port(s) for s in outputs]
    return b


def description(n):
    if n < 2:
        raise ValueError("a chain needs at least an inport and an outport")
    blocks = [block(0, "Inport", [], ["chain_In.u"])]
    for i in range(1, n - 1):
        blocks.append(block(i, "Gain", [blocks[-1]["dataOutputPorts"][0]["regions"][0]["source"]], [f"sig{i}"]))
    blocks.append(block(n - 1, "Outport", [blocks[-1]["dataOutputPorts"][0]["regions"][0]["source"]], []))
    return {
        "format": "velcg-model-description",
        "formatVersion": 1,
        "name": "chain",
        "systems": [
            {
                "name": "chain",
                "systemType": "root",
                "isRootSystem": True,
                "identifier": "chain",
                "startFcn": "chain_initialize",
                "outputUpdateFcn": "chain_step",
                "functions": ["chain_initialize", "chain_step"],
            }
        ],
        "velTypes": [{"dtName": "double"}],
        "cgTypes": [{"name": "double", "velTypeIndex": 0}],
        "hierarchy": {"subsystems": [{"name": "chain", "type": "root", "sid": "chain", "blocks": blocks}]},
        "files": [
            {"kind": "ModuleHeader", "name": "chain.h", "systems": [0]},
            {"kind": "ModuleSource", "name": "chain.c", "systems": [0]},
        ],
    }


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("blocks", type=int)
    parser.add_argument("-o", "--output")
    args = parser.parse_args()
    try:
        text = json.dumps(description(args.blocks), separators=(",", ":"))
    except ValueError as e:
        parser.error(str(e))
    if args.output:
        with open(args.output, "w", encoding="utf-8") as f:
            f.write(text)
    else:
        sys.stdout.write(text)


if __name__ == "__main__":
    main()
