"""bindings/functions.json has exactly what the headers declare, and the declarations of all languages are made of it.

usage: table_test.py SOURCE_FOLDER
"""
import importlib.util
import json
import pathlib
import re
import sys

import headers

CONSTANT_TEXTS = ("path", "text", "key", "utf8")
OUTPUTS = ("text out", "text appended", "number out", "array out", "length out", "struct out", "record out", "result",
           "error")
NUMBERS = {"float", "double", "int16_t", "int32_t", "uint8_t", "uint16_t", "uint32_t", "uint64_t", "size_t"}


def differences(table, header):
    """What a library of the table and its header do not have in common."""
    wrong = []
    listed = {one["name"]: (one["returns"]["type"], [(each["type"], each["name"]) for each in one["parameters"]])
              for one in table["functions"]}
    if len(listed) != len(table["functions"]):
        wrong.append("a function is in the table twice")
    wrong += [f"{name} is not in the table" for name in header["functions"].keys() - listed.keys()]
    wrong += [f"{name} is in the table, but not in the header" for name in listed.keys() - header["functions"].keys()]
    wrong += [f"{name}: the table has {listed[name]}, the header {declared}"
              for name, declared in header["functions"].items() if listed.get(name, declared) != declared]
    structs = {name: [(c_type, member) for member, c_type in members.items()]
               for name, members in table["structs"].items()}
    for what, found, wanted in (("structs", structs, header["structs"]), ("types", table["types"], header["types"]),
                                ("constants", table["constants"], header["constants"])):
        wrong += [f"{what}: {name} is {found.get(name)} in the table, {wanted.get(name)} in the header"
                  for name in sorted(found.keys() | wanted.keys()) if found.get(name) != wanted.get(name)]
    return wrong


def meanings(table):
    """Whether what the table says of each parameter is complete and fits its type."""
    wrong = []
    for library in table["libraries"]:
        for function in library["functions"]:
            names = {one["name"]: one for one in function["parameters"]}
            for one in function["parameters"]:
                what, c_type = one["is"], one["type"]
                base = library["types"].get(c_type, c_type)
                is_text = c_type.rstrip("*") in ("char", "const char")
                fits = (what in table["is"] and (what in CONSTANT_TEXTS) == (c_type == "const char*")
                        and (what in OUTPUTS) == ("*" in c_type and not c_type.startswith("const ")
                                                  and what not in ("record", "record freed"))
                        and (what in ("text out", "text appended")) == (c_type == "char*")
                        and (base in NUMBERS) == (what in ("number", "ignored", "size", "size of inputs", "flags"))
                        and ("count" in one) == (what in ("array", "array out", "inputs"))
                        and (what not in ("text out", "text appended") or ("room" in one) != ("size" in one))
                        and ("values" in one) == (what == "flags")
                        and all(value in library["constants"] for value in one.get("values", ()))
                        and one.keys() <= {"name", "type", "is", "room", "size", "length", "count", "null", "most",
                                           "values"}
                        and (what not in ("record", "record freed", "record out")
                             or c_type.removeprefix("const ").rstrip("*") in table["records"])
                        and ("most" not in one or is_text))
                if "size" in one:
                    fits = fits and names[one["size"]]["is"] == "size" and names[one["length"]]["is"] == "length out"
                if not fits:
                    wrong.append(f"{function['name']}: what the table says of {one['name']} is incomplete or does not "
                                 f"fit: {json.dumps(one)}")
            if not function["does"].endswith(".") or not function["returns"]["is"]:
                wrong.append(f"{function['name']}: the table does not say what it does and returns")
    for name, record in table["records"].items():
        known = {one["name"] for library in table["libraries"] for one in library["functions"]}
        made = record["created"] if isinstance(record["created"], list) else []
        wrong += [f"{name}: {one} does not exist" for one in made + [record.get("freed")] if one and one not in known]
    return wrong


