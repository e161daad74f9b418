"""Native objects as velcg objects: reading, writing, calling, identity."""

import ast
import gc
import inspect
import os

import pytest
import velcg
import velcg_testing
from conftest import describe, python_class, raises_diagnostic

# The Python type each scalar host type reads as.
SCALAR_TYPES = {
    "logical scalar": bool,
    "int32 scalar": int,
    "uint32 scalar": int,
    "int64 scalar": int,
    "double scalar": float,
    "char": str,
    "char vector": str,
}


def check_python_type(value, host_type, element_class="", one_object=False):
    """Asserts that value has the Python type that its host type names."""
    if element_class:
        cls = python_class(element_class)
        if one_object:
            assert value is None or isinstance(value, cls), value
        else:
            assert type(value) is list and all(isinstance(v, cls) for v in value), value
    elif host_type in SCALAR_TYPES:
        assert type(value) is SCALAR_TYPES[host_type], value
    elif host_type == "int32 vector":
        assert type(value) is list and all(type(v) is int for v in value), value
    elif host_type == "cell":
        assert type(value) is list and all(type(v) is str for v in value), value
    elif host_type == "any":
        # Objects come with their class; other values are native host values.
        allowed = (velcg.Object,) if one_object else (velcg.DataInterface, velcg.EmbeddedType)
        assert value is None or isinstance(value, allowed), value
    else:
        pytest.fail(f"unexpected host type {host_type!r}")


def objects_in(value):
    if isinstance(value, velcg.Object):
        return [value]
    if isinstance(value, list):
        return [o for item in value for o in objects_in(item)]
    return []


def test_every_member_reads_as_the_python_type_of_its_host_type(objects):
    # Walks every object reachable from the model and the repository through
    # properties and methods without arguments.
    seen, pending = set(), [objects["model"], objects["repository"]]
    while pending:
        obj = pending.pop()
        if obj in seen:
            continue
        seen.add(obj)
        qualified = velcg.classOf(obj)
        assert type(obj) is python_class(qualified)
        info = velcg_testing.describeClass(qualified)
        for p in info["properties"]:
            value = getattr(obj, p["name"])
            check_python_type(value, p["hostType"], p["elementClass"], p["oneObject"])
            pending += objects_in(value)
        for m in info["methods"]:
            if m["argumentTypes"]:
                continue
            value = getattr(obj, m["name"])()
            if m["resultType"]:
                check_python_type(value, m["resultType"], "", m["returnsOneObject"])
            else:
                assert value is None
            pending += objects_in(value)
    reached = {velcg.classOf(o) for o in seen}
    concrete = {n for n in velcg_testing.classNames() if not velcg_testing.describeClass(n)["abstract"]}
    assert reached == concrete


def parts(*names):
    return lambda o: [o[n] for n in names]


@pytest.mark.parametrize(
    "name, attribute, expected",
    [
        ("system", "Identifier", "every_kind_step"),
        ("system", "GraphicalCallsites", parts("block")),
        ("cgType", "Dimensions", [2, 3]),
        ("cgType", "SymbolicDimensions", ["N", "M"]),
        ("cgType", "Slope", 1.5),
        ("cgType", "IsSigned", True),
        ("cgType", "Members", parts("member")),
        ("member", "Alignment", 4),
        ("group", "Category", "DWork"),
        ("group", "Elements", ["a", "b"]),
        ("group", "SubstructIndices", [1]),
        ("model", "NumChildSFunctions", 2),
        ("model", "MaxMultiWordBits", 128),
        ("model", "BlockHierarchyMap", lambda o: o["map"]),
        ("model", "TAQBlocks", parts("queue")),
        ("map", "Subsystems", parts("root", "child")),
        ("map", "ReducedBlocks", parts("inner")),
        ("root", "Type", "root"),
        ("root", "Blocks", parts("inport", "block", "subsystemBlock", "outport")),
        ("root", "InputPortBlocks", parts("inport")),
        ("root", "SubsystemBlocks", parts("subsystemBlock")),
        ("root", "ChildSubsystems", parts("child")),
        ("root", "SubsystemBlock", None),
        ("child", "SubsystemBlock", lambda o: o["subsystemBlock"]),
        ("block", "Virtual", "Virtual"),
        ("block", "Parameters", parts("parameter")),
        ("block", "DiscreteStates", parts("discreteState")),
        ("block", "DWorks", parts("dWork")),
        ("block", "DataOutputPorts", parts("outPort")),
        ("inPort", "GraphicalSource", lambda o: o["inport"].DataOutputPorts[0]),
        ("outPort", "Regions", parts("region")),
        ("outPort", "TestPoint", True),
        ("region", "Offset", 2),
        ("state", "Dimensions", [3]),
        ("parameter", "ModelParameters", parts("modelParameter")),
        ("modelParameter", "GraphicalSource", lambda o: o["block"]),
        ("discreteState", "DataInterface", None),
        ("queue", "blockPath", "every_kind/Queue"),
        ("queue", "portNumber", 1),
        ("queue", "leafElements", parts("leaf1", "leaf2")),
        ("repository", "FileList", parts("header", "source", "types", "generic")),
        ("types", "Name", "every_kind_types.h"),
    ],
)
def test_properties_read_what_the_fixture_built(objects, name, attribute, expected):
    if callable(expected):
        expected = expected(objects)
    assert getattr(objects[name], attribute) == expected


