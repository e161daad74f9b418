"""The script bridge: attributes and sections by name, files written from Python."""

import io

import pytest
import velcg
from conftest import GENERIC, SOURCE, TYPES, closed_sink, raises_diagnostic

SCRIPT_BYTES = b"/* written by the script */\n"


def fill_module(bridge):
    bridge.setAttribute(SOURCE, "RequiredIncludes", "every_kind.h")
    bridge.addSectionContent(SOURCE, "Includes", '#include "every_kind_types.h"\n')
    # "Appended" is left for appendMissingTokens; the script places "Placed" itself.
    bridge.addCustomSection(SOURCE, "Declarations", "Appended")
    bridge.addCustomSection(SOURCE, "Declarations", "Placed")
    contents = bridge.customContents(SOURCE)
    assert contents.isCustomSection("Appended") and not contents.isCustomSection("Other")
    contents.addContentToSection("Appended", "static int appended;\n")
    contents.addContentToSection("Placed", b"static int placed;\n")
    contents.setCustomTokenInUse("Placed")
    bridge.addSectionContent(SOURCE, "Declarations", "int counter;\n")
    # Bytes that are not UTF-8 pass through unchanged.
    bridge.addSectionContent(SOURCE, "Functions", b"/* \x01\xfe */\n")
    bridge.addSectionContent(SOURCE, "Functions", contents.getCustomSectionContent("Placed", "Functions"))


def fill_types(bridge):
    bridge.setAttribute(TYPES, "RequiredIncludes", "<stdint.h>")
    bridge.addCustomSection(TYPES, "Types", "MyTypes")
    bridge.customContents(TYPES).addContentToSection("MyTypes", "typedef double every_kind_real;\n")
    bridge.addSectionContent(TYPES, "Typedefs", "typedef int every_kind_int;\n")
    bridge.addSectionContent(TYPES, "Defines", "#define EVERY_KIND_TYPES_H\n")


def fill_generic(bridge):
    bridge.addSectionContent(GENERIC, "Banner", "/* main.c */\n")
    bridge.addCustomSection(GENERIC, "UserTop", "Top")
    bridge.customContents(GENERIC).addContentToSection("Top", "/* top */\n")
    bridge.addSectionContent(GENERIC, "Functions", "int main(void) { return 0; }\n")
    bridge.addSectionContent(GENERIC, "UserBottom", "/* bottom */\n")


# Each file kind: its index, how a template fills it, and its bytes when
# every section is written in order with SCRIPT_BYTES after "Declarations".
FILES = {
    "module": (
        SOURCE,
        fill_module,
        b'\n#include "every_kind.h"\n#include "every_kind_types.h"\n'
        b"int counter;\nstatic int appended;\n" + SCRIPT_BYTES + b"/* \x01\xfe */\nstatic int placed;\n",
    ),
    "types": (
        TYPES,
        fill_types,
        b"\n#include <stdint.h>\n#define EVERY_KIND_TYPES_H\n"
        b"typedef int every_kind_int;\ntypedef double every_kind_real;\n" + SCRIPT_BYTES,
    ),
    "generic": (
        GENERIC,
        fill_generic,
        b"/* main.c */\n/* top */\n" + SCRIPT_BYTES + b"int main(void) { return 0; }\n/* bottom */\n",
    ),
}

SINKS = {
    "file": lambda path: open(path, "wb"),
    "unbuffered": lambda path: open(path, "wb", buffering=0),
    "bytesio": lambda path: io.BytesIO(),
}


@pytest.mark.parametrize("sink", SINKS)
@pytest.mark.parametrize("kind", FILES)
def test_files_filled_through_the_bridge_are_written_byte_for_byte(bridge, tmp_path, kind, sink):
    index, fill, expected = FILES[kind]
    fill(bridge)
    for name in velcg.sectionNames:
        bridge.appendMissingTokens(index, name)
    path = tmp_path / bridge.getStringAttribute(index, "Name")
    with SINKS[sink](path) as out:
        for name in velcg.sectionNames:
            bridge.writeSection(index, name, out)
            if name == "Declarations":
                out.write(SCRIPT_BYTES)
        # The file object stands where the writing ended.
        assert out.tell() == len(expected)
        if isinstance(out, io.BytesIO):
            path.write_bytes(out.getvalue())
    assert path.read_bytes() == expected