def without_method(table, root):
    """Functions that the classes of a language do not call where the table says."""
    folder = root / "bindings"
    sources = {"csharp": ["Support.cs", "Torvio.cs", "Files.cs"], "pascal": ["torvio.pas", "oldtorvio.pas"],
               "node": ["torvio.js", "oldtorvio.js", "index.js"]}
    wrong = []
    for language, names in sources.items():
        text = "\n".join((folder / language / name).read_text(encoding="utf-8") for name in names)
        for library in table["libraries"]:
            for function in library["functions"]:
                if "method" not in function:
                    continue
                class_name, _, method = function["method"].partition(".")
                called = [function["name"]]
                if language == "node":
                    class_name = "torvio" if class_name == "Torvio" else class_name
                    method = method[:1].lower() + method[1:]
                    called.append("'" + function["name"].removeprefix("torvio_") + "'")
                found = any(re.search(rf"(?<![A-Za-z_]){re.escape(one)}(?![A-Za-z_])", text) for one in called)
                has_class = re.search({"csharp": rf"class {class_name}\b", "pascal": rf"  T{class_name} = class",
                                       "node": rf"(class|const) {class_name}\b|\b{class_name}:"}[language], text)
                has_method = not method or re.search(
                    {"csharp": rf"public static \S+ {method}\b|public \S+ {method}\(",
                     "pascal": rf"(function|procedure|constructor) T{class_name}\.{method}\b",
                     "node": rf"^  (static )?{method}(\(|:)"}[language], text, re.M)
                if not (found and has_class and has_method):
                    wrong.append(f"bindings/{language} does not call {function['name']} in {function['method']}")
    # Only what other languages cannot use has no method.
    for library in table["libraries"]:
        for function in library["functions"]:
            cpp_only = any(table["records"].get(one["type"].rstrip("*"), {}).get("created") == "by C++ programs only"
                           for one in function["parameters"])
            other = function["name"] in ("torvio_free", "DeleteSheetInfo")
            if ("method" in function) == (cpp_only or other):
                wrong.append(f"{function['name']} has {'a' if 'method' in function else 'no'} method in the table")
    return wrong


def unnoticed(table, text):
    """Changes of a header that the comparison does not notice."""
    changes = [("/* ---- ", "{export} void added(int32_t index) {noexcept};\n/* ---- "),  # a new function
               ("(const char* path, TorvPart* part)", "(const char* path)"),
               ("(const char* path, TorvPart* part)", "(const char* path, TorvPart* part, int32_t more)"),
               ("float width, float height, float thickness,", "float width, float thickness, float height,"),
               ("uint16_t AddPatIntoGroupPat", "uint32_t AddPatIntoGroupPat"),
               ("VersionWord version)", "int32_t version)"),
               ("float infoSizeX;", "double infoSizeX;"), ("  float infoSizeY;\n", ""),
               ("typedef int64_t Status;", "typedef int32_t Status;"),
               ("int32_t version, uint32_t flags,", "uint32_t version, uint32_t flags,"),
               ("  uint64_t offset; ", "  uint32_t offset; "), ("const void* data;", "void* data;"),
               ("TORVIO_REFUSED = 4", "TORVIO_REFUSED = 7"), ("UINT32_C(8)", "UINT32_C(16)"),
               ("TORVIO_API const char* torvio_version(void) TORVIO_NOEXCEPT;", "")]
    missed, made = [], 0
    for old, new in changes:
        own = "TORVIO" if table["name"] == "torvio" else "OLDTORVIO"
        new = new.replace("{export}", own + "_API").replace("{noexcept}", own + "_NOEXCEPT")
        if old in text:
            made += 1
            if not differences(table, headers.parse(text.replace(old, new, 1))):
                missed.append(f"{table['name']}: a change of {old!r} into {new!r} is not noticed")
    return missed + ([] if made >= 5 else [f"{table['name']}: hardly any change can be made"])


def main():
    root = pathlib.Path(sys.argv[1])
    loaded = importlib.util.spec_from_file_location("generate", root / "bindings" / "generate.py")
    generate = importlib.util.module_from_spec(loaded)
    loaded.loader.exec_module(generate)
    table, wrong = generate.read_table(), []
    for library in table["libraries"]:
        text = (root / library["header"]).read_text(encoding="utf-8")
        found = differences(library, headers.parse(text))
        wrong += [f"{library['header']}: {one}" for one in found]
        wrong += unnoticed(library, text) if not found else []
        if "exports" in library:
            exports = (root / library["exports"]).read_text().split()
            wrong += [f"{name} is only in one of functions.json and {library['exports']}"
                      for name in set(exports) ^ {one["name"] for one in library["functions"]}]
    wrong += meanings(table) + without_method(table, root)
    version = re.search(r"project\(OldTorvIO VERSION ([\d.]+)", (root / "CMakeLists.txt").read_text())[1]
    for folder in ("bindings/node", "web/package"):
        for name in ("package.json", "package-lock.json"):
            found = json.loads((root / folder / name).read_text())["version"]
            wrong += [f"{folder}/{name} has version {found}, CMakeLists.txt {version}"] if found != version else []
    if not wrong:
        wrong += [f"bindings/{name} is out of date: run bindings/generate.py"
                  for name, content in generate.all_files().items()
                  if not (root / "bindings" / name).exists()
                  or (root / "bindings" / name).read_bytes() != content.encode()]
    print("\n".join(wrong) or f"{sum(len(one['functions']) for one in table['libraries'])} functions")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
