"""Makes the declarations of both libraries for C#, Pascal and JavaScript from functions.json.

usage: generate.py           writes the files
       generate.py --check   compares them with what it would write; 1 if one differs
"""
import json
import pathlib
import re
import sys

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent
NOTE = "Made by bindings/generate.py from functions.json: do not edit."
CPP_ONLY = "by C++ programs only"


def read_table():
    return json.loads((HERE / "functions.json").read_text(encoding="utf-8"))


def read_code_pages():
    """Name and the 128 characters from 0x80 on of each code page, as the library has them."""
    source = (ROOT / "torvio/values/text_encoding.cpp").read_text(encoding="utf-8")
    pages = {name: [int(one, 16) for one in re.findall(r"0x([0-9A-F]{4})", characters)]
             for name, characters in re.findall(r'\{"(\w+)",\s*\{([^}]*)\}\}', source)}
    for name, characters in pages.items():
        if len(characters) != 128 or len(set(characters)) != 128:
            raise ValueError(f"the code page {name} of text_encoding.cpp has not 128 different characters")
    if "cp1252" not in pages:
        raise ValueError("text_encoding.cpp has no code pages in the expected form")
    return pages


def read_abi_version():
    """What follows ".so." in the names of the shared libraries; CMakeLists.txt has the same rule."""
    major, minor = re.search(r"project\(OldTorvIO VERSION (\d+)\.(\d+)", (ROOT / "CMakeLists.txt").read_text()).groups()
    return f"{major}.{minor}" if major == "0" else major


class Declarations:
    """What the languages share: the table with its types resolved."""

    def __init__(self, table):
        self.table = table
        self.types = {name: real for library in table["libraries"] for name, real in library["types"].items()}
        self.records = table["records"]

    def real(self, c_type):
        """The type without const, and with typedefs resolved."""
        c_type = c_type.replace("const ", "")
        base = c_type.rstrip("*")
        return self.types.get(base, base) + "*" * (len(c_type) - len(base))

    def remark(self, function):
        """For functions that only C++ programs can use."""
        for one in function["parameters"]:
            record = self.real(one["type"]).rstrip("*")
            if self.records.get(record, {}).get("created") == CPP_ONLY:
                return " Only C++ programs can create its record: torvio_json reads such files in other languages."
        return ""


def wrapped(lines, opening, parts, closing, indent, width=120):
    """The parts after the opening, separated by ", ", in lines of at most that width."""
    line = opening
    for number, part in enumerate(parts):
        text = part + (", " if number + 1 < len(parts) else closing)
        if len(line) + len(text.rstrip()) > width:
            lines.append(line.rstrip())
            line = indent
        line += text
    lines.append(line if parts else opening + closing)


# ---- C# ------------------------------------------------------------------------------------------