def test_text_that_is_not_valid_unicode_is_refused(fixture):
    region, block = fixture.brokenText()
    for read in (lambda: region.Source, lambda: block.Name):
        with raises_diagnostic("i18n:InvalidText"):
            read()


@pytest.mark.parametrize(
    "name, identifier",
    [("dWork", "model_State.x"), ("region", "model_Signals.y"), ("modelParameter", "model_P.K")],
)
def test_data_interfaces_read_with_their_fields(objects, name, identifier):
    value = objects[name].DataInterface
    assert isinstance(value, velcg.DataInterface)
    assert value.identifier == identifier
    owner, _, _ = identifier.partition(".")
    assert (value.implementation, value.owner, value.typeName) == ("StructElement", owner, "double")
    assert value == objects[name].DataInterface and hash(value) == hash(objects[name].DataInterface)
    assert value != objects["discreteState"].DataInterface


def test_embedded_type_reads_with_its_name(objects):
    value = objects["cgType"].EmbeddedType
    assert isinstance(value, velcg.EmbeddedType) and value.name == "int32_t"
    assert value == objects["cgType"].EmbeddedType


@pytest.mark.parametrize(
    "name, attribute, value, expected",
    [
        ("system", "Identifier", "renamed", "renamed"),
        ("system", "IsModelReferenceBaseSystem", True, True),
        ("velType", "ID", -2**31, -2**31),
        ("model", "SharedCodeManagerPath", "/other/\u00e9", "/other/\u00e9"),
        ("queue", "fxpBias", 0.5, 0.5),
        ("queue", "fxpSlopeAdjFactor", 2, 2.0),
        ("queue", "uniqueId", 2**32 - 1, 2**32 - 1),
        ("queue", "nvBusOffset", -2**63, -2**63),
        ("queue", "signalSourceUUIDasInteger", 2**63 - 1, 2**63 - 1),
        ("queue", "enumLabels", ["A", "B"], ["A", "B"]),
        ("queue", "enumLabels", [], []),
        ("queue", "enumValues", [1, -2], [1, -2]),
        ("queue", "dimensions", (2, 2), [2, 2]),
        ("queue", "isDiscete", True, True),
        ("header", "Type", "header", "header"),
        ("header", "SystemsInFile", ["s1", "s2"], ["s1", "s2"]),
        ("header", "Filtered", True, True),
        ("system", "GraphicalCallsites", [], []),
        ("system", "GraphicalCallsites", None, []),
        ("system", "GraphicalCallsites", parts("queue", "leaf2"), parts("queue", "leaf2")),
        ("system", "GraphicalCallsites", lambda o: o["inport"], parts("inport")),
        ("queue", "leafElements", parts("leaf2", "leaf1"), parts("leaf2", "leaf1")),
    ],
)
def test_writable_properties_read_back_what_was_written(objects, name, attribute, value, expected):
    obj = objects[name]
    setattr(obj, attribute, value(objects) if callable(value) else value)
    result = getattr(obj, attribute)
    assert result == (expected(objects) if callable(expected) else expected)
    assert type(result) is type(expected(objects) if callable(expected) else expected)


INVALID_VALUE = "Korb:InvalidPropertyValue"


