"""Tests of the sensor_bus template in plain Python, without velcg-gen:
velcg.load reads the description, velcg.generate runs the template on it
exactly as velcg-gen does. Run them with pytest, the module velcg on the
path (for an install: PYTHONPATH=<prefix>/lib/python3.X/site-packages):

    pytest examples/sensor_bus
"""

import json
import os
import pathlib
import shutil
import subprocess

import pytest
import velcg

HERE = pathlib.Path(__file__).parent
INPUTS = "180 1\n200 2\n260 3\n300 5\n150 4\n"


def build_and_run(directory):
    cc = shutil.which("cc")
    if cc is None:
        pytest.skip("no C compiler")
    # The compiler and the program run without what a sanitizer build of
    # velcg preloads into this process.
    env = {k: v for k, v in os.environ.items() if k != "LD_PRELOAD"}
    program = directory / "demo"
    subprocess.run([cc, "-std=c99", "-Wall", "-Wextra", "-Werror", "-o", program,
                    directory / "sensor_bus.c", directory / "sensor_bus_main.c"], check=True, env=env)
    return subprocess.run([program], input=INPUTS, capture_output=True, text=True, check=True, env=env).stdout


def test_the_generated_program_steps_the_model(tmp_path):
    description = velcg.load(HERE / "model.json")
    assert description.data["parameters"] == {"Scale": 0.1, "Alpha": 0.5, "Lower": 18, "Upper": 24}
    result = velcg.generate(description, HERE / "template.py", tmp_path)
    assert sorted(result["written"]) == ["codedescriptor.strata", "sensor_bus.c", "sensor_bus.h",
                                         "sensor_bus_main.c", "sensor_bus_types.h"]
    assert build_and_run(tmp_path).splitlines()[-1] == (
        "step 5: temperature=20.0625 exposure=68.875 status.level=4 status.mode=Normal")
    # A second run changes nothing.
    again = velcg.generate(HERE / "model.json", HERE / "template.py", tmp_path)
    assert again["written"] == [] and len(again["unchanged"]) == 5


def test_options_override_the_description(tmp_path):
    velcg.generate(HERE / "model.json", HERE / "template.py", tmp_path, options={"Scale": "0.2"})
    assert build_and_run(tmp_path).splitlines()[0] == (
        "step 1: temperature=18 exposure=0 status.level=1 status.mode=Normal")


def test_a_value_no_block_tunes_is_refused_and_nothing_is_written(tmp_path):
    document = json.loads((HERE / "model.json").read_text())
    document["templateData"]["parameters"]["Gain"] = 3
    model = tmp_path / "model.json"
    model.write_text(json.dumps(document))
    out = tmp_path / "out"
    with pytest.raises(Exception, match="templateData gives values for Gain, which no block tunes"):
        velcg.generate(model, HERE / "template.py", out)
    assert not any(p for p in out.iterdir() if not p.name.startswith(".velcg-gen"))