def test_sections_read_as_text_that_writes_back_as_the_same_bytes(bridge):
    bridge.addSectionContent(SOURCE, "Functions", b"/* \x01\xfe */\n")
    text = bridge.getStringAttribute(SOURCE, "Functions")
    assert text == "/* \x01\udcfe */\n"
    bridge.addSectionContent(SOURCE, "Defines", text)
    out = io.BytesIO()
    bridge.writeSection(SOURCE, "Defines", out)
    assert out.getvalue() == b"/* \x01\xfe */\n"


def test_section_names_are_in_file_order():
    names = velcg.sectionNames
    assert names[0] == "Banner" and names[-1] == "UserBottom" and len(set(names)) == len(names) == 21
    order = [names.index(n) for n in ("Includes", "Typedefs", "Declarations", "Functions")]
    assert order == sorted(order)
    assert "Types" not in names


@pytest.mark.parametrize(
    "name, kinds",
    [
        ("Filter", "b..."),
        ("IsEmpty", "b..."),
        ("Name", ".s.."),
        ("SystemsInFile", "..a."),
        ("Includes", ".s.f"),
        ("UserBottom", ".s.f"),
        ("Types", "...."),
        ("includes", "...."),
    ],
)
def test_attribute_names_are_classified_by_kind(bridge, name, kinds):
    tests = (
        bridge.isBooleanAttribute,
        bridge.isStringAttribute,
        bridge.isStringArrayAttribute,
        bridge.isFileSectionAttribute,
    )
    assert "".join(mark if test(name) else "." for mark, test in zip("bsaf", tests)) == kinds


@pytest.mark.parametrize(
    "name, value, read, expected, attribute",
    [
        ("Type", "source", "getStringAttribute", "source", "Type"),
        ("Group", "gr\u00fcn", "getStringAttribute", "gr\u00fcn", "Group"),
        ("Indent", True, "getBooleanAttribute", True, "Indent"),
        ("SystemsInFile", "every_kind", "getStringArrayAttribute", ["every_kind"], "SystemsInFile"),
    ],
)
def test_attributes_set_through_the_bridge_read_back_on_both_sides(
    bridge, objects, name, value, read, expected, attribute
):
    bridge.setAttribute(SOURCE, name, value)
    assert getattr(bridge, read)(SOURCE, name) == expected
    assert getattr(objects["source"], attribute) == expected


def test_bridge_counts_the_files_of_its_repository(bridge, objects):
    assert bridge.numberOfFiles == 4
    objects["repository"].createGenericFile("extra.c")
    assert bridge.numberOfFiles == 5
    assert bridge.getStringAttribute(4, "Name") == "extra.c"


INDEX = "VelCG:FileRepScrivBridge:InvalidFileIndex"
SECTION = "VelCG:FileRepScrivBridge:UnknownSection"
WRONG_TYPE = "VelCG:FileRepScrivBridge:WrongAttributeType"
READ_ONLY = "VelCG:FileRepScrivBridge:ReadOnlyAttribute"
ARGUMENT = "VelCG:Python:InvalidArgument"
BUILTIN = "Brisk:codeGen:CustomContentInvalidBuiltin"
WRITE = "VelCG:FileRepScrivBridge:WriteFailed"


@pytest.mark.parametrize(
    "call, identifier, arguments",
    [
        (lambda b, out: b.getBooleanAttribute(4, "Filter"), INDEX, ["4", "4"]),
        (lambda b, out: b.setAttribute(-1, "Type", "x"), INDEX, ["-1", "4"]),
        (lambda b, out: b.writeSection(7, "Includes", out), INDEX, ["7", "4"]),
        (lambda b, out: b.customContents(9), INDEX, ["9", "4"]),
        (lambda b, out: b.writeSection(SOURCE, "Types", out), SECTION, None),
        (lambda b, out: b.addSectionContent(SOURCE, "", "x"), SECTION, None),
        (lambda b, out: b.appendMissingTokens(SOURCE, "includes"), SECTION, None),
        (
            lambda b, out: b.getBooleanAttribute(SOURCE, "Name"),
            WRONG_TYPE,
            ["Name", "string", "boolean", "getStringAttribute"],
        ),
        (lambda b, out: b.setAttribute(SOURCE, "Name", "x"), READ_ONLY, ["Name", "getStringAttribute"]),
        (lambda b, out: b.addCustomSection(SOURCE, "typedefs", "Mine"), BUILTIN, ["Mine", "typedefs"]),
        (lambda b, out: b.setAttribute(SOURCE, "Type", 1), ARGUMENT, None),
        (lambda b, out: b.addSectionContent(SOURCE, "Defines", None), ARGUMENT, None),
        (
            lambda b, out: b.writeSection(SOURCE, "Includes", closed_sink()),
            WRITE,
            ["every_kind.c", "Includes", "the file is closed"],
        ),
    ],
)
def test_bad_indices_names_and_values_are_refused_without_writing(
    bridge, objects, call, identifier, arguments
):
    out = io.BytesIO()
    with raises_diagnostic(identifier, arguments):
        call(bridge, out)
    assert out.getvalue() == b""
    assert objects["source"].IsEmpty and objects["source"].Type == ""


