"""The same library from Python: ctypes and the shared library alone."""
import ctypes
import sys
from ctypes import byref, c_char, c_char_p, c_float, c_int16, c_int32, c_int64, c_uint8, c_uint16, c_uint32, c_uint64, c_void_p

library_path, folder = sys.argv[1:]
torv = ctypes.CDLL(library_path)

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
]:
    function = getattr(torv, name)
    function.restype, function.argtypes = result, arguments


class MachineInformation(ctypes.Structure):
    _fields_ = [("infoKind", c_int32), ("infoVersion", c_int32), ("infoSizeX", c_float), ("infoSizeY", c_float),
                ("infoText1", c_char * 256), ("infoText2", c_char * 256), ("infoStationWord", c_int32),
                ("infoExtra1", c_uint32), ("infoExtra2", c_uint32), ("infoStationMode", c_int32),
                ("infoStationCount", c_int32)]


def check(holds, what):
    if not holds:
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
check(torv.GetOldSptFromGroupPart(path("brackets.group"), None, 0, byref(length)) == 0, "the length alone")
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
