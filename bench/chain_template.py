"""Template for the benchmark model of bench/make_description.py: one
statement per block in the step function, filled through the bridge and
left for velcg-gen to write."""

import velcg

bridge = velcg.bridge(repository)
HEADER, SOURCE = 0, 1
name = model.getName()

statements = []
for block in model.BlockHierarchyMap.Subsystems[0].Blocks:
    inputs = block.DataInputPorts
    outputs = block.DataOutputPorts
    if inputs and outputs:
        statements.append(f"    {outputs[0].Regions[0].Source} = 2.0 * {inputs[0].Regions[0].Source};\n")

root = model.Systems[0]
bridge.addSectionContent(HEADER, "FcnPrototypes", f"void {root.StartFcn}(void);\nvoid {root.OutputUpdateFcn}(void);\n")
bridge.addSectionContent(SOURCE, "Includes", f'#include "{name}.h"\n')
bridge.addSectionContent(SOURCE, "Functions", f"\nvoid {root.OutputUpdateFcn}(void)\n{{\n" + "".join(statements) + "}\n")
