"""Runs the example of a language and a program that calls everything its bindings have, and compares what they print
and write with the expected texts and with what libtorvio returns to Python.

usage: run.py LANGUAGE --source FOLDER --build FOLDER --scratch FOLDER [--program EXAMPLE] [--libraries FOLDER]

LANGUAGE is csharp, pascal, node, ctypes, or c or cpp, whose examples are built programs. The libraries are those of the
build, or in FOLDER. Returns 77 if something is not installed, unless OLDTORVIO_BINDINGS is "required".
"""
import argparse
import ctypes
import json
import os
import pathlib
import shutil
import struct
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "libtorvio"))
import ctypes_test as reference  # noqa: E402

PAGES = ("cp1252", "cp1250", "cp1251", "cp1253", "cp1254", "cp437", "cp850", "latin1")


def skip(missing):
    print(f"{missing} is not installed; ./dev bindings installs all that these tests need")
    sys.exit(1 if os.environ.get("OLDTORVIO_BINDINGS") == "required" else 77)


def need(*commands):
    for command in commands:
        if shutil.which(command) is None:
            skip(command)


class Failed(Exception):
    pass


def run(command, environment, **options):
    done = subprocess.run([str(one) for one in command], env=environment, capture_output=True, timeout=300, **options)
    if done.returncode != 0:
        raise Failed(f"{command[0]} returns {done.returncode}:\n{(done.stdout + done.stderr).decode(errors='replace')}")
    return done.stdout


# ---- The files ----

def field_offset(torvio, path, field):
    _, lines, _ = torvio.file("map", path, field.encode(), None, 0)
    return json.loads(lines.splitlines()[0])["offset"]


def make_files(build, folder, torvio):
    folder.mkdir(parents=True)
    for name in ("example_nest", "make_samples"):
        run([build / "examples" / name, folder], os.environ)
    nest = (folder / "nest_180.sheet").read_bytes()
    (folder / "damaged.sheet").write_bytes(nest[:60000])
    (folder / "damaged.mch").write_bytes((folder / "punch.mch").read_bytes()[:1000])
    # A signalling NaN: a computation with it raises an exception where those are not masked.
    at = field_offset(torvio, folder / "nest_180.sheet", "partList.parts[0].patterns[0].originX")
    (folder / "signals.sheet").write_bytes(nest[:at] + struct.pack("<I", 0x7F800001) + nest[at + 4:])
    # A part with more and longer names of special tools than a buffer of fixed size would hold.
    status, text, _ = torvio.file("json", folder / "brackets.group", 0)
    part = json.loads(text)["record"]["parts"][1]
    stations = part["toolStations"]
    stations["tools"][0]["specialToolPath"] = "C:\\" + "x" * 240 + ",1.spt"
    for name in ("stations", "tools"):
        stations[name] *= 60
    document = {"format": 1, "kind": "part", "version": 180, "encoding": "cp1252", "record": part}
    status, part, error = torvio.memory("from_json", json.dumps(document).encode(), 0, 0)
    if status != reference.OK:
        raise Failed(f"tooled.part cannot be made: {error}")
    (folder / "tooled.part").write_bytes(part)


# ---- What the calls have to write ----

