"""Code templates of the example generator for the model "gain_model".

Reads the model only through its properties and methods (objects as property
bags) and fills and writes the files only through the repository's script
bridge (files by index, attributes and sections by name).

Globals given by the generator:
  model            the velcg.CGModel
  data             the description's "templateData": {"steps": N, "gain": G},
                   how many steps the generated main runs and the gain it sets
  options          velcg-gen's -D values: steps=N and gain=G override data
  repository       the velcg.VelCGFileRepository, holding in this order the
                   model's header, its source, its data-types header and the
                   generic main file
  outputDirectory  where the files are written (it exists)
"""


import velcg

HEADER, SOURCE, TYPES, MAIN = range(4)

# The C99 headers that declare the primitive code-generation types; a type
# built into C needs none.
PRIMITIVE_HEADERS = {"double": "", "int32_t": "stdint.h", "bool": "stdbool.h"}

bridge = velcg.bridge(repository)


def add(file, section, text):
    bridge.addSectionContent(file, section, text)


def source(block, ports, index):
    """The signal expression of the first region of a block's port."""
    port_list = getattr(block, ports)
    if index >= len(port_list):
        raise ValueError(f"block {block.Name} lacks a port")
    return port_list[index].Regions[0].Source


# The values the generated main runs with.
settings = {"steps": 5, "gain": 2.0}
settings.update(data or {})
settings.update(options)
steps, gain_value = int(settings["steps"]), float(settings["gain"])

name = model.getName()
guard = name.upper()

# Attributes every file carries.
for i in range(bridge.numberOfFiles):
    file_name = bridge.getStringAttribute(i, "Name")
    bridge.setAttribute(i, "Type", "header" if file_name.endswith("h") else "source")
    bridge.setAttribute(i, "Creator", "velcg example generator")
    bridge.setAttribute(i, "CodeTemplate", "example_code_template")
    bridge.setAttribute(i, "Group", "model")
    bridge.setAttribute(i, "SystemsInFile", name)
    bridge.setAttribute(i, "IsEmpty", False)

# Data types: the headers of the primitive types, then one structure per
# composite type.
types = model.CGTypes
add(TYPES, "Includes", f"#ifndef {guard}_TYPES_H\n#define {guard}_TYPES_H\n\n")
for t in types:
    header = PRIMITIVE_HEADERS.get(t.Name)
    if header:
        add(TYPES, "Includes", f"#include <{header}>\n")
for t in types:
    if not t.Members:
        continue
    text = "\ntypedef struct {\n"
    for member in t.Members:
        text += f"    {types[member.CGTypeIndex].getContainerTypeName()} {member.Name};\n"
    add(TYPES, "Typedefs", text + "} " + t.Name + ";\n")
# A custom section declared under "Types" and placed by the template itself,
# before the include guard closes.
type_extras = bridge.customContents(TYPES)
bridge.addCustomSection(TYPES, "Types", "SignalTypes")
type_extras.addContentToSection("SignalTypes", f"\n/* Signal types */\ntypedef double {name}_signal;\n")
add(TYPES, "Typedefs", type_extras.getCustomSectionContent("SignalTypes", "the data types header"))
add(TYPES, "Typedefs", "\n#endif\n")

# Global data: one structure instance per variable group.
input_var = output_var = gain_var = ""
for group in model.VarGroups:
    type_name, instance, category = group.Name, group.NonreusedName, group.Category
    add(HEADER, "ExternData", f"extern {type_name} {instance};  /* {category} */\n")
    add(SOURCE, "Declarations", f"{type_name} {instance};\n")
    if category == "ExternalInput":
        input_var = f"{instance}.{group.Elements[0]}"
    if category == "ExternalOutput":
        output_var = f"{instance}.{group.Elements[0]}"
    if category == "Parameter":
        gain_var = f"{instance}.{group.Elements[0]}"

# Functions of the root system, generated from its blocks.
root = model.BlockHierarchyMap.Subsystems[0]
locals_, outputs, updates, initialize = "", "", "", ""
for block in root.Blocks:
    kind = block.Type
    if kind == "Gain":
        gain = block.Parameters[0].ModelParameters[0]
        y = source(block, "DataOutputPorts", 0)
        locals_ += f"    double {y};\n"
        outputs += f"    {y} = {gain.DataInterface.identifier} * {source(block, 'DataInputPorts', 0)};\n"
    elif kind == "Sum":
        y = source(block, "DataOutputPorts", 0)
        locals_ += f"    double {y};\n"
        outputs += (
            f"    {y} = {source(block, 'DataInputPorts', 0)} + {source(block, 'DataInputPorts', 1)};\n"
        )
    elif kind == "Outport":
        outputs += f"    {output_var} = {source(block, 'DataInputPorts', 0)};\n"
    elif kind == "UnitDelay":
        state = block.DiscreteStates[0].DataInterface.identifier
        updates += f"    {state} = {source(block, 'DataInputPorts', 0)};\n"
        initialize += f"    {state} = 0.0;\n"
for system in model.Systems:
    if not system.isRootSystem():
        continue
    init, step = system.StartFcn, system.OutputUpdateFcn
    add(HEADER, "FcnPrototypes", f"\nvoid {init}(void);\nvoid {step}(void);\n")
    add(SOURCE, "Functions", f"\nvoid {init}(void)\n{{\n{initialize}}}\n")
    add(SOURCE, "Functions", f"\nvoid {step}(void)\n{{\n{locals_}{outputs}\n    /* Update */\n{updates}}}\n")

# The module header and source.
add(HEADER, "Includes", f'#ifndef {guard}_H\n#define {guard}_H\n\n#include "{name}_types.h"\n\n')
add(HEADER, "Documentation", "\n#endif\n")
bridge.setAttribute(SOURCE, "RequiredIncludes", f"{name}.h")
add(SOURCE, "Includes", f"/* Code generated for model {name} */\n\n")
add(SOURCE, "Documentation", f"\n/* End of {name}.c */\n")

# The generic main file: a banner declared as a custom section and left for
# the writer to append, then a main that steps the model.
bridge.addCustomSection(MAIN, "Banner", "FileBanner")
bridge.customContents(MAIN).addContentToSection(
    "FileBanner", f"/*\n * Example main for model {name}: {steps} steps with gain {gain_value!r}\n */\n"
)
add(MAIN, "Includes", f'#include <stdio.h>\n#include "{name}.h"\n')
add(
    MAIN,
    "Functions",
    "\nint main(void)\n{\n"
    f"    int steps = {steps};\n"
    f"    {gain_var} = {gain_value!r};\n"
    f"    {name}_initialize();\n"
    "    for (int i = 0; i < steps; ++i) {\n"
    f"        {input_var} = 1.0;\n"
    f"        {name}_step();\n"
    f'        printf("step %d: Out1 = %g\\n", i + 1, {output_var});\n'
    "    }\n"
    "    return 0;\n}\n",
)

# Every file, whole, into the output directory: each section in section
# order after its missing tokens; a section that the file's kind does not
# have writes nothing.
for i in range(bridge.numberOfFiles):
    bridge.writeFile(i, outputDirectory)
