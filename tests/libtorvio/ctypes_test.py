"""Every function of libtorvio, called with ctypes, returns what the command line prints.

Check and info are compared for sound files of every kind and version, all functions for those of the oldest and the newest
version of each kind, for the same cut off, and for files that are none.
"""

import argparse
import ctypes
import json
import pathlib
import re
import shutil
import subprocess
import sys

OK, DAMAGED, BAD_ARGUMENT, NOT_READ, REFUSED = range(5)
PRETTY, PAGE, COMMON, ALLOW_LOSS = 1, 2, 4, 8
NO_OFFSET = 2**64 - 1


class Input(ctypes.Structure):
    _fields_ = [("path", ctypes.c_char_p), ("data", ctypes.c_void_p), ("size", ctypes.c_size_t),
                ("name", ctypes.c_char_p), ("kind", ctypes.c_char_p), ("encoding", ctypes.c_char_p)]


class Buffer(ctypes.Structure):
    _fields_ = [("data", ctypes.c_void_p), ("size", ctypes.c_size_t)]


class Error(ctypes.Structure):
    _fields_ = [("message", ctypes.c_char_p), ("field", ctypes.c_char_p), ("offset", ctypes.c_uint64),
                ("status", ctypes.c_int32)]


OUTPUTS = [ctypes.POINTER(ctypes.POINTER(Buffer)), ctypes.POINTER(ctypes.POINTER(Error))]
FILE, TEXT = ctypes.POINTER(Input), ctypes.c_char_p
FUNCTIONS = {
    "check": [FILE, ctypes.c_uint32], "info": [FILE, ctypes.c_uint32], "json": [FILE, ctypes.c_uint32],
    "from_json": [FILE, ctypes.c_int32, ctypes.c_uint32], "schema": [TEXT],
    "map": [FILE, TEXT, TEXT, ctypes.c_uint32], "format": [TEXT, TEXT], "draw": [FILE, ctypes.c_uint32],
    "diff": [FILE, FILE, TEXT, ctypes.c_double, ctypes.c_uint32, ctypes.POINTER(ctypes.c_int32)],
    "convert": [FILE, ctypes.c_int32, ctypes.c_uint32, OUTPUTS[0]], "recover": [FILE, ctypes.c_uint32, OUTPUTS[0]],
    "draw_page": [FILE, ctypes.c_size_t, TEXT, ctypes.c_uint32], "supported": [],
}


class Torvio:
    """The library as a Python program would wrap it: status, result and error of every call."""

    def __init__(self, path):
        self.library = ctypes.CDLL(str(path))
        self.library.torvio_version.restype = ctypes.c_char_p
        self.library.torvio_free.argtypes, self.library.torvio_free.restype = [ctypes.c_void_p], None
        for name, arguments in FUNCTIONS.items():
            function = getattr(self.library, "torvio_" + name)
            # A report comes after the result.
            at = -1 if arguments[-1:] == OUTPUTS[:1] else len(arguments)
            function.argtypes = arguments[:at] + OUTPUTS[:1] + arguments[at:] + OUTPUTS[1:]
            function.restype = ctypes.c_int32

    def new_file(self, name, path, *arguments):
        """Status, bytes of the new file, report and error."""
        report = ctypes.POINTER(Buffer)()
        done = self.call(name, ctypes.byref(Input(path=str(path).encode())), *arguments, after=[ctypes.byref(report)])
        text = ctypes.string_at(report[0].data, report[0].size) if report else None
        self.library.torvio_free(report)
        return *done[:2], text, done[2]

    def call(self, name, *arguments, after=()):
        result, error = ctypes.POINTER(Buffer)(), ctypes.POINTER(Error)()
        status = getattr(self.library, "torvio_" + name)(*arguments, ctypes.byref(result), *after, ctypes.byref(error))
        data = ctypes.string_at(result[0].data, result[0].size) if result else None
        why = (error[0].message.decode(), error[0].field.decode(), error[0].offset) if error else None
        if error and error[0].status != status:
            raise AssertionError(f"{name}: the error has another status")
        self.library.torvio_free(result)
        self.library.torvio_free(error)
        return status, data, why

    def file(self, function, path, *arguments, **members):
        return self.call(function, ctypes.byref(Input(path=str(path).encode(), **members)), *arguments)

    def memory(self, function, data, *arguments, **members):
        kept = ctypes.create_string_buffer(data, max(len(data), 1))
        view = Input(data=ctypes.cast(kept, ctypes.c_void_p), size=len(data), **members)
        return self.call(function, ctypes.byref(view), *arguments)


