"""Code template for block-diagram models such as "sensor_bus".

Reads the model generically, the way template scripts do: it walks the
modelling and code-generation types, the variable groups, the systems with
their subsystems and blocks, and the async-queue blocks, all as property
bags, and emits C for each through a small code template per block type. No
model, type or signal name is written here: a model of the same block types
gets the same treatment.

It fills the sections of the four files the description lists through the
repository's script bridge and writes none of them itself: the generator
(velcg-gen) writes every file a template left unwritten, section by section.

  module header      the variable-group instances and the entry points
  module source      the instances, one function per system step and start,
                     one send function per async-queue block
  data-types header  an enum per enumeration type, a typedef per structure
  generic file       a main that sets the tunable parameters to the values
                     the description gives, then reads one line of root-input
                     values per step from standard input, steps the model and
                     sends the async-queue blocks' signals to standard output

Signals are the C expressions in the first region of each block's output
port, members of the variable-group instances; an input port reads the
region of the port its graphical source names. The enumerators of an
enumeration come from the async-queue leaves that carry its labels.

Globals given by the generator: model (velcg.CGModel), repository
(velcg.VelCGFileRepository), outputDirectory (unused: nothing is written
here), data (the description's "templateData": {"parameters": {NAME: value}}
holds the tunable parameters' values) and options (velcg-gen -D NAME=VALUE
overrides one of those values).
"""

import velcg

bridge = velcg.bridge(repository)
model_name = model.getName()

# C99 headers of the primitive code-generation types; a type built into C
# needs none.
PRIMITIVE_HEADERS = {
    "double": "",
    "float": "",
    "int32_t": "stdint.h",
    "uint8_t": "stdint.h",
    "bool": "stdbool.h",
}
# The printf conversion of each primitive type, and the type its value is
# converted to for it.
PRINT_FORMATS = {
    "double": ("%g", "double"),
    "float": ("%g", "double"),
    "int32_t": ("%ld", "long"),
    "uint8_t": ("%ld", "long"),
    "bool": ("%d", "int"),
}


class TemplateError(Exception):
    """The model holds something this template has no code for."""


def add(file_index, section, text):
    bridge.addSectionContent(file_index, section, text)


# ---------------------------------------------------------------- files

def find_file(cls, extension=""):
    for index, file in enumerate(repository.FileList):
        if isinstance(file, cls) and file.Name.endswith(extension):
            return index
    raise TemplateError(f"the description lists no {cls.__name__} file ending in '{extension}'")


HEADER = find_file(velcg.VelCGModuleFile, ".h")
SOURCE = find_file(velcg.VelCGModuleFile, ".c")
TYPES = find_file(velcg.VelCGDataTypesFile)
MAIN = find_file(velcg.VelCGGenericFile)
types_header = repository.FileList[TYPES].Name
module_header = repository.FileList[HEADER].Name

for i in range(bridge.numberOfFiles):
    bridge.setAttribute(i, "Creator", "velcg example template")
    bridge.setAttribute(i, "Group", "model")


def guard_of(file_name):
    return "".join(c if c.isalnum() else "_" for c in file_name).upper()


# ---------------------------------------------------------------- types

cg_types = model.CGTypes
vel_types = model.VelTypes


def vel_type_of(cg_type):
    return vel_types[cg_type.VelTypeIndex] if cg_type.VelTypeIndex >= 0 else None


def is_enum(cg_type):
    vel_type = vel_type_of(cg_type)
    return vel_type is not None and vel_type.isEnumType()


def leaves(taq_blocks):
    """Every async-queue block and bus leaf, depth first."""
    for block in taq_blocks:
        yield block
        yield from leaves(block.leafElements)


# Enumerations: labels and values by class name, from the async-queue leaves.
enumerations = {}
for leaf in leaves(model.TAQBlocks):
    if leaf.isEnum:
        enumerations[leaf.enumClassName] = list(zip(leaf.enumLabels, leaf.enumValues))


def enumerator(type_name, label):
    return f"{type_name}_{label}"


def enum_labels(cg_type):
    if cg_type.Name not in enumerations:
        raise TemplateError(f"no async-queue leaf gives the labels of the enumeration {cg_type.Name}")
    return enumerations[cg_type.Name]


add(TYPES, "Includes", f"#ifndef {guard_of(types_header)}\n#define {guard_of(types_header)}\n\n")
primitives = [t for t in cg_types if not t.Members and not is_enum(t)]
for header in sorted({PRIMITIVE_HEADERS.get(t.Name, "") for t in primitives}):
    if header:
        add(TYPES, "Includes", f"#include <{header}>\n")

for t in cg_types:
    if is_enum(t):
        values = ",\n".join(f"    {enumerator(t.Name, label)} = {value}" for label, value in enum_labels(t))
        comment = vel_type_of(t).getDescription()
        add(TYPES, "Typedefs", f"\n/* {comment} */\ntypedef enum {{\n{values}\n}} {t.Name};\n")

