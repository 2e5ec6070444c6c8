import ctypes
import sys

torv = ctypes.CDLL(sys.argv[1] if len(sys.argv) > 1 else "libOldTorvIO.so")
path = (sys.argv[2] if len(sys.argv) > 2 else "nest.sheet").encode()
text, sheet = ctypes.c_char_p, ctypes.c_void_p

torv.CreateSheetInfo.restype, torv.DeleteSheetInfo.argtypes = sheet, [sheet]
torv.SaveOldSheet.argtypes, torv.SaveOldSheet.restype = [text, sheet, ctypes.c_uint16], ctypes.c_int64
torv.GetOldSheetHandle.argtypes, torv.GetOldSheetHandle.restype = [text, sheet], ctypes.c_int64
torv.GetOldSheetInfoByName.argtypes, torv.GetOldSheetInfoByName.restype = [sheet, text, text], ctypes.c_int64
torv.ReplaceSheetMachineNcPath.argtypes, torv.ReplaceSheetMachineNcPath.restype = [text] * 2, ctypes.c_int64
torv.FreeSheetHandle.argtypes = [sheet]

plate = torv.CreateSheetInfo()  # a new sheet can be saved as it is
assert torv.SaveOldSheet(path, plate, 180) == 0
torv.DeleteSheetInfo(plate)

assert torv.ReplaceSheetMachineNcPath(path, rb"C:\KESTRADA\NC") == 0  # an edit: load, change, save

nest = sheet()
assert torv.GetOldSheetHandle(path, ctypes.byref(nest)) == 0
for key in (b"width", b"height", b"sheet_thickness", b"part_count"):
    value = ctypes.create_string_buffer(32)
    assert torv.GetOldSheetInfoByName(nest, key, value) == 0
    print(key.decode(), value.value.decode())
torv.FreeSheetHandle(nest)