@pytest.mark.parametrize(
    "call",
    [
        lambda b, i, out: b.getBooleanAttribute(i, "Filter"),
        lambda b, i, out: b.getStringAttribute(i, "Name"),
        lambda b, i, out: b.getStringArrayAttribute(i, "RequiredIncludes"),
        lambda b, i, out: b.setAttribute(i, "Type", "x"),
        lambda b, i, out: b.addSectionContent(i, "Defines", "x"),
        lambda b, i, out: b.addCustomSection(i, "typedefs", "Types"),
        lambda b, i, out: b.appendMissingTokens(i, "Includes"),
        lambda b, i, out: b.writeSection(i, "Includes", out),
        lambda b, i, out: b.customContents(i),
    ],
)
def test_file_indices_are_ints_not_bools(bridge, objects, call):
    out = io.BytesIO()
    for index in (False, True, 1.0, "1"):
        with pytest.raises(TypeError):
            call(bridge, index, out)
    assert out.getvalue() == b""
    assert objects["source"].IsEmpty and objects["source"].Type == ""


@pytest.mark.parametrize(
    "value, described",
    [
        (lambda o: o["model"], "VelCG.CGModel"),
        (lambda o: o["header"], "VelCG.VelCGModuleFile"),
        (lambda o: 1, "a Python int (1)"),
    ],
)
def test_a_bridge_needs_a_repository(objects, value, described):
    with raises_diagnostic("VelCG:Python:NotARepository", [described]):
        velcg.bridge(value(objects))


@pytest.mark.parametrize(
    "open_sink",
    [
        lambda path: open(path, "w"),
        lambda path: io.StringIO(),
        lambda path: open(path, "a", encoding="utf-8"),
    ],
    ids=["text-file", "stringio", "text-append"],
)
def test_text_mode_files_are_refused(bridge, tmp_path, open_sink):
    bridge.addSectionContent(SOURCE, "Defines", "#define X 1\n")
    path = tmp_path / "out.c"
    with open_sink(path) as out, raises_diagnostic("VelCG:Python:NotABinaryFile") as caught:
        bridge.writeSection(SOURCE, "Defines", out)
    assert caught.value.arguments[0] == "Defines"
    assert not path.exists() or path.read_bytes() == b""


def test_a_file_open_for_reading_cannot_be_written(bridge, tmp_path):
    path = tmp_path / "in.c"
    path.write_bytes(b"kept\n")
    bridge.addSectionContent(SOURCE, "Defines", "#define X 1\n")
    with open(path, "rb") as out, raises_diagnostic("VelCG:FileRepScrivBridge:WriteFailed"):
        bridge.writeSection(SOURCE, "Defines", out)
    assert path.read_bytes() == b"kept\n"


def test_whole_files_are_written_under_plain_names_inside_the_directory(bridge, objects, tmp_path):
    (out := tmp_path / "out").mkdir()
    index, fill, expected = FILES["module"]
    fill(bridge)
    bridge.writeFile(index, str(out))
    written = out / "every_kind.c"
    assert written.read_bytes() == expected.replace(SCRIPT_BYTES, b"")
    assert bridge.getBooleanAttribute(index, "WrittenToDisk")
    inode = written.stat().st_ino
    bridge.writeFile(index, str(out))
    assert written.stat().st_ino == inode, "the same bytes again replaced the file"
    # Names that would leave the directory, or are not one file everywhere.
    for name in ["../up.h", str(tmp_path / "abs.h"), "..\\up.h", "C:x.h", "x.h:s", "CON", "lpt9.h", "dot."]:
        objects["repository"].createGenericFile(name)
        with raises_diagnostic("VelCG:FileRepScrivBridge:NotAPlainFileName") as caught:
            bridge.writeFile(bridge.numberOfFiles - 1, str(out))
        assert caught.value.arguments[0] == name
    assert sorted(p.relative_to(tmp_path).as_posix() for p in tmp_path.rglob("*")) == ["out", "out/every_kind.c"]