# Structures after the types of their members.
emitted = set()


def emit_structure(index):
    t = cg_types[index]
    if index in emitted or not t.Members:
        return
    emitted.add(index)
    for member in t.Members:
        emit_structure(member.CGTypeIndex)
    vel_type = vel_type_of(t)
    kind = "bus" if vel_type is not None and vel_type.isBus() else "structure"
    fields = "".join(f"    {cg_types[m.CGTypeIndex].Name} {m.Name};\n" for m in t.Members)
    add(TYPES, "Typedefs", f"\n/* {kind} */\ntypedef struct {{\n{fields}}} {t.Name};\n")


for index in range(len(cg_types)):
    emit_structure(index)
add(TYPES, "Typedefs", "\n#endif\n")

# ---------------------------------------------------------------- variable groups

var_groups = model.VarGroups
instances = {g.NonreusedName: g for g in var_groups if g.NonreusedName}


def type_of(expression):
    """The code-generation type of a signal expression "instance.member.member"."""
    head, *path = expression.split(".")
    if head not in instances:
        raise TemplateError(f"'{expression}' is not in any variable group")
    t = cg_types[instances[head].CGTypeIndex]
    for name in path:
        member = next((m for m in t.Members if m.Name == name), None)
        if member is None:
            raise TemplateError(f"'{expression}': {t.Name} has no member {name}")
        t = cg_types[member.CGTypeIndex]
    return t


# One instance per top-level group; nested groups live inside their parent's.
for group in var_groups:
    if group.ParentVarGroupIndex >= 0:
        continue
    type_name, instance = cg_types[group.CGTypeIndex].Name, group.NonreusedName
    note = f"{group.Category}, data group {group.DataGroupIndex}"
    add(HEADER, "ExternData", f"extern {type_name} {instance}; /* {note} */\n")
    add(SOURCE, "Declarations", f"{type_name} {instance};\n")


def group_of(category):
    return next((g for g in var_groups if g.Category == category and g.ParentVarGroupIndex < 0), None)


# ---------------------------------------------------------------- blocks

subsystems = model.BlockHierarchyMap.Subsystems
systems = model.Systems


def output(block, index=0):
    return block.DataOutputPorts[index].Regions[0].Source


def input_(block, index):
    port = block.DataInputPorts[index]
    source = port.GraphicalSource or port
    return source.Regions[0].Source


def inputs(block):
    return [input_(block, i) for i in range(len(block.DataInputPorts))]


def parameter(block, name):
    for p in block.Parameters:
        if p.Name == name:
            return p.ModelParameters[0].DataInterface.identifier
    raise TemplateError(f"block {block.Name} has no parameter {name}")


def system_called_by(block):
    return next(s for s in systems if block in s.GraphicalCallsites)


class Code:
    """The C of one system: its step function's outputs and updates, and its start function."""

    def __init__(self):
        self.outputs, self.updates, self.start = [], [], []


def assign(target, value):
    return [] if target == value else [f"{target} = {value};"]


def code_gain(block, subsystem, code):
    code.outputs.append(f"{output(block)} = {parameter(block, 'Gain')} * {input_(block, 0)};")


def code_sum(block, subsystem, code):
    code.outputs.append(f"{output(block)} = {' + '.join(inputs(block))};")


def code_subtract(block, subsystem, code):
    code.outputs.append(f"{output(block)} = {input_(block, 0)} - {input_(block, 1)};")


def code_unit_delay(block, subsystem, code):
    state = block.DiscreteStates[0].DataInterface.identifier
    code.outputs += assign(output(block), state)
    code.updates.append(f"{state} = {input_(block, 0)};")
    code.start.append(f"{state} = 0;")


def code_integrator(block, subsystem, code):
    # Forward Euler with a step of one: the output is the state before the step.
    state = block.DWorks[0].DataInterface.identifier
    code.outputs += assign(output(block), state)
    code.updates.append(f"{state} += {input_(block, 0)};")
    code.start.append(f"{state} = 0;")


def code_threshold(block, subsystem, code):
    mode_type = type_of(output(block))
    labels = enum_labels(mode_type)
    if len(labels) != 3:
        raise TemplateError(f"block {block.Name} needs an enumeration of three labels (below, within, above)")
    below, within, above = (enumerator(mode_type.Name, label) for label, _ in labels)
    u = input_(block, 0)
    code.outputs.append(
        f"{output(block)} = {u} < {parameter(block, 'Lower')} ? {below}\n"
        f"        : {u} > {parameter(block, 'Upper')} ? {above} : {within};"
    )


