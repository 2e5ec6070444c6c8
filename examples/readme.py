import ctypes
import sys

torv = ctypes.CDLL(sys.argv[1] if len(sys.argv) > 1 else "libOldTorvIO.so")
path = (sys.argv[2] if len(sys.argv) > 2 else "plate.part").encode()
real, text = ctypes.c_float, ctypes.c_char_p

torv.InitTorvPart.argtypes = [real, real, real, ctypes.c_int16] + [text] * 6
torv.AddPatternToTorvPart.argtypes = [real, real, ctypes.c_uint8, ctypes.c_uint32, ctypes.c_void_p, ctypes.c_uint32,
                                      real, real, real, real, real, text, ctypes.c_int16, ctypes.c_int16, real, real]
torv.SaveTorvPart.argtypes, torv.SaveTorvPart.restype = [text, ctypes.c_int16], ctypes.c_int64
torv.GetOldPartInfo_v1.argtypes, torv.GetOldPartInfo_v1.restype = [text] * 3, ctypes.c_int64

torv.InitTorvPart(24, 12, 0.06, 1, b"PLATE", None, b"STEEL", None, None, None)
values = (ctypes.c_uint32 * 9)(0x3F000000)  # a radius of 0.5, as bits
torv.AddPatternToTorvPart(6, 6, 1, 0, values, 0, 0, 0, 0, 0, 0, None, 0, 0, 0, 0)
assert torv.SaveTorvPart(path, 180) == 0

value = ctypes.create_string_buffer(257)
assert torv.GetOldPartInfo_v1(path, b"Thickness", value) == 0
print("thickness", value.value.decode())