@pytest.mark.parametrize(
    "name, attribute, value",
    [
        ("velType", "ID", "7"),
        ("velType", "ID", 7.0),
        ("velType", "ID", True),
        ("velType", "ID", None),
        ("velType", "ID", 2**31),
        ("velType", "ID", -2**31 - 1),
        ("velType", "ID", 2**64),
        ("queue", "uniqueId", -1),
        ("queue", "nvBusOffset", 2**63),
        ("queue", "isEnum", 1),
        ("queue", "fxpBias", "0.5"),
        ("queue", "fxpBias", False),
        ("queue", "fxpBias", 2**53 + 1),
        ("queue", "enumLabels", [1, 2]),
        ("queue", "enumLabels", "AB"),
        ("queue", "enumValues", [1.5]),
        ("queue", "enumValues", [2**31]),
        ("queue", "blockPath", b"bytes"),
        ("queue", "blockPath", "\udcff"),
        ("system", "GraphicalCallsites", 1),
        ("system", "GraphicalCallsites", lambda o: [o["system"]]),
    ],
)
def test_values_of_the_wrong_type_are_refused_and_change_nothing(objects, name, attribute, value):
    obj = objects[name]
    before = getattr(obj, attribute)
    with raises_diagnostic(INVALID_VALUE) as caught:
        setattr(obj, attribute, value(objects) if callable(value) else value)
    # The name, the class and the cause.
    assert caught.value.arguments[:2] == [attribute, velcg.classOf(obj)]
    assert len(caught.value.arguments) == 3
    assert getattr(obj, attribute) == before


@pytest.mark.parametrize(
    "name, attribute",
    [
        ("block", "Name"),
        ("queue", "Name"),
        ("repository", "FileList"),
        ("header", "Name"),
        ("cgType", "Slope"),
    ],
)
def test_read_only_properties_refuse_any_value(objects, name, attribute):
    obj = objects[name]
    before = getattr(obj, attribute)
    with raises_diagnostic("Korb:ReadOnlyProperty", [attribute, velcg.classOf(obj)]):
        setattr(obj, attribute, before)
    assert getattr(obj, attribute) == before


@pytest.mark.parametrize("name, attribute", [("block", "Nope"), ("block", "name"), ("queue", "IsFixedPoint")])
def test_unknown_names_raise_an_attribute_error(objects, name, attribute):
    obj = objects[name]
    arguments = [attribute, velcg.classOf(obj)]
    with raises_diagnostic("Korb:UnknownProperty", arguments) as caught:
        getattr(obj, attribute)
    assert isinstance(caught.value, velcg.UnknownMemberError) and isinstance(caught.value, AttributeError)
    with raises_diagnostic("Korb:UnknownProperty", arguments):
        setattr(obj, attribute, 1)
    assert not hasattr(obj, attribute)
    assert getattr(obj, attribute, "default") == "default"


@pytest.mark.parametrize("close", [True, False], ids=["closed", "collected"])
@pytest.mark.parametrize(
    "use",
    [
        lambda o, m: o["block"].Name,
        lambda o, m: setattr(o["system"], "Identifier", "x"),
        lambda o, m: setattr(o["block"], "Nope", 1),
        lambda o, m: m(),
        lambda o, m: o["velType"].getName,
        lambda o, m: dir(o["queue"]),
        lambda o, m: hasattr(o["block"], "Name"),
        lambda o, m: velcg.classOf(o["model"]),
        lambda o, m: velcg.bridge(o["repository"]),
    ],
    ids=["get", "set", "set-unknown", "call", "method", "dir", "hasattr", "classOf", "bridge"],
)
def test_objects_of_a_destroyed_model_raise_invalid_handle(close, use):
    built = velcg_testing.Fixture()
    objects = dict(built.objects(), model=built.model, repository=built.repository)
    method = objects["velType"].getName
    if close:
        built.close()
    del built
    gc.collect()
    with raises_diagnostic("Korb:InvalidHandle"):
        use(objects, method)


def test_destroyed_objects_keep_their_repr_and_identity(fixture):
    block = fixture.objects()["block"]
    same = fixture.model.Systems[0].GraphicalCallsites[0]
    key = hash(block)
    fixture.close()
    assert repr(block) == "<VelCG.GraphicalBlock object (destroyed)>"
    assert hash(block) == key and block == same


@pytest.mark.parametrize(
    "name, method, arguments, expected",
    [
        ("velType", "getName", (), "int32_t"),
        ("velType", "isAliasType", (), True),
        ("velType", "getIdAliasedTo", (), -10),
        ("input", "getRecordIdentifier", (), "In1"),
        ("modelParameter", "getWorkspaceVarName", (), "Kws"),
        ("cgType", "getContainerTypeName", (), "int32_t"),
        ("system", "isRootSystem", (), False),
        ("model", "getSystemForFunction", ("missing",), None),
        ("repository", "findFileByName", ("main.c",), lambda o: o["generic"]),
        ("repository", "findFileByName", ("MAIN.c",), None),
        ("source", "hasSection", ("FUNCTIONS_SECTION",), True),
        ("source", "hasSection", ("DEFINE_SECTION",), False),
        ("source", "getFileSection", ("FUNCTIONS_SECTION",), lambda o: o["source"].getFunctionsSection()),
        ("source", "getFileSection", (4,), lambda o: o["source"].getDefinesSection()),
    ],
)
def test_methods_answer_with_the_python_type_of_their_result(objects, name, method, arguments, expected):
    result = getattr(objects[name], method)(*arguments)
    if callable(expected):
        expected = expected(objects)
    assert result == expected and type(result) is type(expected)


