"""Uses the library from Python with ctypes only: builds parts, and queries and edits the sample files.

usage: demo.py LIBRARY FOLDER

LIBRARY is the shared library, such as build/libOldTorvIO.so. FOLDER has the files that example_nest and make_samples
write, and is the configured folder of special tools: examples/demo.sh prepares it and runs this program.
"""
import ctypes
import os
import shutil
import sys
from ctypes import (byref, c_char, c_char_p, c_double, c_float, c_int16, c_int32, c_int64, c_uint8, c_uint16, c_uint32,
                    c_uint64, c_void_p)



def stop(message):
    print(message, file=sys.stderr)
    sys.exit(2)


if len(sys.argv) != 3:
    stop(__doc__[__doc__.index("usage:"):].rstrip())
library_path, folder = sys.argv[1:]
try:
    torv = ctypes.CDLL(library_path)
except OSError as error:
    stop(f"demo.py: cannot load the library: {error}")
if not os.path.isfile(os.path.join(folder, "nest_180.sheet")):
    stop(f"demo.py: the sample files are not in {folder}; examples/demo.sh makes them and runs this program")

for name, result, arguments in [
    ("InitTorvPart", None, [c_float] * 3 + [c_int16] + [c_char_p] * 6),
    ("AddPatternToTorvPart", c_int32, [c_float, c_float, c_uint8, c_uint32, c_void_p, c_uint32] + [c_float] * 5
        + [c_char_p, c_int16, c_int16, c_float, c_float]),
    ("AddGroupPatIntoTorvPart", c_int32, [c_float] * 3 + [c_char_p]),
    ("AddPatIntoGroupPat", c_uint16, [c_int32, c_float, c_float, c_uint8, c_uint64, c_void_p]),
    ("SaveTorvPart", c_int64, [c_char_p, c_int16]),
    ("GetOldPartInfo", c_int64, [c_char_p, c_char_p] + [c_void_p] * 3),
    ("GetOldPartTool", c_int64, [c_char_p, c_char_p, c_int32, c_void_p]),
    ("GetOldSptFromGroupPart", c_int64, [c_char_p, c_char_p, c_int32, c_void_p]),
    ("CreateOldPartlistInfo", c_void_p, []),
    ("DeleteOldPartlistInfo", None, [c_void_p]),
    ("LoadGroupPart", c_int64, [c_char_p, c_void_p]),
    ("OpenSpecialToolFile", c_int32, [c_char_p] + [c_void_p] * 23),
    ("GetShapeAt", None, [c_int32] + [c_void_p] * 7),
    ("LoadOldMachineInformation", c_int32, [c_char_p, c_void_p]),
    ("LoadOldToolInventoryForCount", c_int32, [c_char_p, c_void_p]),
    ("CreateSheetInfo", c_void_p, []),
    ("DeleteSheetInfo", None, [c_void_p]),
    ("FreeSheetHandle", None, [c_void_p]),
    ("LoadOldSheet", c_int64, [c_char_p, c_void_p]),
    ("SaveOldSheet", c_int64, [c_char_p, c_void_p, c_uint16]),
    ("LoadOldSheetInformation", c_int32, [c_char_p]),
    ("GetOldSheetHandle", c_int64, [c_char_p, c_void_p]),
    ("GetOldSheetInfoByName", c_int64, [c_void_p, c_char_p, c_char_p]),
    ("GetOldSheetInfoPartGroupIDs", c_int64, [c_void_p, c_char_p]),
    ("GetOldSheetInfo", c_int64, [c_char_p] * 10 + [c_void_p] * 4 + [c_char_p, c_int32, c_void_p] * 2),
    ("GetOldClampInfo", c_int64, [c_char_p] + [c_void_p] * 7),
    ("GetOldVLMQMaterialName", c_int64, [c_char_p] * 3),
    ("GetOldSkeletonUtil", c_int64, [c_char_p, c_void_p]),
    ("GetSheetDriverFlags", c_int64, [c_char_p, c_void_p]),
    ("GetSheetSequenceListSize", c_int64, [c_char_p, c_void_p]),
    ("ReplaceSheetMachineNcPath", c_int64, [c_char_p] * 2),
    ("ReplaceSheetSknPatListWithPartPatList", c_int64, [c_char_p] * 2),
    ("UpdateSheetPartWONumber", c_int64, [c_char_p] * 4),
]:
    try:
        function = getattr(torv, name)
    except AttributeError:
        stop(f"demo.py: {library_path} is not OldTorvIO: it does not export {name}")
    function.restype, function.argtypes = result, arguments


