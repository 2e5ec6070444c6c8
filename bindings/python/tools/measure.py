"""Measures loads and attributes of the package on a sheet of 50 MB: measure.py BUILD NEST [RUNS]

BUILD is the build folder with libOldTorvIO.so, NEST a sheet from which to make the large one (example_nest makes
nest_180.sheet). The package is in PYTHONPATH. Every time is processor time, the shortest of RUNS (default 9); the
loads take turns, so that other work of the machine affects all of them alike. "C++" is LoadOldSheet of the shared
library into a new sheet.
"""
import ctypes
import os
import sys
import tempfile
import time

import oldtorvio


def large_sheet(nest, path, size):
    """A sheet of that size with copies of the parts of the nest."""
    sheet = oldtorvio.load(nest, "sheet")
    parts = sheet.partList.parts
    copies = parts[:]
    before = len(oldtorvio.dumps(sheet, 180))
    parts.extend(copies)
    after = len(oldtorvio.dumps(sheet, 180))
    for _ in range(-(-(size - after) // (after - before))):
        parts.extend(copies)
    oldtorvio.save(sheet, path, 180)


def cpp_load(library, path):
    sheet = library.CreateSheetInfo()
    started = time.process_time()
    assert library.LoadOldSheet(path, sheet) == 0
    loaded = time.process_time() - started
    library.DeleteSheetInfo(sheet)
    return loaded


def python_load(path, kind):
    started = time.process_time()
    sheet = oldtorvio.load(path, kind)
    loaded = time.process_time() - started
    del sheet
    return loaded


def seconds(call, runs):
    best = float("inf")
    for _ in range(runs):
        started = time.process_time()
        call()
        best = min(best, time.process_time() - started)
    return best


def main():
    if len(sys.argv) not in (3, 4):
        sys.exit(__doc__)
    build, nest, runs = sys.argv[1], sys.argv[2], int(sys.argv[3]) if len(sys.argv) == 4 else 9
    library = ctypes.CDLL(os.path.join(build, "libOldTorvIO.so"))
    library.CreateSheetInfo.restype = ctypes.c_void_p
    library.DeleteSheetInfo.argtypes = [ctypes.c_void_p]
    library.LoadOldSheet.argtypes, library.LoadOldSheet.restype = [ctypes.c_char_p, ctypes.c_void_p], ctypes.c_int64
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "large.sheet")
        large_sheet(nest, path, 50_000_000)
        size = os.stat(path).st_size
        loads = {"C++": lambda: cpp_load(library, path.encode()),
                 'load(path, "sheet")': lambda: python_load(path, "sheet"),
                 "load(path)": lambda: python_load(path, None)}
        best = dict.fromkeys(loads, float("inf"))
        for _ in range(runs):
            for name, load in loads.items():
                best[name] = min(best[name], load())
        print(f"a sheet of {size / 1e6:.1f} MB")
        for name, time_of in best.items():
            print(f"{name:24}{time_of * 1e3:8.1f} ms  {time_of / best['C++']:5.2f} x C++")
        sheet = oldtorvio.load(path, "sheet")
    print(f"{'dumps(sheet, 180)':24}{seconds(lambda: oldtorvio.dumps(sheet, 180), 3) * 1e3:8.1f} ms")

    lists = [part.shapes.shapes for part in sheet.partList.parts]
    count = sum(len(shapes) for shapes in lists)

    def visit():
        for shapes in lists:
            for shape in shapes:
                pass

    def read():
        for shapes in lists:
            for shape in shapes:
                shape.x

    def read_from_top():
        parts = sheet.partList.parts
        for i in range(len(parts)):
            shapes = parts[i].shapes.shapes
            for j in range(len(shapes)):
                shapes[j].x

    def keep():
        kept.extend(shape for shapes in lists for shape in shapes)

    kept = []
    each = seconds(visit, 3) / count * 1e9
    print(f"{count} shapes, for each:")
    print(f"  a view, visited and forgotten       {each:6.0f} ns")
    print(f"  a view and one number               {seconds(read, 3) / count * 1e9:6.0f} ns")
    print(f"  the same by index from the sheet    {seconds(read_from_top, 3) / count * 1e9:6.0f} ns")
    print(f"  a view that is kept                 {seconds(keep, 1) / count * 1e9:6.0f} ns")
    shape, part = kept[0], sheet.partList.parts[0]
    for name, call in (("a number of a view", lambda: shape.x), ("a text of a view", lambda: part.partName),
                       ("a number assigned", lambda: setattr(shape, "x", 1.5)),
                       ("nothing, as a comparison", lambda: None)):
        turns = range(200_000)

        def repeat():
            for _ in turns:
                call()
        print(f"  {name:36}{seconds(repeat, 3) / len(turns) * 1e9:6.0f} ns")


if __name__ == "__main__":
    main()