def code_bus_creator(block, subsystem, code):
    y = output(block)
    members = type_of(y).Members
    if len(members) != len(block.DataInputPorts):
        raise TemplateError(f"block {block.Name}: {len(block.DataInputPorts)} inputs, {len(members)} members")
    for member, u in zip(members, inputs(block)):
        code.outputs.append(f"{y}.{member.Name} = {u};")


def code_subsystem(block, subsystem, code):
    system = system_called_by(block)
    code.outputs.append(f"{system.OutputUpdateFcn}();")
    if system.StartFcn:
        code.start.append(f"{system.StartFcn}();")


def code_inport(block, subsystem, code):
    pass  # its output region is the value


def code_outport(block, subsystem, code):
    position = next(i for i, b in enumerate(subsystem.OutputPortBlocks) if b == block)
    if subsystem.SubsystemBlock is None:
        outputs = group_of("ExternalOutput")
        target = f"{outputs.NonreusedName}.{outputs.Elements[position]}"
    else:
        target = output(subsystem.SubsystemBlock, position)
    code.outputs += assign(target, input_(block, 0))


BLOCK_CODE = {
    "Inport": code_inport,
    "Outport": code_outport,
    "Gain": code_gain,
    "Sum": code_sum,
    "Subtract": code_subtract,
    "UnitDelay": code_unit_delay,
    "Integrator": code_integrator,
    "Threshold": code_threshold,
    "BusCreator": code_bus_creator,
    "SubSystem": code_subsystem,
}


def subsystem_of(system):
    if system.isRootSystem():
        return subsystems[0]
    callers = system.GraphicalCallsites
    return next(s for s in subsystems if s.SubsystemBlock is not None and s.SubsystemBlock in callers)


def body(lines):
    return "".join(f"    {line}\n" for line in lines)


# ---------------------------------------------------------------- systems

add(HEADER, "Includes", f'#ifndef {guard_of(module_header)}\n#define {guard_of(module_header)}\n\n')
add(HEADER, "Includes", f'#include "{types_header}"\n\n')
bridge.setAttribute(SOURCE, "RequiredIncludes", module_header)
add(SOURCE, "Includes", f"#include <stdio.h>\n\n/* Code generated for model {model_name} */\n\n")

root_step = root_start = ""
for system in systems:
    subsystem = subsystem_of(system)
    code = Code()
    for block in subsystem.Blocks:
        if block.Type not in BLOCK_CODE:
            raise TemplateError(f"no code template for block {block.Name} of type {block.Type}")
        BLOCK_CODE[block.Type](block, subsystem, code)
    step, start = system.OutputUpdateFcn, system.StartFcn
    for function in (step, start):
        if function and model.getSystemForFunction(function) != system:
            raise TemplateError(f"function {function} is not one of system {system.getName()}")
    # The root system's functions are the module's entry points; the others
    # are static, declared before any use.
    storage = "" if system.isRootSystem() else "static "
    prototypes = HEADER if system.isRootSystem() else SOURCE
    where = f"{subsystem.Type} subsystem {subsystem.Name}"
    if system.isRootSystem():
        root_step, root_start = step, start
    if start:
        add(prototypes, "FcnPrototypes", f"{storage}void {start}(void);\n")
        add(SOURCE, "Functions",
            f"\n/* Start of the {where} */\n{storage}void {start}(void)\n{{\n{body(code.start)}}}\n")
    add(prototypes, "FcnPrototypes", f"{storage}void {step}(void);\n")
    add(
        SOURCE,
        "Functions",
        f"\n/* Step of the {where} */\n{storage}void {step}(void)\n{{\n{body(code.outputs)}"
        f"\n    /* Update */\n{body(code.updates)}}}\n",
    )

# ---------------------------------------------------------------- async-queue blocks


def find_block(sid):
    for subsystem in subsystems:
        for block in subsystem.Blocks:
            if block.SID == sid:
                return block
    raise TemplateError(f"no block has the SID {sid}")


def vel_type_by_id(type_id):
    return next((v for v in vel_types if v.ID == type_id), None)


printers = {}  # enumeration name -> the static function that names its values


def label_printer(cg_type):
    if cg_type.Name not in printers:
        function = f"{model_name}_{cg_type.Name}_label"
        cases = "".join(
            f'    case {enumerator(cg_type.Name, label)}: return "{label}";\n'
            for label, _ in enum_labels(cg_type)
        )
        add(SOURCE, "Functions",
            f"\nstatic const char* {function}({cg_type.Name} value)\n{{\n"
            f'    switch (value) {{\n{cases}    }}\n    return "?";\n}}\n')
        printers[cg_type.Name] = function
    return printers[cg_type.Name]