class MachineInformation(ctypes.Structure):
    _fields_ = [("infoKind", c_int32), ("infoVersion", c_int32), ("infoSizeX", c_float), ("infoSizeY", c_float),
                ("infoText1", c_char * 256), ("infoText2", c_char * 256), ("infoStationWord", c_int32),
                ("infoExtra1", c_uint32), ("infoExtra2", c_uint32), ("infoStationMode", c_int32),
                ("infoStationCount", c_int32)]


def check(condition, what):
    if not condition:
        sys.exit("unexpected: " + what)


def path(name):
    return (folder + "/" + name).encode()


values = (c_uint32 * 9)(0x3F000000)
torv.InitTorvPart(8, 4, 0.125, -1, b"PYTHON PLATE", None, None, None, None, None)
check(torv.AddPatternToTorvPart(1, 1, 3, 0, values, 0, 0, 0, 0, 0, 0, b"KEYSLOT", 0, 0, 0, 0) == 1, "a named tool")
check(torv.AddGroupPatIntoTorvPart(2, 2, -1, b"KeySlot") == 3, "a group")
check(torv.AddPatIntoGroupPat(2, 2.5, 2.5, 1, 0, values) == 4, "another member")
for version in (62, 110, 180):
    name = f"plate_{version}.part"
    check(torv.SaveTorvPart(path(name), version) == 0, "a save")
    text, size, length = ctypes.create_string_buffer(1024), [c_float() for _ in range(3)], c_uint32()
    check(torv.GetOldPartInfo(path(name), text, *map(byref, size)) == 0, "the part's size")
    print(f"{name}\n  size", " x ".join(f"{one.value:g}" for one in size))
    check(torv.GetOldPartTool(path(name), text, len(text), byref(length)) == 0, "the tools")
    print(f'  tools "{text.value.decode()}"')

group = torv.CreateOldPartlistInfo()
check(torv.LoadGroupPart(path("brackets.group"), group) == 0, "a group part file")
torv.DeleteOldPartlistInfo(group)
length = c_uint32()
check(torv.GetOldSptFromGroupPart(path("brackets.group"), None, 0, byref(length)) == 0, "the length only")
text = ctypes.create_string_buffer(length.value + 1)
check(torv.GetOldSptFromGroupPart(path("brackets.group"), text, len(text), byref(length)) == 0, "the text")
print(f'brackets.group\n  special tools "{text.value.decode()}"')

count, numbers = c_uint32(), [c_float() for _ in range(5)]
first, second, late = [c_int32()] + [c_float() for _ in range(6)], [c_int32()] + [c_float() for _ in range(6)], c_uint8()
extra = [c_float(), c_float()]
status = torv.OpenSpecialToolFile(path("Corner Punch.spt"), byref(count), *map(byref, numbers + first + second + extra), byref(late))
check(status == 0 and count.value == 5, "a special tool with five shapes")
print("Corner Punch.spt\n  dimensions", " ".join(f"{one.value:g}" for one in numbers[2:]))
for index in range(count.value):
    kind, place = c_int32(), [c_float() for _ in range(6)]
    torv.GetShapeAt(index, byref(kind), *map(byref, place))
    print(f"  shape {index}: type {kind.value} at {place[0].value:g}, {place[1].value:g}")

machine = MachineInformation()
check(torv.LoadOldMachineInformation(path("punch.mch"), byref(machine)) == 0, "the machine")
check(machine.infoVersion == 162 and machine.infoStationCount == 3, "a machine with three stations")
print(f"punch.mch\n  {machine.infoText2.decode()} in {machine.infoText1.decode()}, kind {machine.infoKind},",
      f"{machine.infoSizeX:g} x {machine.infoSizeY:g}, {machine.infoStationCount} stations")
check(torv.LoadOldMachineInformation(path("steel.mat"), byref(machine)) == 0, "a file that is no machine")
check(machine.infoVersion == 162, "the information after a file that is no machine")
check(torv.LoadOldMachineInformation(path("old.part"), byref(machine)) == -1, "a version that machines do not have")