def test_methods_create_files_and_edit_sections(objects):
    repository, source = objects["repository"], objects["source"]
    created = repository.createGenericFile("x.c")
    assert type(created) is velcg.VelCGGenericFile
    assert type(repository.createDataTypesFile("x_types.h")) is velcg.VelCGDataTypesFile
    assert repository.findFileByName("x.c") == created and len(repository.FileList) == 6

    functions = source.getFunctionsSection()
    assert type(functions) is velcg.FunctionsSection
    assert functions.addFunction("step", "void step(void) {}\n") is None
    assert functions.getNumberOfFunctions() == 1
    assert (functions.getFunctionName(1), functions.getFunction(1)) == ("step", "void step(void) {}\n")
    includes = source.getIncludesSection()
    assert type(includes) is velcg.IncludesSection
    includes.addInclude("math.h", True)
    includes.RequiredIncludes = ["every_kind.h"]
    assert includes.getContent() == '\n#include "every_kind.h"\n#include <math.h>\n'


def target(objects, name):
    """A part of the fixture, or a section of its module source."""
    source = objects["source"]
    sections = {"functions": source.getFunctionsSection, "includes": source.getIncludesSection}
    return sections[name]() if name in sections else objects[name]


WRONG_COUNT = "Korb:WrongNumberOfArguments"
WRONG_ARGUMENT = "Korb:InvalidMethodArgument"
BAD_FUNCTION = "VelCG:FunctionsSection:InvalidFunctionIndex"


@pytest.mark.parametrize(
    "name, method, arguments, identifier, details",
    [
        ("velType", "getName", (1,), WRONG_COUNT, ["0", "1"]),
        ("model", "getSystemForFunction", (), WRONG_COUNT, ["1", "0"]),
        ("model", "getSystemForFunction", (1,), WRONG_ARGUMENT, ["1"]),
        ("functions", "getFunction", (1.0,), WRONG_ARGUMENT, ["1"]),
        ("functions", "getFunction", (2**31,), WRONG_ARGUMENT, ["1"]),
        ("includes", "addInclude", ("a.h", 1), WRONG_ARGUMENT, ["2"]),
        ("header", "getFileSection", (1.5,), WRONG_ARGUMENT, ["1"]),
        # A diagnostic of the native method itself passes through.
        ("functions", "getFunction", (0,), BAD_FUNCTION, ["Function", "0", "0"]),
    ],
)
def test_method_calls_with_wrong_arguments_are_refused(objects, name, method, arguments, identifier, details):
    obj = target(objects, name)
    with raises_diagnostic(identifier) as caught:
        getattr(obj, method)(*arguments)
    if identifier == WRONG_ARGUMENT:
        # The method, its class, the position and the cause.
        details = [method, velcg.classOf(obj)] + details
        assert len(caught.value.arguments) == 4
    assert caught.value.arguments[: len(details)] == details


def test_python_classes_follow_the_class_hierarchy(objects):
    for name in velcg_testing.classNames():
        cls, superclass = python_class(name), velcg_testing.describeClass(name)["superclass"]
        assert cls.__module__ == "velcg" and issubclass(cls, velcg.Object)
        base = python_class(superclass) if superclass.startswith("VelCG.") else velcg.Object
        assert cls.__bases__ == (base,)
    queue = objects["queue"]
    assert isinstance(queue, velcg.GraphicalBlock)
    assert not isinstance(objects["block"], velcg.ToAsyncQueueBlock)
    # Superclass members answer on the subclass.
    assert (queue.Name, queue.VelName, queue.DataInputPorts) == ("Queue", "Queue", [])
    assert target(objects, "functions").isEmpty() is True


@pytest.mark.parametrize("name", ["velType", "queue", "source", "repository"])
def test_dir_lists_exactly_the_members_of_the_class(objects, name):
    obj = objects[name]
    info = describe(obj)
    members = {p["name"] for p in info["properties"]} | {m["name"] for m in info["methods"]}
    assert set(dir(obj)) == members