def expected_files(torvio, folder):
    """The results of torvio.h, under the names of the files that the programs write."""
    data = (folder / "nest_180.sheet").read_bytes()

    def nest(encoding=b"cp437"):
        return {"name": "Träger".encode(), "kind": b"sheet", "encoding": encoding}

    def file(function, at, /, *arguments, **members):
        return torvio.file(function, folder / at, *arguments, **members)[1]

    def in_memory(function, *arguments):
        return torvio.memory(function, data, *arguments, **nest())[1]

    def inputs(*names):
        # The bytes have to live as long as the inputs.
        kept = ctypes.create_string_buffer(data, len(data))
        made = [reference.Input(data=ctypes.cast(kept, ctypes.c_void_p), size=len(data), **nest(None)) if one is None
                else reference.Input(path=str(folder / one).encode()) for one in names]
        return kept, (reference.Input * len(made))(*made)

    macro = file("json", "tab.mac", 0)
    kept, page = inputs(None, "punch.mch")
    page[0].encoding = b"cp437"
    kept_too, pair = inputs("nest_180.sheet", None)
    old, new = inputs("nest_112.sheet", "nest_180.sheet")[1]
    same = ctypes.c_int32()
    _, converted, conversion, _ = torvio.new_file("convert", folder / "nest_180.sheet", 112, reference.ALLOW_LOSS)
    _, recovered, recovery, _ = torvio.new_file("recover", folder / "damaged.sheet", 0)
    signals = (folder / "signals.sheet").read_bytes()
    files = {
        "version": torvio.library.torvio_version(), "supported": torvio.call("supported")[1],
        "check": file("check", "nest_180.sheet", 0), "check damaged": file("check", "damaged.sheet", 0, name=b"a"),
        "check nothing": file("check", "nothing", 0, name=b"a"), "check empty": torvio.memory("check", b"", 0)[1],
        "info": in_memory("info", 0), "json": in_memory("json", 0),
        "json pretty": file("json", "calls.part", reference.PRETTY),
        "from json": torvio.memory("from_json", macro, 0, 0)[1],
        "from json 180": torvio.memory("from_json", macro, 180, 0)[1], "schema": torvio.call("schema", b"part")[1],
        "map": file("map", "nest_180.sheet", b"**.*Count", b"0..20000", 0),
        "map page": file("map", "tab.mac", None, None, reference.PAGE),
        "format": torvio.call("format", b"macro", None)[1],
        "format json": torvio.call("format", b"clamp-info", b"json")[1], "draw": in_memory("draw", 0),
        "page": torvio.call("draw_page", page, 2, b"<Seite>", 0)[1],
        "diff": torvio.call("diff", ctypes.byref(old), ctypes.byref(new), None, 0, 0, ctypes.byref(same))[1],
        "diff part": torvio.call("diff", ctypes.byref(pair[0]), ctypes.byref(pair[1]), b"BRACKET 02", 0.5,
                                 reference.COMMON, ctypes.byref(same))[1],
        "convert": converted, "convert report": conversion, "recover": recovered, "recover report": recovery,
        "convert refused": torvio.new_file("convert", folder / "nest_180.sheet", 112, 0)[2],
        "map damaged": file("map", "damaged.sheet", b"*", None, 0),
        "signals": torvio.memory("json", signals, 0, name=b"a")[1],
        "draw signals": torvio.memory("draw", signals, 0, name=b"a")[1],
    }
    # What the library makes of all bytes but zero, in each code page.
    document = json.loads(file("json", "calls.part", 0))
    upper = bytes(range(128, 256)).decode("cp1252", "replace")
    document["record"]["customText1"] = "".join(
        chr(byte) if byte < 128 or upper[byte - 128] == "\ufffd" else upper[byte - 128] for byte in range(1, 256))
    _, part, _ = torvio.memory("from_json", json.dumps(document).encode(), 0, 0)
    for page_name in PAGES:
        text = torvio.memory("json", part, 0, kind=b"part", encoding=page_name.encode())[1]
        files["page " + page_name] = json.loads(text)["record"]["customText1"].encode()
    missing = [name for name, content in files.items() if content is None]
    if missing:
        raise Failed(f"the library returns nothing for {missing}")
    return files


# ---- The languages ----

class Csharp:
    def __init__(self, options):
        need("mcs", "mono")
        self.sources, self.scratch = options.source / "bindings" / "csharp", options.scratch
        self.library = self.scratch / "OldTorvIO.Bindings.dll"
        self.compile("library", self.library, ["Raw.cs", "Support.cs", "Torvio.cs", "Files.cs"])
        # It has the names of the installed libraries.
        shutil.copy(self.sources / "OldTorvIO.Bindings.dll.config", self.scratch)

    def compile(self, target, output, sources, *references):
        command = ["mcs", "-warn:4", "-warnaserror", f"-target:{target}", f"-out:{output}",
                   *[f"-r:{one}" for one in references], *[self.sources / one for one in sources]]
        try:
            run(command, os.environ)
        except Failed as failure:
            if "System.Json" in str(failure) and "CS0006" in str(failure):
                skip("System.Json (libmono-system-json4.0-cil)")
            raise

    def example(self):
        self.compile("exe", self.scratch / "example.exe", ["Example.cs"], self.library, "System.Json")
        return ["mono", self.scratch / "example.exe"]

    def calls(self):
        self.compile("exe", self.scratch / "calls.exe", [HERE / "calls.cs"], self.library)
        return ["mono", self.scratch / "calls.exe"]


class Pascal:
    def __init__(self, options):
        need("fpc")
        self.sources, self.scratch = options.source / "bindings" / "pascal", options.scratch
        self.libraries = options.libraries

    def compile(self, source):
        units = self.scratch / "units"
        units.mkdir(exist_ok=True)
        program = self.scratch / source.stem
        try:
            run(["fpc", "-vew", "-Sew", "-B", f"-Fu{self.sources}", f"-FU{units}", f"-Fl{self.libraries}", f"-o{program}",
                 source], os.environ)
        except Failed as failure:
            if "Can't find unit fpjson" in str(failure):
                skip("fpjson (fp-units-fcl)")
            raise
        return [program]

    def example(self):
        return self.compile(self.sources / "example.pas")

    def calls(self):
        return self.compile(HERE / "calls.pas")