tools = c_uint32()
check(torv.LoadOldToolInventoryForCount(path("shop.inv"), byref(tools)) == 0 and tools.value == 3, "three tools")
print(f"shop.inv\n  {tools.value} tools")
check(torv.LoadOldToolInventoryForCount(path("tab.mac"), byref(tools)) == 0 and tools.value == 0, "no inventory")
check(torv.LoadOldToolInventoryForCount(path("no such file"), byref(tools)) == -2, "a file that does not exist")


class Sheet:
    """A sheet by its handle, freed at the end of the with block."""

    def __init__(self, name):
        self.handle = c_void_p()
        check(torv.GetOldSheetHandle(path(name), byref(self.handle)) == 0, "a handle of " + name)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        torv.FreeSheetHandle(self.handle)

    def __getitem__(self, key):
        value = ctypes.create_string_buffer(16384)
        check(torv.GetOldSheetInfoByName(self.handle, key.encode(), value) == 0, key)
        return value.value.decode()

    def groups(self):
        value = ctypes.create_string_buffer(16384)
        check(torv.GetOldSheetInfoPartGroupIDs(self.handle, value) == 0, "the groups")
        return value.value.decode()


def info(name):
    """The outputs of GetOldSheetInfo: nine texts, four numbers, the names and the tools."""
    texts = [ctypes.create_string_buffer(261) for _ in range(9)]
    numbers = [c_float(), c_float(), c_float(), c_double()]
    long = [ctypes.create_string_buffer(16384), ctypes.create_string_buffer(16384)]
    lengths = [c_int32(), c_int32()]
    status = torv.GetOldSheetInfo(path(name), *texts, *map(byref, numbers), long[0], 16384, byref(lengths[0]), long[1],
                                  16384, byref(lengths[1]))
    check(status == 0, "the information of " + name)
    check([len(one.value) for one in long] == [one.value for one in lengths], "the lengths of names and tools")
    return ([one.value.decode() for one in texts] + [one.value for one in numbers],
            *(one.value.decode().strip(",").split(",") for one in long))


def small(name):
    """The outputs of the five small queries."""
    word, count, real, places = c_uint32(), c_uint32(), [c_float() for _ in range(4)], (c_float * 8)()
    status = torv.GetOldClampInfo(path(name), byref(word), *map(byref, real[:3]), places, byref(count), byref(real[3]))
    check(status == 0, "the clamps")
    texts = [ctypes.create_string_buffer(257) for _ in range(2)]
    check(torv.GetOldVLMQMaterialName(path(name), *texts) == 0, "two texts")
    utilization, flags, entries = c_float(-1), (c_int32 * 601)(), c_uint32()
    check(torv.GetOldSkeletonUtil(path(name), byref(utilization)) == 0, "the utilization")
    check(torv.GetSheetDriverFlags(path(name), flags) == 0, "the driver flags")
    check(torv.GetSheetSequenceListSize(path(name), byref(entries)) == 0, "the sequence")
    return (word.value, count.value, [one.value for one in real], list(places), [one.value.decode() for one in texts],
            utilization.value, {i: flag for i, flag in enumerate(flags) if flag}, entries.value)


names = [f"BRACKET {i:02}" for i in range(1, 13)]
files = [rf"C:\KESTRADA\PARTS\{one}.part" for one in names]


def expected(version, orders, area="19.750000"):
    """The values of all keys for the parts that have work orders: twelve, or none."""
    late, count = version >= 152, len(orders)  # below 152 a load misreads what follows the machine
    parts = list(zip(names, files, orders))
    detail = [f"{file}|{4 + i / 2:f}|{3 + i / 4:f}|5|{order}|;" for i, (_, file, order) in enumerate(parts, 1)]
    return {
        "Material_Group": "MILD STEEL" if late else "", "sheet_mat_type": "DC01" if late else "",
        "width": "96.000000", "height": "48.000000", "sheet_thickness": "0.062500", "part_count": str(count),
        "partfulldosname_and_count": "|".join(f"{file} |5 " for _, file, _ in parts),
        "partfulldosname_and_count_and_wonumber": "|".join(f"{file} |5 |{order} " for _, file, order in parts),
        "partname_and_count_and_wonumber": "|".join(f"{name} |5 |{order} " for name, _, order in parts),
        "part_details_01": "|".join(detail),
        "preSkeletonDosName": r"C:\KESTRADA\SKELETON\REST 18%.part" if version >= 100 else "",
        "totalSknPartCutArea": area, "sheet_utilization": "0.457031" if late else "0.000000",
        "sheet_sequence_size": "60",
    }