class CSharp:
    NUMBERS = {"float": "float", "double": "double", "int16_t": "short", "int32_t": "int", "int64_t": "long",
               "uint8_t": "byte", "uint16_t": "ushort", "uint32_t": "uint", "uint64_t": "ulong", "size_t": "UIntPtr"}
    RECORDS = {"OldSheet": "SheetHandle", "SheetPartList": "PartListHandle"}
    STRUCTS = {"MachineInformation": "MachineInformation", "torvio_input": "NativeInput",
               "torvio_buffer": "NativeBuffer", "torvio_error": "NativeError"}

    def __init__(self, declarations):
        self.declarations = declarations

    def parameter(self, one):
        what, base = one["is"], self.declarations.real(one["type"]).rstrip("*")
        name = one["name"]
        if what in ("path", "text", "key", "utf8"):
            return f"byte[] {name}"
        if what in ("text out", "text appended"):
            return f"[In, Out] byte[] {name}"
        if what in ("number", "ignored", "size", "size of inputs", "flags"):
            return f"{self.NUMBERS[base]} {name}"
        if what in ("array", "array out"):
            return f"{'[In, Out] ' if what == 'array out' else ''}{self.NUMBERS[base]}[] {name}"
        if what in ("number out", "length out"):
            return f"ref {self.NUMBERS[base]} {name}"
        if what == "struct out":
            return f"ref {self.STRUCTS[base]} {name}"
        if what == "record":
            return f"{self.RECORDS.get(base, 'IntPtr')} {name}"
        if what == "record out":
            return f"out {self.RECORDS[base]} {name}"
        if what in ("record freed", "freed"):
            return f"IntPtr {name}"
        if what == "input":
            return f"[In] ref NativeInput {name}"
        if what == "inputs":
            return f"[In] NativeInput[] {name}"
        if what == "result":
            return f"out BufferHandle {name}"
        if what == "error":
            return f"out ErrorHandle {name}"
        raise ValueError(what)

    def result(self, returns):
        if returns["is"] == "record or null":
            return self.RECORDS[returns["type"].rstrip("*")]
        if returns["is"].startswith("utf8"):
            return "IntPtr"
        real = self.declarations.real(returns["type"])
        return "void" if real == "void" else self.NUMBERS[real]

    def member(self, name, c_type):
        found = re.fullmatch(r"char\[(\d+)\]", c_type)
        if found:
            return [f"        [MarshalAs(UnmanagedType.ByValArray, SizeConst = {found[1]})]",
                    f"        public byte[] {name};"]
        return [f"        public {'IntPtr' if c_type.endswith('*') else self.NUMBERS[self.declarations.real(c_type)]}"
                f" {name};"]

    def file(self):
        lines = [f"// {NOTE}", "using System;", "using System.Runtime.InteropServices;", "", "namespace OldTorvIO.Raw",
                 "{"]
        for library in self.declarations.table["libraries"]:
            for name, members in library["structs"].items():
                lines += ["    [StructLayout(LayoutKind.Sequential)]", f"    public struct {self.STRUCTS[name]}",
                          "    {"]
                for member, c_type in members.items():
                    lines += self.member(member, c_type)
                lines += ["    }", ""]
            class_name = f"{library['name'][:1].upper()}{library['name'][1:]}Functions"
            lines += [f"    /// <summary>The functions of {pathlib.Path(library['header']).name}, which describes them."
                      "</summary>", f"    public static class {class_name}", "    {",
                      f"        public const string Library = \"{LIBRARY_NAMES[library['name']]}\";"]
            for name, value in library["constants"].items():
                kind = "int" if value < 16 and not_a_flag(library, name) else "ulong" if value >= 2 ** 32 else "uint"
                lines.append(f"        public const {kind} {name} = {value};")
            for function in library["functions"]:
                remark = self.declarations.remark(function)
                lines += ["", f"        /// <summary>{function['does']}" + ("" if remark else "</summary>"),
                          *([f"        ///{remark}</summary>"] if remark else []),
                          "        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]"]
                wrapped(lines, f"        public static extern {self.result(function['returns'])} {function['name']}(",
                        [self.parameter(one) for one in function["parameters"]], ");", " " * 12)
            lines += ["    }", ""]
        lines += ["    /// <summary>The characters of the bytes from 0x80 on of each code page.</summary>",
                  "    public static class CodePageTables", "    {",
                  "        public static readonly string[] Names =", "        {",
                  *[f'            "{name}",' for name in read_code_pages()], "        };", "",
                  "        public static readonly string[] Characters =", "        {"]
        for characters in read_code_pages().values():
            lines += js_string(characters, " " * 12, ",")
        return "\n".join(lines + ["        };", "    }", "}", ""])


def not_a_flag(library, name):
    return not any(name in one.get("values", ()) for function in library["functions"] for one in function["parameters"])


def js_string(characters, indent, end):
    """A string literal of C# and JavaScript over several lines."""
    rows = ["".join(f"\\u{one:04X}" for one in characters[at:at + 16]) for at in range(0, 128, 16)]
    return [f'{indent}"{row}"' + (end if number == 7 else " +") for number, row in enumerate(rows)]


# The names by which loaders find the libraries; they add what the system needs, such as "lib" and ".so" to the first.
LIBRARY_NAMES = {"OldTorvIO": "OldTorvIO", "torvio": "libtorvio"}


def mono_config():
    """Where mono finds the libraries if they are installed without their development files."""
    maps = [f'  <dllmap dll="{name}" os="!windows,osx" target="{file}.so.{read_abi_version()}"/>'
            for name, file in (("OldTorvIO", "libOldTorvIO"), ("libtorvio", "libtorvio"))]
    return "\n".join([f"<!-- {NOTE} -->", "<configuration>", *maps, "</configuration>", ""])


# ---- Pascal --------------------------------------------------------------------------------------

