import ctypes
import sys

torv = ctypes.CDLL(sys.argv[1] if len(sys.argv) > 1 else "libOldTorvIO.so")
path = (sys.argv[2] if len(sys.argv) > 2 else "plate.part").encode()
real, text = ctypes.c_float, ctypes.c_char_p

torv.InitTorvPart.argtypes = [real, real, real, ctypes.c_int16] + [text] * 6
torv.AddPatIntoGroupPat.argtypes = [ctypes.c_int32, real, real, ctypes.c_uint8, ctypes.c_uint64, ctypes.c_void_p]
torv.SaveTorvPart.argtypes, torv.SaveTorvPart.restype = [text, ctypes.c_int16], ctypes.c_int64
torv.GetOldPartInfo_v1.argtypes, torv.GetOldPartInfo_v1.restype = [text] * 3, ctypes.c_int64

torv.InitTorvPart(24, 12, 0.06, 1, b"PLATE", None, b"STEEL", None, None, None)
torv.AddPatIntoGroupPat(1, 6, 6, 1, 0, (ctypes.c_uint32 * 9)(0x3F000000))
assert torv.SaveTorvPart(path, 180) == 0

answer = ctypes.create_string_buffer(257)
assert torv.GetOldPartInfo_v1(path, b"Thickness", answer) == 0
print("thickness", answer.value.decode())