def check_keys(name, wanted):
    with Sheet(name) as sheet:
        for key, value in wanted.items():
            check(sheet[key.upper()] == value, f"{key} of {name}: {sheet[key]!r} and not {value!r}")
        groups = "".join(f"{100 + i}|" + (f"{200 + i}|" if i % 2 else "") + "," for i in range(1, 13))
        check(sheet.groups() == (groups if wanted["part_count"] == "12" else ""), f"the groups of {name}")


# In order of first use; the ninth has the same text as the eighth.
punches = [f"{1 if i <= 24 else 3} {i / 32:6.3f} {0 if i <= 24 else 0.25:6.3f}  0.000  0.000"
           for i in (*range(4, 9), *range(10, 37), 1, 2, 3)]
for version in (180, 112, 80):
    name, late = f"nest_{version}.sheet", version >= 152
    check(torv.LoadOldSheetInformation(path(name)) == 0, "the current sheet")
    facts, part_names, tools = info(name)
    texts = ["MILD STEEL", "DC01", "OILED", "GRAIN ALONG X", "STOCK 17"] if late else [""] * 5
    check(facts == ["STEEL 0.0625.mat", *texts, r"C:\KESTRADA\MACHINES\TP-40L.mch", "NEST 4711",
                    "STEEL 0.0625.mat", 96, 48, 0.0625, 7.875 if late else 0], f"the facts of {name}")
    check(part_names == names, "the names of the parts")
    check(tools == punches + ["108 Corner Punch  0.500"] + (["103  1.188  0.250  0.000  0.000"] if version >= 90 else [])
          + ["33  1.250  0.250  0.000  0.000"], f"the tools of {name}")
    check(small(name) == (5, 3, [1.5, 2.5, 3.5, 8], [6, 18, 30, 42, 27.5, 33, 38.5, 44],
                          ["COLD ROLLED", "RACK 12"] if late else ["", ""], 0.45703125 if late else 0,
                          {55: 4, 101: -1, 600: 7}, 60), f"the small queries of {name}")
    orders = ["WO-7001"] * 6 + ["WO-7002"] * 6 if version >= 162 else [""] * 12
    check_keys(name, expected(version, orders, "19.750000" if version >= 100 else "0.000000"))
    print(f"{name}\n  {facts[7]}: {len(names)} parts, {len(tools)} tools, the last {tools[-1]!r}")

copy = "edited from Python.sheet"
shutil.copy(path("nest_180.sheet"), path(copy))
check(torv.UpdateSheetPartWONumber(path(copy), b"BRACKET 12", None, b"WO-9000") == 0, "another work order")
orders = ["WO-7001"] * 6 + ["WO-7002"] * 5 + ["WO-9000"]
check_keys(copy, expected(180, orders))
check(torv.ReplaceSheetMachineNcPath(path(copy), rb"D:\NC\HALL2") == 0, "another NC path")
with open(path(copy), "rb") as file:
    check(b"D:\\NC\\HALL2\0" in file.read(), "the NC path in the file")
check_keys(copy, expected(180, orders))
check(torv.ReplaceSheetSknPatListWithPartPatList(path(copy), path("plate_180.part")) == 0, "a part as skeleton")
check_keys(copy, expected(180, [], "0.000000"))
print(f"{copy}\n  a work order, the NC path and the skeleton replaced")

fresh = torv.CreateSheetInfo()
check(torv.SaveOldSheet(path("fresh.sheet"), fresh, 180) == 0 and torv.LoadOldSheet(path("fresh.sheet"), fresh) == 0,
      "a fresh sheet saved and loaded")
torv.DeleteSheetInfo(fresh)
with Sheet("fresh.sheet") as sheet:
    check((sheet["width"], sheet["height"], sheet["part_count"]) == ("60.000000", "45.000000", "0"), "a fresh sheet")
print("fresh.sheet\n  60 x 45 without parts")
