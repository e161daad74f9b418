"""Completion inside a template, as an editor offers it through jedi from the
stubs velcg.pyi and velcg_template.pyi: members of the globals, of objects
reached from them and of the bridge, each with its docstring.

Usage: check_template_completion.py STUB_DIRECTORY
"""

import os
import shutil
import sys
import tempfile

import jedi

TEMPLATE = """from typing import TYPE_CHECKING

import velcg

if TYPE_CHECKING:
    from velcg_template import *

bridge = velcg.bridge(repository)
"""

BLOCK = "model.BlockHierarchyMap.Subsystems[0].Blocks[0]."

# What is typed at the end of the template, some names completion offers,
# and one of them with a phrase of its docstring.
CASES = [
    ("model.", {"Systems", "BlockHierarchyMap", "getName"}, ("getName", "The model's name.")),
    ("repository.", {"FileList", "createGenericFile"}, ("findFileByName", "or None")),
    (BLOCK, {"Name", "DataOutputPorts", "Parameters"}, ("SID", "session identifier")),
    (BLOCK + "DataOutputPorts[0].Regions[0].DataInterface.", {"identifier", "typeName"}, ("owner", "owner")),
    ("repository.findFileByName('a.c').", {"Name", "getFileSection"}, ("Type", "header or source")),
    ("bridge.", {"addSectionContent", "writeSection", "numberOfFiles"}, ("setAttribute", "bool")),
    ("options.", {"items", "get"}, None),
    ("outputDirectory.", {"endswith"}, None),
]


def main():
    failures = []
    with tempfile.TemporaryDirectory() as work:
        # Only the stubs: completion must not depend on importing the module.
        for stub in ("velcg.pyi", "velcg_template.pyi"):
            shutil.copy(os.path.join(sys.argv[1], stub), work)
        jedi.settings.cache_directory = os.path.join(work, "cache")
        project = jedi.Project(work, sys_path=[work], smart_sys_path=False)
        for typed, expected, documented in CASES:
            code = TEMPLATE + typed
            script = jedi.Script(code, path=os.path.join(work, "template.py"), project=project)
            lines = code.splitlines()
            offered = {c.name: c for c in script.complete(len(lines), len(lines[-1]))}
            missing = expected - offered.keys()
            if missing:
                failures.append(f"{typed!r} offers no {sorted(missing)}; it offers {sorted(offered)[:12]}")
            if documented:
                name, phrase = documented
                doc = offered[name].docstring() if name in offered else ""
                if phrase not in doc:
                    failures.append(f"{typed}{name}: the docstring {doc!r} lacks {phrase!r}")
    for failure in failures:
        print("check_template_completion:", failure)
    sys.exit(1 if failures else 0)


if __name__ == "__main__":
    main()
