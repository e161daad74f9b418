"""Checks the Python type stub that `velcg-inspect classes --python` prints.

Usage: check_python_stub.py PATH_TO_VELCG_INSPECT
"""

import ast
import builtins
import subprocess
import sys


def fail(message):
    sys.exit("check_python_stub: " + message)


def annotation_names(node):
    """The names an annotation refers to."""
    return {n.id for n in ast.walk(node) if isinstance(n, ast.Name)}


def members(cls):
    """The class body's members: name -> annotation of the value read."""
    out = {}
    for item in cls.body:
        if isinstance(item, ast.AnnAssign):
            out[item.target.id] = item.annotation
        elif isinstance(item, ast.FunctionDef):
            out.setdefault(item.name, item.returns)
    return out


def check_names_resolve(module):
    """Every base and every type named in an annotation is a builtin or a
    module-level name, and no member of the class hides it in the class body."""
    defined = {"Any", "BinaryIO"}
    for item in module.body:
        if isinstance(item, ast.ClassDef):
            for base in item.bases:
                if base.id not in defined and not hasattr(builtins, base.id):
                    fail(f"class {item.name} derives from {base.id}, not defined before it")
            defined.add(item.name)
        elif isinstance(item, ast.Assign):
            defined.update(t.id for t in item.targets)
        elif isinstance(item, ast.FunctionDef):
            defined.add(item.name)
    for cls in (c for c in module.body if isinstance(c, ast.ClassDef)):
        own = set(members(cls))
        for node in ast.walk(cls):
            annotations = []
            if isinstance(node, ast.AnnAssign):
                annotations.append(node.annotation)
            elif isinstance(node, ast.FunctionDef):
                annotations.append(node.returns)
                annotations.extend(a.annotation for a in node.args.posonlyargs + node.args.args)
            for name in set().union(*(annotation_names(a) for a in annotations if a)):
                if name not in defined and not hasattr(builtins, name):
                    fail(f"{cls.name} uses the type {name}, which the stub does not define")
                if name in own:
                    fail(f"{cls.name} uses the type {name}, which a member of the class hides")


def check_package_classes(module):
    classes = {c.name: c for c in module.body if isinstance(c, ast.ClassDef)}
    expected = [
        ("ToAsyncQueueBlock", None, "GraphicalBlock"),
        ("CGModel", "Systems", "list[System]"),
        ("CGModel", "BlockHierarchyMap", "_BlockHierarchyMap | None"),
        ("VelCGFileRepository", "FileList", "list[VelCGFile]"),
        ("ToAsyncQueueBlock", "leafElements", "list[ToAsyncQueueBlock]"),
        ("Region", "DataInterface", "_DataInterface | None"),
        ("VelCGType", "EmbeddedType", "_EmbeddedType | None"),
        ("VelCGFileRepository", "findFileByName", "VelCGFile | None"),
        ("VelCGModuleFile", "getFunctionsSection", "FunctionsSection"),
        ("VelCGGenericFile", "getFunctionsSection", "FileSection"),
        ("Bridge", "getStringArrayAttribute", "list[str]"),
    ]
    for cls, member, want in expected:
        if cls not in classes:
            fail(f"no class {cls}")
        if member is None:
            got = ", ".join(ast.unparse(b) for b in classes[cls].bases)
        else:
            annotation = members(classes[cls]).get(member)
            got = ast.unparse(annotation) if annotation else "nothing"
        if got != want:
            fail(f"{cls}.{member or '(bases)'}: {got}, expected {want}")


def check_documented(module):
    """Every class and every member but a setter carries a docstring, and
    arguments have their own names."""
    for cls in (c for c in module.body if isinstance(c, ast.ClassDef)):
        if not ast.get_docstring(cls):
            fail(f"class {cls.name} has no docstring")
        for item in cls.body:
            if not isinstance(item, ast.FunctionDef):
                continue
            setter = any(isinstance(d, ast.Attribute) and d.attr == "setter" for d in item.decorator_list)
            if not setter and not ast.get_docstring(item):
                fail(f"{cls.name}.{item.name} has no docstring")
            for arg in item.args.posonlyargs + item.args.args:
                if arg.arg[0] == "a" and arg.arg[1:].isdigit():
                    fail(f"{cls.name}.{item.name} has an argument without a name of its own: {arg.arg}")


def main():
    stub = subprocess.run([sys.argv[1], "classes", "--python"], check=True, capture_output=True, text=True).stdout
    try:
        module = ast.parse(stub)
    except SyntaxError as e:
        fail(f"not valid Python: {e}")
    check_names_resolve(module)
    check_package_classes(module)
    check_documented(module)


if __name__ == "__main__":
    main()