def bus_leaves(leaf, expression, path):
    """The leaves of a bus, nested buses flattened: (leaf, C expression, name path)."""
    if not leaf.leafElements:
        return [(leaf, expression, path)]
    found = []
    for child in leaf.leafElements:
        found += bus_leaves(child, f"{expression}.{child.signalName}", path + [child.signalName])
    return found


def print_statement(leaf, expression, name, separator):
    vel_type = vel_type_by_id(leaf.dataTypeId)
    if vel_type is None:
        raise TemplateError(f"leaf {name}: no modelling type has the id {leaf.dataTypeId}")
    cg_type = cg_types[vel_type.CGTypeIdx]
    if leaf.isEnum:
        return f'printf("{separator}{name}=%s", {label_printer(cg_type)}({expression}));'
    if cg_type.Name not in PRINT_FORMATS:
        raise TemplateError(f"leaf {name}: no print format for {cg_type.Name}")
    fmt, c_type = PRINT_FORMATS[cg_type.Name]
    return f'printf("{separator}{name}={fmt}", ({c_type}){expression});'


send_functions = []
for taq in model.TAQBlocks:
    source = output(find_block(taq.blockSID), taq.portNumber - 1)
    function = f"{model_name}_{taq.Name}_send"
    if model.getSystemForFunction(function) is None:
        raise TemplateError(f"function {function} is not one of any system")
    statements = [
        print_statement(leaf, expression, ".".join(path), " " if i else "")
        for i, (leaf, expression, path) in enumerate(bus_leaves(taq, source, []))
    ] + ['printf("\\n");']
    add(HEADER, "FcnPrototypes", f"void {function}(void);\n")
    add(SOURCE, "Functions",
        f"\n/* Sends the leaves of {taq.signalName} ({taq.Name}) */\nvoid {function}(void)\n"
        f"{{\n{body(statements)}}}\n")
    send_functions.append(function)

add(HEADER, "Documentation", "\n#endif\n")
add(SOURCE, "Documentation", f"\n/* End of {repository.FileList[SOURCE].Name} */\n")

# ---------------------------------------------------------------- the main file

# Tunable parameters: every model parameter a block refers to, once.
tunables = {}
for subsystem in subsystems:
    for block in subsystem.Blocks:
        for p in block.Parameters:
            for mp in p.ModelParameters:
                if mp.IsTunable:
                    tunables[mp.Name] = mp.DataInterface

# Root inputs, in their order: the member of their group they fill and its type.
root_inputs = []
for external_input in model.ExternalInputs:
    group = var_groups[external_input.VarGroupIndex]
    member = cg_types[group.CGTypeIndex].Members[external_input.VarGroupMemberIndex]
    root_inputs.append((f"{group.NonreusedName}.{member.Name}", cg_types[member.CGTypeIndex].Name))

# Their values: the description's templateData "parameters", each of which
# velcg-gen -D NAME=VALUE may override.
values = dict((data or {}).get("parameters", {}))
values.update({name: float(value) for name, value in options.items() if name in tunables})
unknown = sorted(set(values) - set(tunables))
if unknown:
    raise TemplateError(f"templateData gives values for {', '.join(unknown)}, which no block tunes "
                        f"(tunable: {', '.join(sorted(tunables))})")
missing = sorted(set(tunables) - set(values))
if missing:
    raise TemplateError(f"templateData \"parameters\" lacks a value for {', '.join(missing)}")
setters = "".join(
    f"    {di.identifier} = ({di.typeName}){float(values[name])!r};\n" for name, di in sorted(tunables.items())
)
reads = " ".join(["%lf"] * len(root_inputs))
read_targets = ", ".join(f"&in[{i}]" for i in range(len(root_inputs)))
stores = "".join(f"        {target} = ({c_type})in[{i}];\n" for i, (target, c_type) in enumerate(root_inputs))

bridge.addCustomSection(MAIN, "Banner", "FileBanner")
bridge.customContents(MAIN).addContentToSection(
    "FileBanner",
    f"/*\n * Main for model {model_name}: sets the tunable parameters to the values of\n"
    f" * the description, then steps once per line of standard input, which holds\n"
    f" * the {len(root_inputs)} root inputs ({', '.join(t for t, _ in root_inputs)}).\n */\n",
)
add(MAIN, "Includes", "#include <stdio.h>\n")
add(MAIN, "Includes", f'#include "{module_header}"\n')
add(
    MAIN,
    "Functions",
    "\nint main(void)\n{\n"
    f"    double in[{len(root_inputs)}];\n"
    "    int step = 0;\n"
    f"{setters}"
    f"    {root_start}();\n"
    f'    while (scanf("{reads}", {read_targets}) == {len(root_inputs)}) {{\n'
    f"{stores}"
    f"        {root_step}();\n"
    '        printf("step %d: ", ++step);\n'
    + "".join(f"        {f}();\n" for f in send_functions)
    + "    }\n    return 0;\n}\n",
)