class Test:
    def __init__(self, torvio, command):
        self.torvio, self.command = torvio, command
        self.compared = self.failures = 0

    def run(self, *arguments):
        done = subprocess.run([self.command, *map(str, arguments)], capture_output=True)
        return done.returncode, done.stdout

    def expect(self, what, found, wanted):
        self.compared += 1
        if found == wanted:
            return
        self.failures += 1
        if self.failures <= 10:
            print(f"FAILED {what}: {str(found)[:300]} instead of {str(wanted)[:300]}")

    def same(self, what, returned, *arguments):
        """A function returns the status and the bytes of a run of the command line."""
        code, output = self.run(*arguments)
        status, result, error = returned
        if status == REFUSED:
            code, output = {1: REFUSED, 2: REFUSED, 3: REFUSED}.get(code, code), output or None
        self.expect(what, (status, result), (code, output))
        self.expect(what + ": error", error is None, status == OK)

    # ---- all files at once ----

    def judge_all(self, files):
        for name in ("check", "info"):
            _, output = self.run(name, "--json", *files)
            lines = output.splitlines(keepends=True)
            self.expect(name + " of all files", len(lines), len(files))
            for path, line in zip(files, lines):
                status, result, error = self.torvio.file(name, path, 0)
                self.expect(f"{name} of {path.name}", result, line)
                verdict = json.loads(line)["verdict"]
                self.expect(f"{name} of {path.name}: status", status, OK if verdict.startswith("sound") else DAMAGED)
                fault = json.loads(line).get("fault")
                if fault:
                    self.expect(f"{name} of {path.name}: error", error[1:], (fault["field"], fault["offset"]))

    # ---- one file ----

    def one_file(self, path, scratch):
        name, data, torvio = path.name, path.read_bytes(), self.torvio
        self.same(f"json of {name}", torvio.file("json", path, 0), "json", path)
        self.same(f"pretty json of {name}", torvio.memory("json", data, PRETTY, name=str(path).encode()),
                  "json", "--pretty", path)
        self.same(f"json of {name} in cp437", torvio.file("json", path, 0, encoding=b"cp437"),
                  "json", "--encoding", "cp437", path)
        self.same(f"map of {name}", torvio.memory("map", data, None, None, 0, name=str(path).encode()),
                  "map", "--json", path)
        self.same(f"a part of the map of {name}", torvio.file("map", path, b"**.*Count", b"0..2000", 0),
                  "map", "--json", "--find", "**.*Count", "--offset", "0..2000", path)
        self.same(f"page of {name}", torvio.file("map", path, None, None, PAGE), "map", "--html", path)
        code, _ = self.run("draw", "-o", scratch / "drawn.svg", path)
        drawn = torvio.file("draw", path, 0)
        self.expect(f"picture of {name}", drawn[1], (scratch / "drawn.svg").read_bytes() if drawn[1] else None)
        self.expect(f"picture of {name}: status", {REFUSED: DAMAGED}.get(drawn[0], drawn[0]), code)
        (scratch / "drawn.svg").unlink(missing_ok=True)
        self.back_from_json(path, data, scratch)

    def back_from_json(self, path, data, scratch):
        status, text, _ = self.torvio.file("json", path, 0)
        if status != OK:
            return
        status, saved, error = self.torvio.memory("from_json", text, 0, 0)
        (scratch / "record.json").write_bytes(text)
        code, _ = self.run("from-json", scratch / "record.json", "-o", scratch / "saved")
        self.expect(f"{path.name} from JSON", (status, saved),
                    (OK, (scratch / "saved").read_bytes()) if code == 0 else (REFUSED, None))
        (scratch / "saved").unlink(missing_ok=True)
        self.expect(f"{path.name} from JSON in a file", self.torvio.file("from_json", scratch / "record.json", 0, 0),
                    (status, saved, error))

    def differences(self, files):
        for a, b in zip(files, files[1:]):
            for options, tolerance, flags in ((["--json"], 0, 0),
                                              (["--json", "--common", "--tolerance", "0.5"], 0.5, COMMON)):
                same = ctypes.c_int32(7)
                status, result, error = self.torvio.call(
                    "diff", ctypes.byref(Input(path=str(a).encode())), ctypes.byref(Input(path=str(b).encode())), None,
                    tolerance, flags, ctypes.byref(same))
                code, output = self.run("diff", *options, a, b)
                what = f"differences of {a.name} and {b.name}"
                self.expect(what, result, output or None)
                self.expect(what + ": status", {OK: 1 - same.value, DAMAGED: 2, REFUSED: 2}.get(status), code)

    def new_files(self, files, scratch):
        for path in files:
            for name, options, arguments in (("convert", ["--version", "180"], (180, 0)),
                                             ("convert", ["--version", "152", "--allow-loss"], (152, ALLOW_LOSS)),
                                             ("recover", [], (0,))):
                made = scratch / "made"
                made.unlink(missing_ok=True)
                code, output = self.run(name, "--json", *options, path, made)
                status, result, report, _ = self.torvio.new_file(name, path, *arguments)
                what = f"{name} {arguments[0]} of {path.name}"
                if made.exists():
                    self.expect(what, (status, result), (OK, made.read_bytes()))
                elif code == 0:  # nothing to recover
                    self.expect(what, (status, result), (OK, path.read_bytes()))
                else:
                    self.expect(what, (status, result), (REFUSED, None))
                wanted = json.loads(output) if output else None
                if wanted:
                    wanted.pop("written")
                    # An option of the command line.
                    wanted["error"] = wanted.get("error", "").partition("; --allow-loss")[0]
                found = json.loads(report) if report else None
                if found:
                    found.setdefault("error", "")
                self.expect(what + ": report", found, wanted)

    def pages(self, files, scratch):
        inputs = (Input * len(files))(*(Input(path=str(path).encode()) for path in files))
        status, page, error = self.torvio.call("draw_page", inputs, len(files), None, 0)
        code, output = self.run("draw", "--html", *files)
        self.expect("contact sheet", (min(status, 1), page), (min(code, 1), output))
        self.expect("contact sheet: error", error is not None and error[0].startswith("file "), True)
        status, page, _ = self.torvio.call("draw_page", inputs, 1, None, 0)
        self.expect("contact sheet of one", page, self.run("draw", "--html", files[0])[1])

    def forms(self):
        _, listed, _ = self.torvio.call("supported")
        supported = json.loads(listed)
        self.expect("version", (supported["version"], f"torvio {supported['version']}\n".encode()),
                    (self.torvio.library.torvio_version().decode(), self.run("--version")[1]))
        kinds = [kind["name"] for kind in supported["kinds"]]
        self.expect("kinds", len(kinds), 8)
        for kind in kinds:
            self.same(f"schema of {kind}", self.torvio.call("schema", kind.encode()), "schema", kind)
            self.same(f"JSON format of {kind}", self.torvio.call("format", kind.encode(), b"json"),
                      "format", "--json", kind)
            self.same(f"Kaitai of {kind}", self.torvio.call("format", kind.encode(), b"kaitai"),
                      "format", "--as", "kaitai", kind)
        for name in kinds + supported["records"]:
            self.same(f"format of {name}", self.torvio.call("format", name.encode(), None), "format", name)
        for encoding in supported["encodings"]:
            status, _, _ = self.torvio.memory("check", b"", 0, encoding=encoding.encode())
            self.expect(f"encoding {encoding}", status, DAMAGED)
        return kinds

    def refusals(self, scratch):
        call, file, memory = self.torvio.call, self.torvio.file, self.torvio.memory
        for returned, status, words in (
                (call("check", None, 0), BAD_ARGUMENT, "input"), (call("schema", None), BAD_ARGUMENT, "kind"),
                (file("check", scratch / "x", 0, kind=b"plate"), BAD_ARGUMENT, "kind"),
                (file("json", scratch / "nothing", 0), NOT_READ, "cannot be opened"),
                (file("json", scratch, 0), NOT_READ, "is a folder"),
                (memory("from_json", b"{}", 0, 0), REFUSED, "format: is missing"),
                (memory("from_json", b"", 0, 0), REFUSED, ""),
                (memory("draw", b"\xb4\x00", 0, kind=b"macro"), REFUSED, "has no picture")):
            self.expect(f"refusal because of {words}", (returned[0], returned[1], words in returned[2][0]),
                        (status, None, True))
            self.expect(f"refusal because of {words}: place", returned[2][1:], ("", NO_OFFSET))
        for name in ("check", "info"):
            code, line = self.run(name, "--json", scratch / "nothing")
            self.expect(f"{name} of no file", file(name, scratch / "nothing", 0)[:2], (code, line))