def test_repr_names_the_qualified_class(objects):
    assert repr(objects["queue"]) == "<VelCG.ToAsyncQueueBlock object>"
    assert repr(objects["model"]) == "<VelCG.CGModel object>"
    assert repr(objects["velType"].getName) == "<method getName of VelCG.VelType object>"


def test_equality_and_hash_are_the_identity_of_the_native_object(objects):
    block = objects["block"]
    again = objects["system"].GraphicalCallsites[0]
    # Read again through the same object, while it lives, the same Python
    # object; reached otherwise (here, by the fixture), an equal one.
    assert objects["system"].GraphicalCallsites[0] is again
    assert block is not again and block == again and not block != again
    assert hash(block) == hash(again) and len({block, again, objects["inport"]}) == 2
    assert block != objects["inport"] and block != "Gain" and block != None  # noqa: E711
    assert objects["queue"] == objects["model"].TAQBlocks[0]


def test_properties_are_descriptors_of_their_class(objects):
    cg_type = objects["cgType"]
    descriptor = type(cg_type).__dict__["Name"]
    assert isinstance(descriptor, velcg.PropertyDescriptor)
    # Read on the class, a property is its descriptor, the same each time.
    assert velcg.VelCGType.Name is descriptor and repr(descriptor) == "<property Name>"
    assert descriptor.__get__(cg_type, type(cg_type)) == cg_type.Name
    before = cg_type.Name
    with pytest.raises(AttributeError):
        del cg_type.Name
    assert cg_type.Name == before
    # Anything but an initialized velcg object is refused, not read.
    for target in (object(), 5, velcg.VelCGType.__new__(velcg.VelCGType)):
        with pytest.raises((TypeError, RuntimeError)):
            descriptor.__get__(target, type(target))
        with pytest.raises((TypeError, RuntimeError)):
            descriptor.__set__(target, "x")


def test_help_shows_the_docstrings_and_argument_names_of_the_stub(objects):
    """Every member's docstring in velcg.pyi is what Python itself says of it,
    and every public member of the module's classes is in the stub."""
    path = os.path.join(os.path.dirname(velcg.__file__), "velcg.pyi")
    if not os.path.exists(path):
        pytest.skip("the stub is made by velcg-inspect, which builds with the tools (VELCG_BUILD_TOOLS)")
    with open(path, encoding="utf-8") as f:
        stub = ast.parse(f.read())
    documented = 0
    for cls in (c for c in stub.body if isinstance(c, ast.ClassDef)):
        python = getattr(velcg, cls.name)
        defs = [i for i in cls.body if isinstance(i, ast.FunctionDef) and not i.name.startswith("_")]
        for item in defs:
            assert ast.get_docstring(item) in getattr(python, item.name).__doc__, f"{cls.name}.{item.name}"
            documented += 1
        assert {n for n in vars(python) if not n.startswith("_")} <= {i.name for i in defs}, cls.name
    assert documented > 250
    # Methods of the package's classes have their arguments' names, and are
    # unbound methods that take the object first.
    get_system = velcg.CGModel.getSystemForFunction
    assert str(inspect.signature(get_system)) == "(self, functionName, /)"
    assert get_system(objects["model"], "no_such_function") is None
    assert objects["model"].getName.__doc__ == "The model's name."


def test_instances_never_initialized_are_refused_not_read(objects):
    # Classes whose instances only native code makes cannot be made from Python.
    for cls in (velcg.Bridge, velcg.CustomContents, velcg.Method, velcg.DataInterface,
                velcg.EmbeddedType, velcg.HostValue, velcg.MethodDescriptor):
        with pytest.raises(TypeError):
            cls.__new__(cls)
    # An object that __new__ made without __init__ has no native state: every
    # use of it raises TypeError instead of reading memory.
    for bare in (velcg.Object.__new__(velcg.Object), velcg.VelCGType.__new__(velcg.VelCGType)):
        uses = (repr, hash, dir, velcg.classOf, velcg.bridge,
                lambda o: o == objects["cgType"], lambda o: objects["cgType"] == o,
                lambda o: o.getName, lambda o: setattr(o, "Name", "x"),
                lambda o: velcg.Object.__getattribute__(o, "Name"),
                lambda o: type(objects["velType"]).__dict__["getName"].__get__(o, type(o)),
                lambda o: setattr(objects["system"], "GraphicalCallsites", [o]))
        for use in uses:
            with pytest.raises(TypeError):
                use(bare)