class Node:
    def __init__(self, options):
        need("node")
        self.folder = options.source / "bindings" / "node"
        modules = self.folder / "node_modules"
        if not (modules / "koffi").exists():
            skip("koffi")
        if not (modules / "typescript").exists():
            skip("typescript")
        # The declarations fit their use.
        run(["node", modules / "typescript" / "bin" / "tsc", "--noEmit", "--strict", "--target", "es2022", "--module",
             "node16", "--moduleResolution", "node16", HERE / "types.ts"], os.environ, cwd=self.folder)

    def example(self):
        return ["node", self.folder / "example.js"]

    def calls(self):
        return ["node", HERE / "calls.js", self.folder]


class Program:
    """An example that is built with the project, or needs no building; C, C++ and ctypes need no bindings."""

    def __init__(self, options):
        self.command = [options.program] if options.program else \
            [sys.executable, options.source / "bindings" / "ctypes" / "example.py"]

    def example(self):
        return self.command

    def calls(self):
        return None


LANGUAGES = {"csharp": Csharp, "pascal": Pascal, "node": Node, "ctypes": Program, "c": Program, "cpp": Program}


def compare(what, found, wanted):
    if found == wanted:
        return []
    found_lines, wanted_lines = found.splitlines(), wanted.splitlines()
    for number in range(max(len(found_lines), len(wanted_lines))):
        one, other = (lines[number] if number < len(lines) else b"(nothing)" for lines in (found_lines, wanted_lines))
        if one != other:
            return [f"{what}, line {number + 1}: {one[:300]!r} instead of {other[:300]!r}"]
    return [f"{what} differs in its line ends"]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("language", choices=LANGUAGES)
    for name in ("--source", "--build", "--scratch"):
        parser.add_argument(name, required=True, type=pathlib.Path)
    parser.add_argument("--program", type=pathlib.Path)
    parser.add_argument("--libraries", type=pathlib.Path)
    parser.add_argument("--update", action="store_true", help="writes the expected texts")
    options = parser.parse_args()
    # Parsers of other programs take some long paths for two.
    options.libraries = options.libraries or options.build
    for name in ("source", "build", "scratch", "libraries"):
        setattr(options, name, getattr(options, name).resolve())
    shutil.rmtree(options.scratch, ignore_errors=True)
    options.scratch.mkdir(parents=True)

    language = LANGUAGES[options.language](options)
    torvio = reference.Torvio(options.libraries / "libtorvio.so")
    files, output = options.scratch / "files", options.scratch / "output"
    make_files(options.build, files, torvio)
    output.mkdir()
    # The part builder has a folder of special tools of its own.
    settings = options.scratch / "config" / "OldTorvIO"
    settings.mkdir(parents=True)
    (settings / "win.ini").write_text(f"[Kestrada64bit]\nZRK_DEFAULT_SPECIAL_TOOL_PATH={files}/\n")
    environment = {**os.environ, "LC_ALL": "C", "LD_LIBRARY_PATH": str(options.libraries),
                   "XDG_CONFIG_HOME": str(settings.parent), "XDG_CONFIG_DIRS": str(options.scratch / "none"),
                   "OLDTORVIO_LIBRARY": str(options.libraries / "libOldTorvIO.so"),
                   "TORVIO_LIBRARY": str(options.libraries / "libtorvio.so")}

    wrong = []
    for name, command in (("example", language.example()), ("calls", language.calls())):
        if command is None:
            continue
        printed = run([*command, files, *([output] if name == "calls" else [])], environment)
        expected = HERE / f"{name}.txt"
        if options.update:
            expected.write_bytes(printed)
        wrong += compare(f"output of {name}", printed, expected.read_bytes())
    compared = 0
    if language.calls() is not None:
        wanted = expected_files(torvio, files)
        found = {one.name: one.read_bytes() for one in output.iterdir()}
        compared = len(wanted)
        for name in sorted(wanted.keys() | found.keys()):
            wrong += compare(name, found.get(name, b"(no file)"), wanted.get(name, b"(no file)"))
    print("\n".join(wrong) or "the expected texts" + (f", and {compared} results as in Python" if compared else ""))
    return 1 if wrong else 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except Failed as failure:
        sys.exit(str(failure))