def oldest_and_newest(files):
    kinds = {}
    for path in files:
        kind, version = re.fullmatch(r"(.+?)_(\d+)(?:_[a-z]+)?\.bin", path.name).groups()
        kinds.setdefault(kind, []).append((int(version), path))
    return [path for versions in kinds.values() for _, path in (min(versions), max(versions))]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--library", required=True)
    parser.add_argument("--torvio", required=True)
    parser.add_argument("--files", required=True, help="the program that writes a file of every kind and version")
    parser.add_argument("--scratch", required=True, type=pathlib.Path)
    options = parser.parse_args()

    shutil.rmtree(options.scratch, ignore_errors=True)
    folder = options.scratch / "files"
    folder.mkdir(parents=True)
    subprocess.run([options.files, str(folder)], check=True)
    sound = sorted(folder.glob("*.bin"))
    chosen = oldest_and_newest(sound)
    odd = [folder / "cut", folder / "Träger\n\x1b[31m", folder / "empty", folder / "foreign"]
    cuts = [path.with_suffix(".cut") for path in chosen]
    for path, cut in zip(chosen, cuts):
        cut.write_bytes(path.read_bytes()[:path.stat().st_size * 3 // 4])
    chosen += cuts
    odd[0].write_bytes(chosen[0].read_bytes() + b"more")
    odd[1].write_bytes(chosen[0].read_bytes())
    odd[2].write_bytes(b"")
    odd[3].write_bytes(bytes(range(256)))

    test = Test(Torvio(options.library), options.torvio)
    test.judge_all(sound + chosen + odd)
    for path in chosen + odd:
        test.one_file(path, options.scratch)
    test.differences(chosen + odd)
    test.new_files(chosen + odd, options.scratch)
    test.pages(chosen + odd, options.scratch)
    test.forms()
    test.refusals(options.scratch)
    print(f"{test.compared} comparisons with {len(sound)} sound files and {len(chosen) + len(odd)} of all sorts, "
          f"{test.failures} failures")
    return 1 if test.failures or test.compared < 500 else 0


if __name__ == "__main__":
    sys.exit(main())