class Pascal:
    NUMBERS = {"float": "Single", "double": "Double", "int16_t": "SmallInt", "int32_t": "LongInt", "int64_t": "Int64",
               "uint8_t": "Byte", "uint16_t": "Word", "uint32_t": "LongWord", "uint64_t": "QWord", "size_t": "SizeUInt"}
    UNITS = {"OldTorvIO": "oldtorvio_raw", "torvio": "torvio_raw"}
    STRUCTS = {"MachineInformation": "MachineInformation", "torvio_input": "TorvioInput",
               "torvio_buffer": "TorvioBuffer", "torvio_error": "TorvioError"}

    def __init__(self, declarations):
        self.declarations = declarations

    @staticmethod
    def name(name):
        """Parameters have an A before their names, as usual in Pascal: some of them are its words."""
        name = "".join(part[:1].upper() + part[1:] for part in name.split("_"))
        return "A" + name

    def parameter(self, one):
        what, base, name = one["is"], self.declarations.real(one["type"]).rstrip("*"), self.name(one["name"])
        if what in ("path", "text", "key", "utf8", "text out", "text appended"):
            return f"{name}: PAnsiChar"
        if what in ("number", "ignored", "size", "size of inputs", "flags"):
            return f"{name}: {self.NUMBERS[base]}"
        if what in ("array", "array out") or (what == "number out" and "null" in one):
            return f"{name}: P{self.NUMBERS[base]}"
        if what in ("number out", "length out"):
            return f"var {name}: {self.NUMBERS[base]}"
        if what == "struct out":
            return f"var {name}: T{self.STRUCTS[base]}"
        if what in ("record", "record freed"):
            return f"{name}: P{base}"
        if what == "record out":
            return f"var {name}: P{base}"
        if what == "freed":
            return f"{name}: Pointer"
        if what in ("input", "inputs"):
            return f"{name}: PTorvioInput"
        if what == "result":
            return f"{name}: PPTorvioBuffer"
        if what == "error":
            return f"{name}: PPTorvioError"
        raise ValueError(what)

    def result(self, returns):
        if returns["is"] == "record or null":
            return "P" + returns["type"].rstrip("*")
        if returns["is"].startswith("utf8"):
            return "PAnsiChar"
        real = self.declarations.real(returns["type"])
        return "" if real == "void" else self.NUMBERS[real]

    def member(self, name, c_type):
        name = name[:1].upper() + name[1:]
        found = re.fullmatch(r"char\[(\d+)\]", c_type)
        if found:
            return f"    {name}: array[0..{int(found[1]) - 1}] of AnsiChar;"
        if c_type.endswith("*"):
            return f"    {name}: {'PAnsiChar' if self.declarations.real(c_type) == 'char*' else 'Pointer'};"
        return f"    {name}: {self.NUMBERS[self.declarations.real(c_type)]};"

    def files(self):
        return {f"pascal/{self.UNITS[library['name']]}.pas": self.unit(library)
                for library in self.declarations.table["libraries"]}

    def unit(self, library):
        header = pathlib.Path(library["header"]).name
        lines = [f"{{ {NOTE} }}", f"{{ The functions of {header}, which describes them. }}",
                 f"unit {self.UNITS[library['name']]};", "", "{$mode objfpc}{$H+}", "{$packrecords c}", "",
                 "interface", "", "const", f"  {library['name']}Library = '{LIBRARY_NAMES[library['name']]}';"]
        if library["name"] == "torvio":
            # On other systems than Windows the linker adds "lib" itself.
            lines[-1:] = ["{$ifdef windows}", "  torvioLibrary = 'libtorvio';", "{$else}",
                          "  torvioLibrary = 'torvio';", "{$endif}"]
        lines += [f"  {name} = {'QWord(' if value >= 2 ** 32 else ''}{'$%X' % value if value >= 2 ** 32 else value}"
                  f"{')' if value >= 2 ** 32 else ''};" for name, value in library["constants"].items()]
        lines += ["", "type"]
        records = [name for name in self.declarations.records
                   if any(self.declarations.real(one).rstrip("*") == name for function in library["functions"]
                          for one in [parameter["type"] for parameter in function["parameters"]])]
        for name in records:
            lines += [f"  T{name}Record = record end;  {{ opaque }}", f"  P{name} = ^T{name}Record;"]
        for name, members in library["structs"].items():
            pascal = self.STRUCTS[name]
            lines += [f"  P{pascal} = ^T{pascal};"]
            lines += [f"  PP{pascal} = ^P{pascal};"] if name in ("torvio_buffer", "torvio_error") else []
            lines += [f"  T{pascal} = record", *[self.member(*one) for one in members.items()], "  end;"]
        for function in library["functions"]:
            does = function["does"] + self.declarations.remark(function)
            lines += ["", *comment(does)]
            result = self.result(function["returns"])
            parameters = [self.parameter(one) for one in function["parameters"]]
            ending = (f": {result}" if result else "") + f"; cdecl; external {library['name']}Library;"
            keyword = "function" if result else "procedure"
            part = []
            wrapped(part, f"{keyword} {function['name']}(", parameters, ")" + ending, "  ")
            lines += [one.replace(", ", "; ").rstrip(",") + (";" if one.endswith(",") else "") for one in part] \
                if parameters else [f"{keyword} {function['name']}{ending}"]
        lines += ["", "implementation", ""]
        # The libraries need the C runtime to be started.
        lines += ["{$ifdef unix}{$linklib c}{$endif}", "", "end.", ""]
        return "\n".join(lines)


