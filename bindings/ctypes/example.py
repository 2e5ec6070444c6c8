"""Four jobs on the files of a folder, and two files that cannot be read.

usage: example.py FOLDER

OLDTORVIO_LIBRARY and TORVIO_LIBRARY can hold the paths of the libraries.
"""
import ctypes
import json
import os
import sys
from ctypes import byref, c_char_p, c_float, c_int16, c_int32, c_int64, c_size_t, c_uint8, c_uint32, c_uint64, c_void_p

old = ctypes.CDLL(os.environ.get("OLDTORVIO_LIBRARY", "libOldTorvIO.so"))
torvio = ctypes.CDLL(os.environ.get("TORVIO_LIBRARY", "libtorvio.so"))


class Input(ctypes.Structure):
    _fields_ = [("path", c_char_p), ("data", c_void_p), ("size", c_size_t), ("name", c_char_p), ("kind", c_char_p),
                ("encoding", c_char_p)]


class Buffer(ctypes.Structure):
    _fields_ = [("data", c_void_p), ("size", c_size_t)]


class Error(ctypes.Structure):
    _fields_ = [("message", c_char_p), ("field", c_char_p), ("offset", c_uint64), ("status", c_int32)]


for library, name, result, parameters in [
    (old, "InitTorvPart", None, [c_float] * 3 + [c_int16] + [c_char_p] * 6),
    (old, "AddPatternToTorvPart", c_int32, [c_float, c_float, c_uint8, c_uint32, c_void_p, c_uint32] + [c_float] * 5
        + [c_char_p, c_int16, c_int16, c_float, c_float]),
    (old, "SaveTorvPart", c_int64, [c_char_p, c_int16]),
    (old, "GetOldPartInfo", c_int64, [c_char_p, c_char_p] + [c_void_p] * 3),
    (old, "GetOldSheetHandle", c_int64, [c_char_p, c_void_p]),
    (old, "FreeSheetHandle", None, [c_void_p]),
    (old, "GetOldSheetInfoByName", c_int64, [c_void_p, c_char_p, c_char_p]),
    (torvio, "torvio_json", c_int32, [ctypes.POINTER(Input), c_uint32, c_void_p, c_void_p]),
    (torvio, "torvio_free", None, [c_void_p]),
]:
    function = getattr(library, name)
    function.restype, function.argtypes = result, parameters


class TorvioError(Exception):
    def __init__(self, function, status, offset=None, field="", result=None):
        super().__init__(f"{function}: status {status}" + (f", at {offset} in {field}" if offset is not None else ""))
        self.result = result


def call(name, *parameters):
    status = getattr(old, name)(*parameters)
    if status != 0:
        raise TorvioError(name, status)


def read_json(path):
    result, error = ctypes.POINTER(Buffer)(), ctypes.POINTER(Error)()
    status = torvio.torvio_json(byref(Input(path=path.encode())), 0, byref(result), byref(error))
    try:
        document = json.loads(ctypes.string_at(result[0].data, result[0].size)) if result else None
        if status == 0:
            return document
        place = (error[0].offset, error[0].field.decode()) if error and error[0].field else (None, "")
        raise TorvioError("torvio_json", status, *place, document)
    finally:
        torvio.torvio_free(result)
        torvio.torvio_free(error)


def sheet_value(sheet, key, room=264):
    value = ctypes.create_string_buffer(room)
    call("GetOldSheetInfoByName", sheet, key, value)
    return value.value.decode("cp1252")


def ask_parts(path):
    sheet = c_void_p()
    call("GetOldSheetHandle", path.encode(), byref(sheet))
    try:
        count = int(sheet_value(sheet, b"part_count"))
        print(f"{sheet_value(sheet, b'width')} x {sheet_value(sheet, b'height')}, {count} parts")
        # Six texts for each part: path, width, height, quantity, work order and ";".
        details = sheet_value(sheet, b"part_details_01", 1 + 1024 * count).split("|")
        for i in range(0, 6 * count, 6):
            part, width, height, quantity, order = details[i:i + 5]
            print(f"  {quantity} of {part}, {width} x {height}, for {order}")
    finally:
        old.FreeSheetHandle(sheet)


def walk_nest(path):
    for part in read_json(path)["record"]["partList"]["parts"]:
        print(f"{part['partName']}: {len(part['shapes']['shapes'])} shapes")
        for one in part["patterns"]:
            print(f"  {one['gridCount1']} x {one['gridCount2']} at {one['originX']:.4f}, {one['originY']:.4f}")


def build_part(path):
    old.InitTorvPart(24, 12, 0.0625, 1, None, None, b"STEEL", "Träger 7".encode("cp1252"), None, None)
    values = (c_float * 9)(0.5)
    for x in (6, 18):
        old.AddPatternToTorvPart(x, 6, 1, 0, values, 0, 0, 0, 0, 0, 0, None, 0, 0, 0, 0)
    call("SaveTorvPart", path.encode(), 180)

    material, size = ctypes.create_string_buffer(257), [c_float() for _ in range(3)]
    call("GetOldPartInfo", path.encode(), material, *map(byref, size))
    print(" x ".join(f"{one.value:.4f}" for one in size))
    record = read_json(path)["record"]
    shapes = record["shapes"]["shapes"]
    print(f"{record['customText1']}: {len(shapes)} shapes, the last at {shapes[1]['x']:.4f}")


def read_record(path):
    document = read_json(path)
    print(f"{document['kind']} of version {document['version']}: {document['record']['name']}")
    for entry in document["record"]["entryList"]:
        print(f"  {entry['entryKey']}: {entry['entryText']}")


def report(job, *parameters):
    try:
        job(*parameters)
    except TorvioError as error:
        print(error)
        if error.result is not None:
            print(f"  {len(error.result['record']['partList']['parts'])} parts were read")


def main():
    sys.stdout.reconfigure(encoding="utf-8")
    folder = sys.argv[1] + "/"
    print("Parts of a sheet")
    ask_parts(folder + "nest_180.sheet")
    print("A nest")
    walk_nest(folder + "nest_180.sheet")
    print("A new part")
    build_part(folder + "Träger.part")
    print("A material")
    read_record(folder + "steel.mat")
    print("A file that does not exist")
    report(read_json, folder + "nothing.sheet")
    report(call, "GetOldPartInfo", (folder + "nothing.part").encode(), None, None, None, None)
    print("A damaged file")
    report(read_json, folder + "damaged.sheet")
    report(call, "GetOldSheetHandle", (folder + "damaged.sheet").encode(), byref(c_void_p()))


main()