def comment(text):
    lines, line = [], "{"
    for word in text.split():
        if len(line) + len(word) > 116:
            lines.append(line)
            line = " "
        line += " " + word
    return lines + [line + " }"]


def pascal_code_pages():
    pages = read_code_pages()
    lines = [f"{{ {NOTE} }}", "{ The characters of the bytes from $80 on of each code page. }",
             "unit oldtorvio_codepages;", "", "{$mode objfpc}{$H+}", "", "interface", "", "const",
             f"  CodePageNames: array[0..{len(pages) - 1}] of string = ("]
    lines += ["    " + ", ".join(f"'{name}'" for name in pages) + ");",
              f"  CodePageCharacters: array[0..{len(pages) - 1}, 0..127] of Word = ("]
    for number, characters in enumerate(pages.values()):
        lines.append("    (")
        for at in range(0, 128, 16):
            row = ", ".join(f"${one:04X}" for one in characters[at:at + 16])
            lines.append("      " + row + ("," if at < 112 else ")" + ("," if number + 1 < len(pages) else ");")))
    return "\n".join(lines + ["", "implementation", "", "end.", ""])


# ---- JavaScript ----------------------------------------------------------------------------------

class JavaScript:
    ARRAYS = {"float": "Float32Array", "double": "Float64Array", "int32_t": "Int32Array", "uint8_t": "Uint8Array",
              "uint32_t": "Uint32Array"}

    def __init__(self, declarations):
        self.declarations = declarations

    def parameter(self, one):
        what, real = one["is"], self.declarations.real(one["type"])
        base = real.rstrip("*")
        if what in ("path", "text", "key", "utf8"):
            # Not char: koffi would take a string for UTF-8.
            return f"const uint8_t *{one['name']}"
        if what in ("text out", "text appended"):
            return f"uint8_t *{one['name']}"
        if what == "struct out":
            return f"_Inout_ {base} *{one['name']}"
        if what in ("record out", "result", "error"):
            return f"_Inout_ {base} **{one['name']}"
        if what in ("input", "inputs", "array"):
            return f"const {base} *{one['name']}"
        stars = " *" if real.endswith("*") else " "
        return f"{base}{stars}{one['name']}"

    def result(self, returns):
        real = self.declarations.real(returns["type"])
        return f"{real[:-1]} *" if real.endswith("*") else real + " "

    def typed(self, one):
        """The type of a parameter in TypeScript."""
        what, real = one["is"], self.declarations.real(one["type"])
        base = real.rstrip("*")
        if what in ("path", "text", "key", "utf8"):
            return "Uint8Array | null"
        if what in ("text out", "text appended"):
            return "Uint8Array" + (" | null" if "size" in one else "")
        if what in ("number", "ignored", "size", "size of inputs", "flags"):
            return "number | bigint" if base in ("uint64_t", "size_t") else "number"
        if what in ("array", "array out", "number out", "length out"):
            return self.ARRAYS[base] + (" | null" if "null" in one else "")
        if what == "struct out":
            return "RawMachineInformation"
        if what in ("record", "record freed", "freed"):
            return "Pointer | null"
        if what in ("record out", "result", "error"):
            return "[Pointer | null]" + (" | null" if what != "record out" else "")
        return "RawInput" if what == "input" else "RawInput[]"

    def typed_result(self, returns):
        real = self.declarations.real(returns["type"])
        if real == "void":
            return "void"
        if real == "char*":
            return "string"
        return "Pointer | null" if real.endswith("*") else "number"

    def member(self, c_type):
        found = re.fullmatch(r"char\[(\d+)\]", c_type)
        if found:
            return f"koffi.array('uint8_t', {found[1]})"
        if c_type.endswith("*"):
            return "'void *'"
        return f"'{self.declarations.real(c_type)}'"

    def file(self):
        lines = [f"// {NOTE}", "'use strict';", "const koffi = require('koffi');", "",
                 "// The names of types are those of the process: another copy of this module may have declared them.",
                 "function declare(name, type) {", "  try {", "    koffi.type(name);", "  } catch {", "    type();",
                 "  }", "}", "", "// Records are opaque.",
                 *[f"declare('{name}', () => koffi.opaque('{name}'));" for name in self.declarations.records], ""]
        for library in self.declarations.table["libraries"]:
            for name, members in library["structs"].items():
                lines += [f"declare('{name}', () => koffi.struct('{name}', {{",
                          *[f"  {member}: {self.member(c_type)}," for member, c_type in members.items()], "}));"]
        for library in self.declarations.table["libraries"]:
            if library["constants"]:
                lines += ["", "exports.constants = {",
                          *[f"  {name}: {value}{'n' if value >= 2 ** 53 else ''}," for name, value
                            in library["constants"].items()], "};"]
        lines += ["", "// The names of the files in which systems install the libraries.", "exports.files = {"]
        for name, file in LIBRARY_NAMES.items():
            unix = "lib" + file.removeprefix("lib")
            names = {"win32": [file + ".dll"], "darwin": [f"{unix}.{read_abi_version()}.dylib", unix + ".dylib"],
                     "linux": [f"{unix}.so.{read_abi_version()}", unix + ".so"]}
            lines += [f"  {name}: {{", *[f"    {system}: [{', '.join(repr(one) for one in files)}],"
                                        for system, files in names.items()], "  },"]
        lines += ["};", "", "// The prototypes of the functions; the C headers describe them.",
                  "exports.prototypes = {"]
        for library in self.declarations.table["libraries"]:
            lines.append(f"  {library['name']}: {{")
            for function in library["functions"]:
                part = []
                wrapped(part, f"    {function['name']}: '{self.result(function['returns'])}{function['name']}(",
                        [self.parameter(one) for one in function["parameters"]], ")',", " " * 8 + "'", 116)
                lines += [one + " ' +" if number + 1 < len(part) else one for number, one in enumerate(part)]
            lines.append("  },")
        lines += ["};", "", "// The characters of the bytes from 0x80 on of each code page.", "exports.codePages = {"]
        for name, characters in read_code_pages().items():
            lines += [f"  {name}:", *[one.replace('"', "'") for one in js_string(characters, " " * 4, ",")]]
        return "\n".join(lines + ["};", ""])

    def types_file(self):
        lines = [f"// {NOTE}", "// The functions of OldTorvIO.h and torvio.h, which describe them. Texts and names of "
                 "files are bytes that end", "// with a zero. What a function writes is the content of an array.", "",
                 "/** An address. */", "export type Pointer = bigint;", ""]
        names = {"MachineInformation": "RawMachineInformation", "torvio_input": "RawInput"}
        for library in self.declarations.table["libraries"]:
            for name, members in library["structs"].items():
                if name in names:
                    lines += [f"export interface {names[name]} {{"]
                    for member, c_type in members.items():
                        kind = "Uint8Array" if c_type.startswith("char[") else \
                            "Uint8Array | null" if c_type.endswith("*") else "number"
                        lines.append(f"  {member}: {kind};")
                    lines += ["}", ""]
        for library in self.declarations.table["libraries"]:
            lines.append(f"export interface Raw{library['name'][:1].upper()}{library['name'][1:]} {{")
            for function in library["functions"]:
                remark = self.declarations.remark(function)
                lines += [f"  /** {function['does']}" + ("" if remark else " */"),
                          *([f"   * {remark.strip()} */"] if remark else [])]
                wrapped(lines, f"  {function['name']}(", [f"{one['name']}: {self.typed(one)}"
                                                         for one in function["parameters"]],
                        f"): {self.typed_result(function['returns'])};", " " * 4)
            lines += ["}", ""]
        return "\n".join(lines[:-1]) + "\n"


def all_files():
    declarations = Declarations(read_table())
    csharp, javascript = CSharp(declarations), JavaScript(declarations)
    return {"csharp/Raw.cs": csharp.file(), "csharp/OldTorvIO.Bindings.dll.config": mono_config(),
            **Pascal(declarations).files(), "pascal/oldtorvio_codepages.pas": pascal_code_pages(),
            "node/raw.js": javascript.file(), "node/raw.d.ts": javascript.types_file()}


def main():
    if sys.argv[1:] not in ([], ["--check"]):
        sys.exit(__doc__)
    wrong = []
    for name, content in all_files().items():
        path = HERE / name
        if not sys.argv[1:]:
            path.parent.mkdir(exist_ok=True)
            path.write_text(content, encoding="utf-8", newline="\n")
        elif not path.exists() or path.read_bytes() != content.encode():
            wrong.append(f"bindings/{name} is not what bindings/generate.py makes: run it")
    sys.exit("\n".join(wrong) or 0)


if __name__ == "__main__":
    main()
