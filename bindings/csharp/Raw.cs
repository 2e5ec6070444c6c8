// Made by bindings/generate.py from functions.json: do not edit.
using System;
using System.Runtime.InteropServices;

namespace OldTorvIO.Raw
{
    [StructLayout(LayoutKind.Sequential)]
    public struct MachineInformation
    {
        public int infoKind;
        public int infoVersion;
        public float infoSizeX;
        public float infoSizeY;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = 256)]
        public byte[] infoText1;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = 256)]
        public byte[] infoText2;
        public int infoStationWord;
        public uint infoExtra1;
        public uint infoExtra2;
        public int infoStationMode;
        public int infoStationCount;
    }

    /// <summary>The functions of OldTorvIO.h, which describes them.</summary>
    public static class OldTorvIOFunctions
    {
        public const string Library = "OldTorvIO";

        /// <summary>Loads a part file into a record.
        /// Only C++ programs can create its record: torvio_json reads such files in other languages.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long LoadOldPart(byte[] path, IntPtr part);

        /// <summary>Starts a new part in the part builder.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void InitTorvPart(float width, float height, float thickness, short partKind,
            byte[] partName, byte[] assemblyName, byte[] materialName, byte[] customText1, byte[] customText2,
            byte[] customText3);

        /// <summary>Adds a shape to the part builder.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int AddPatternToTorvPart(float x, float y, byte type, uint flags, uint[] values,
            uint itemWord1, float itemWord2, float pairA, float pairB, float pairC, float pairD, byte[] toolName,
            short itemShort1, short itemShort2, float itemWord3, float itemWord4);

        /// <summary>Adds the shapes of a special tool as a group to the part builder.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int AddGroupPatIntoTorvPart(float x, float y, float angle, byte[] toolName);

        /// <summary>Adds a member to a group of the part builder.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern ushort AddPatIntoGroupPat(int groupIndex, float x, float y, byte type, ulong ignored,
            uint[] values);

        /// <summary>Saves the part builder as a part file.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long SaveTorvPart(byte[] path, short version);

        /// <summary>Material type and size of a part file.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long GetOldPartInfo(byte[] path, [In, Out] byte[] materialType, ref float width,
            ref float height, ref float thickness);

        /// <summary>One value of a part file as text.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long GetOldPartInfo_v1(byte[] path, byte[] key, [In, Out] byte[] value);

        /// <summary>The tools of a part file as text.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long GetOldPartTool(byte[] path, [In, Out] byte[] text, int size, ref uint length);

        /// <summary>The special tools of a part file as text.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long GetOldSptFromPart(byte[] path, [In, Out] byte[] text);

        /// <summary>The special tools of a group part file as text.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long GetOldSptFromGroupPart(byte[] path, [In, Out] byte[] text, int size, ref uint length);

        /// <summary>A new list of parts.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern PartListHandle CreateOldPartlistInfo();

        /// <summary>Frees a list of parts.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void DeleteOldPartlistInfo(IntPtr list);

        /// <summary>Appends the parts of a group part file to a list.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long LoadGroupPart(byte[] path, PartListHandle list);

        /// <summary>Loads a special tool file into a record.
        /// Only C++ programs can create its record: torvio_json reads such files in other languages.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long LoadOldSpecialTool(byte[] path, IntPtr tool);

        /// <summary>Loads the current special tool and returns its values.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int OpenSpecialToolFile(byte[] path, ref uint shapeCount, ref float orientation,
            ref float specialValue, ref float dimension1, ref float dimension2, ref float dimension3,
            ref int firstValueCount, ref float firstValue0, ref float firstValue1, ref float firstValue2,
            ref float firstValue3, ref float firstValue4, ref float firstValue5, ref int secondValueCount,
            ref float secondValue0, ref float secondValue1, ref float secondValue2, ref float secondValue3,
            ref float secondValue4, ref float secondValue5, ref float extraValue0, ref float extraValue1,
            ref byte lateFlag);

        /// <summary>One shape of the current special tool.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void GetShapeAt(int index, ref int type, ref float x, ref float y, ref float value0,
            ref float value1, ref float value2, ref float value3);

        /// <summary>Loads a tool inventory into a record.
        /// Only C++ programs can create its record: torvio_json reads such files in other languages.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long LoadOldToolInventory(byte[] path, IntPtr inventory);

        /// <summary>Loads the current tool inventory and counts its tools.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int LoadOldToolInventoryForCount(byte[] path, ref uint count);

        /// <summary>One tool of the current inventory.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void GetOldToolInventoryInformation(int index, [In, Out] byte[] name, ref float dimension1,
            ref float dimension2, ref float dimension3, ref float orientation, ref int firstValueCount,
            ref float firstValue0, ref float firstValue1, ref float firstValue2, ref float firstValue3,
            ref float firstValue4, ref float firstValue5, ref int secondValueCount, ref float secondValue0,
            ref float secondValue1, ref float secondValue2, ref float secondValue3, ref float secondValue4,
            ref float secondValue5);

        /// <summary>Loads a macro file into a record.
        /// Only C++ programs can create its record: torvio_json reads such files in other languages.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long LoadOldMacro(byte[] path, IntPtr macro);

        /// <summary>Loads a material file into a record.
        /// Only C++ programs can create its record: torvio_json reads such files in other languages.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long LoadOldMaterial(byte[] path, IntPtr material);

        /// <summary>Loads a machine file into a record.
        /// Only C++ programs can create its record: torvio_json reads such files in other languages.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long LoadOldMachine(byte[] path, IntPtr machine);

        /// <summary>Loads the current machine and returns facts about it.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int LoadOldMachineInformation(byte[] path, ref MachineInformation information);

        /// <summary>One station of the current machine and its tool.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void LoadOldStationToolFromMachine(int index, ref int stationNumber, ref int stationType,
            ref float orientation, ref float realF, ref float stationValue, ref int valueCount,
            [In, Out] float[] values, ref float limit0, ref float limit1, ref float limit2, ref float limit3,
            ref int shapeCode, [In, Out] float[] dimensions, [In, Out] float[] offsets,
            [In, Out] byte[] specialToolPath, ref float pairValue0, ref float pairValue1, ref int wordF);

        /// <summary>Loads the current machine and returns its name, kind and texts.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long GetOldVLMQMachineName(byte[] path, [In, Out] byte[] displayName, ref uint kind,
            [In, Out] byte[] text2, [In, Out] byte[] secondText, [In, Out] byte[] lateText);

        /// <summary>Size, clamps, station limits and work area of a machine file.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long GetMachineDatasForQD(byte[] path, ref float sizeX, ref float sizeY,
            ref float clampCount, ref float blockMode, ref float stationMinX, ref float stationMinY,
            ref float stationMaxX, ref float stationMaxY, ref float area0, ref float area1, ref float area2,
            ref float area3);

        /// <summary>A new sheet.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern SheetHandle CreateSheetInfo();

        /// <summary>Frees a sheet.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void DeleteSheetInfo(IntPtr sheet);

        /// <summary>Frees a sheet.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void FreeSheetHandle(IntPtr sheet);

        /// <summary>Loads a sheet file into a sheet.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long LoadOldSheet(byte[] path, SheetHandle sheet);

        /// <summary>Saves a sheet.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long SaveOldSheet(byte[] path, SheetHandle sheet, ushort version);

        /// <summary>Loads a sheet file as the current sheet: only the status matters.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int LoadOldSheetInformation(byte[] path);

        /// <summary>Loads a sheet file into a new sheet.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long GetOldSheetHandle(byte[] path, out SheetHandle sheet);

        /// <summary>One value of a sheet as text.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long GetOldSheetInfoByName(SheetHandle sheet, byte[] key, [In, Out] byte[] value);

        /// <summary>The group ids of the parts of a sheet as text.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long GetOldSheetInfoPartGroupIDs(SheetHandle sheet, [In, Out] byte[] value);

        /// <summary>Material, size, parts and tools of a sheet file.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long GetOldSheetInfo(byte[] path, [In, Out] byte[] materialName,
            [In, Out] byte[] materialGroup, [In, Out] byte[] materialType, [In, Out] byte[] materialText3,
            [In, Out] byte[] materialText4, [In, Out] byte[] materialText5, [In, Out] byte[] machinePath,
            [In, Out] byte[] sheetLabel, [In, Out] byte[] materialFile, ref float width, ref float height,
            ref float thickness, ref double lateValue, [In, Out] byte[] partNames, int partNamesSize,
            ref int partNamesLength, [In, Out] byte[] tools, int toolsSize, ref int toolsLength);

        /// <summary>The clamps of a sheet file.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long GetOldClampInfo(byte[] path, ref uint word, ref float first, ref float second,
            ref float third, [In, Out] float[] positions, ref uint count, ref float spacing);

        /// <summary>Two material texts of a sheet file.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long GetOldVLMQMaterialName(byte[] path, [In, Out] byte[] text3, [In, Out] byte[] text5);

        /// <summary>The utilization of a sheet file.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long GetOldSkeletonUtil(byte[] path, ref float utilization);

        /// <summary>The driver flags of a sheet file.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long GetSheetDriverFlags(byte[] path, [In, Out] int[] flags);

        /// <summary>The number of work entries of a sheet file.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long GetSheetSequenceListSize(byte[] path, ref uint count);

        /// <summary>Edits a sheet file: the NC path of its machine.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long ReplaceSheetMachineNcPath(byte[] path, byte[] ncPath);

        /// <summary>Edits a sheet file: its parts and its skeleton.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long ReplaceSheetSknPatListWithPartPatList(byte[] path, byte[] partPath);

        /// <summary>Edits a sheet file: the work order number of a part.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern long UpdateSheetPartWONumber(byte[] path, byte[] partName, byte[] oldNumber,
            byte[] newNumber);
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct NativeBuffer
    {
        public IntPtr data;
        public UIntPtr size;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct NativeError
    {
        public IntPtr message;
        public IntPtr field;
        public ulong offset;
        public int status;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct NativeInput
    {
        public IntPtr path;
        public IntPtr data;
        public UIntPtr size;
        public IntPtr name;
        public IntPtr kind;
        public IntPtr encoding;
    }

    /// <summary>The functions of torvio.h, which describes them.</summary>
    public static class TorvioFunctions
    {
        public const string Library = "libtorvio";
        public const int TORVIO_OK = 0;
        public const int TORVIO_DAMAGED = 1;
        public const int TORVIO_BAD_ARGUMENT = 2;
        public const int TORVIO_NOT_READ = 3;
        public const int TORVIO_REFUSED = 4;
        public const int TORVIO_NO_MEMORY = 5;
        public const int TORVIO_INTERNAL_ERROR = 6;
        public const uint TORVIO_PRETTY = 1;
        public const uint TORVIO_PAGE = 2;
        public const uint TORVIO_COMMON = 4;
        public const uint TORVIO_ALLOW_LOSS = 8;
        public const ulong TORVIO_NO_OFFSET = 18446744073709551615;

        /// <summary>Frees a result or an error.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern void torvio_free(IntPtr result_or_error);

        /// <summary>Judges a file.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int torvio_check([In] ref NativeInput input, uint flags, out BufferHandle result,
            out ErrorHandle error);

        /// <summary>A file at a glance.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int torvio_info([In] ref NativeInput input, uint flags, out BufferHandle result,
            out ErrorHandle error);

        /// <summary>The complete record of a file as JSON.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int torvio_json([In] ref NativeInput input, uint flags, out BufferHandle result,
            out ErrorHandle error);

        /// <summary>Makes a file from the JSON of its record.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int torvio_from_json([In] ref NativeInput input, int version, uint flags,
            out BufferHandle result, out ErrorHandle error);

        /// <summary>The JSON Schema of a kind of file.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int torvio_schema(byte[] kind, out BufferHandle result, out ErrorHandle error);

        /// <summary>The fields of a file with their offsets.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int torvio_map([In] ref NativeInput input, byte[] find, byte[] range, uint flags,
            out BufferHandle result, out ErrorHandle error);

        /// <summary>The stored form of a kind of file.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int torvio_format(byte[] name, byte[] language, out BufferHandle result,
            out ErrorHandle error);

        /// <summary>A picture of a file as SVG.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int torvio_draw([In] ref NativeInput input, uint flags, out BufferHandle result,
            out ErrorHandle error);

        /// <summary>Pictures of several files on an HTML page.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int torvio_draw_page([In] NativeInput[] inputs, UIntPtr count, byte[] title, uint flags,
            out BufferHandle result, out ErrorHandle error);

        /// <summary>Where two files differ.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int torvio_diff([In] ref NativeInput a, [In] ref NativeInput b, byte[] part,
            double tolerance, uint flags, ref int same, out BufferHandle result, out ErrorHandle error);

        /// <summary>Saves a file in another version.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int torvio_convert([In] ref NativeInput input, int version, uint flags,
            out BufferHandle result, out BufferHandle report, out ErrorHandle error);

        /// <summary>Makes a file from the sound beginning of a damaged one.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int torvio_recover([In] ref NativeInput input, uint flags, out BufferHandle result,
            out BufferHandle report, out ErrorHandle error);

        /// <summary>What the functions accept.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern int torvio_supported(out BufferHandle result, out ErrorHandle error);

        /// <summary>The version of the library.</summary>
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        public static extern IntPtr torvio_version();
    }

    /// <summary>The characters of the bytes from 0x80 on of each code page.</summary>
    public static class CodePageTables
    {
        public static readonly string[] Names =
        {
            "cp1252",
            "cp1250",
            "cp1251",
            "cp1253",
            "cp1254",
            "cp437",
            "cp850",
            "latin1",
        };

        public static readonly string[] Characters =
        {
            "\u20AC\u0081\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030\u0160\u2039\u0152\u008D\u017D\u008F" +
            "\u0090\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u02DC\u2122\u0161\u203A\u0153\u009D\u017E\u0178" +
            "\u00A0\u00A1\u00A2\u00A3\u00A4\u00A5\u00A6\u00A7\u00A8\u00A9\u00AA\u00AB\u00AC\u00AD\u00AE\u00AF" +
            "\u00B0\u00B1\u00B2\u00B3\u00B4\u00B5\u00B6\u00B7\u00B8\u00B9\u00BA\u00BB\u00BC\u00BD\u00BE\u00BF" +
            "\u00C0\u00C1\u00C2\u00C3\u00C4\u00C5\u00C6\u00C7\u00C8\u00C9\u00CA\u00CB\u00CC\u00CD\u00CE\u00CF" +
            "\u00D0\u00D1\u00D2\u00D3\u00D4\u00D5\u00D6\u00D7\u00D8\u00D9\u00DA\u00DB\u00DC\u00DD\u00DE\u00DF" +
            "\u00E0\u00E1\u00E2\u00E3\u00E4\u00E5\u00E6\u00E7\u00E8\u00E9\u00EA\u00EB\u00EC\u00ED\u00EE\u00EF" +
            "\u00F0\u00F1\u00F2\u00F3\u00F4\u00F5\u00F6\u00F7\u00F8\u00F9\u00FA\u00FB\u00FC\u00FD\u00FE\u00FF",
            "\u20AC\u0081\u201A\u0083\u201E\u2026\u2020\u2021\u0088\u2030\u0160\u2039\u015A\u0164\u017D\u0179" +
            "\u0090\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u0098\u2122\u0161\u203A\u015B\u0165\u017E\u017A" +
            "\u00A0\u02C7\u02D8\u0141\u00A4\u0104\u00A6\u00A7\u00A8\u00A9\u015E\u00AB\u00AC\u00AD\u00AE\u017B" +
            "\u00B0\u00B1\u02DB\u0142\u00B4\u00B5\u00B6\u00B7\u00B8\u0105\u015F\u00BB\u013D\u02DD\u013E\u017C" +
            "\u0154\u00C1\u00C2\u0102\u00C4\u0139\u0106\u00C7\u010C\u00C9\u0118\u00CB\u011A\u00CD\u00CE\u010E" +
            "\u0110\u0143\u0147\u00D3\u00D4\u0150\u00D6\u00D7\u0158\u016E\u00DA\u0170\u00DC\u00DD\u0162\u00DF" +
            "\u0155\u00E1\u00E2\u0103\u00E4\u013A\u0107\u00E7\u010D\u00E9\u0119\u00EB\u011B\u00ED\u00EE\u010F" +
            "\u0111\u0144\u0148\u00F3\u00F4\u0151\u00F6\u00F7\u0159\u016F\u00FA\u0171\u00FC\u00FD\u0163\u02D9",
            "\u0402\u0403\u201A\u0453\u201E\u2026\u2020\u2021\u20AC\u2030\u0409\u2039\u040A\u040C\u040B\u040F" +
            "\u0452\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u0098\u2122\u0459\u203A\u045A\u045C\u045B\u045F" +
            "\u00A0\u040E\u045E\u0408\u00A4\u0490\u00A6\u00A7\u0401\u00A9\u0404\u00AB\u00AC\u00AD\u00AE\u0407" +
            "\u00B0\u00B1\u0406\u0456\u0491\u00B5\u00B6\u00B7\u0451\u2116\u0454\u00BB\u0458\u0405\u0455\u0457" +
            "\u0410\u0411\u0412\u0413\u0414\u0415\u0416\u0417\u0418\u0419\u041A\u041B\u041C\u041D\u041E\u041F" +
            "\u0420\u0421\u0422\u0423\u0424\u0425\u0426\u0427\u0428\u0429\u042A\u042B\u042C\u042D\u042E\u042F" +
            "\u0430\u0431\u0432\u0433\u0434\u0435\u0436\u0437\u0438\u0439\u043A\u043B\u043C\u043D\u043E\u043F" +
            "\u0440\u0441\u0442\u0443\u0444\u0445\u0446\u0447\u0448\u0449\u044A\u044B\u044C\u044D\u044E\u044F",
            "\u20AC\u0081\u201A\u0192\u201E\u2026\u2020\u2021\u0088\u2030\u008A\u2039\u008C\u008D\u008E\u008F" +
            "\u0090\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u0098\u2122\u009A\u203A\u009C\u009D\u009E\u009F" +
            "\u00A0\u0385\u0386\u00A3\u00A4\u00A5\u00A6\u00A7\u00A8\u00A9\u00AA\u00AB\u00AC\u00AD\u00AE\u2015" +
            "\u00B0\u00B1\u00B2\u00B3\u0384\u00B5\u00B6\u00B7\u0388\u0389\u038A\u00BB\u038C\u00BD\u038E\u038F" +
            "\u0390\u0391\u0392\u0393\u0394\u0395\u0396\u0397\u0398\u0399\u039A\u039B\u039C\u039D\u039E\u039F" +
            "\u03A0\u03A1\u00D2\u03A3\u03A4\u03A5\u03A6\u03A7\u03A8\u03A9\u03AA\u03AB\u03AC\u03AD\u03AE\u03AF" +
            "\u03B0\u03B1\u03B2\u03B3\u03B4\u03B5\u03B6\u03B7\u03B8\u03B9\u03BA\u03BB\u03BC\u03BD\u03BE\u03BF" +
            "\u03C0\u03C1\u03C2\u03C3\u03C4\u03C5\u03C6\u03C7\u03C8\u03C9\u03CA\u03CB\u03CC\u03CD\u03CE\u00FF",
            "\u20AC\u0081\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030\u0160\u2039\u0152\u008D\u008E\u008F" +
            "\u0090\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u02DC\u2122\u0161\u203A\u0153\u009D\u009E\u0178" +
            "\u00A0\u00A1\u00A2\u00A3\u00A4\u00A5\u00A6\u00A7\u00A8\u00A9\u00AA\u00AB\u00AC\u00AD\u00AE\u00AF" +
            "\u00B0\u00B1\u00B2\u00B3\u00B4\u00B5\u00B6\u00B7\u00B8\u00B9\u00BA\u00BB\u00BC\u00BD\u00BE\u00BF" +
            "\u00C0\u00C1\u00C2\u00C3\u00C4\u00C5\u00C6\u00C7\u00C8\u00C9\u00CA\u00CB\u00CC\u00CD\u00CE\u00CF" +
            "\u011E\u00D1\u00D2\u00D3\u00D4\u00D5\u00D6\u00D7\u00D8\u00D9\u00DA\u00DB\u00DC\u0130\u015E\u00DF" +
            "\u00E0\u00E1\u00E2\u00E3\u00E4\u00E5\u00E6\u00E7\u00E8\u00E9\u00EA\u00EB\u00EC\u00ED\u00EE\u00EF" +
            "\u011F\u00F1\u00F2\u00F3\u00F4\u00F5\u00F6\u00F7\u00F8\u00F9\u00FA\u00FB\u00FC\u0131\u015F\u00FF",
            "\u00C7\u00FC\u00E9\u00E2\u00E4\u00E0\u00E5\u00E7\u00EA\u00EB\u00E8\u00EF\u00EE\u00EC\u00C4\u00C5" +
            "\u00C9\u00E6\u00C6\u00F4\u00F6\u00F2\u00FB\u00F9\u00FF\u00D6\u00DC\u00A2\u00A3\u00A5\u20A7\u0192" +
            "\u00E1\u00ED\u00F3\u00FA\u00F1\u00D1\u00AA\u00BA\u00BF\u2310\u00AC\u00BD\u00BC\u00A1\u00AB\u00BB" +
            "\u2591\u2592\u2593\u2502\u2524\u2561\u2562\u2556\u2555\u2563\u2551\u2557\u255D\u255C\u255B\u2510" +
            "\u2514\u2534\u252C\u251C\u2500\u253C\u255E\u255F\u255A\u2554\u2569\u2566\u2560\u2550\u256C\u2567" +
            "\u2568\u2564\u2565\u2559\u2558\u2552\u2553\u256B\u256A\u2518\u250C\u2588\u2584\u258C\u2590\u2580" +
            "\u03B1\u00DF\u0393\u03C0\u03A3\u03C3\u00B5\u03C4\u03A6\u0398\u03A9\u03B4\u221E\u03C6\u03B5\u2229" +
            "\u2261\u00B1\u2265\u2264\u2320\u2321\u00F7\u2248\u00B0\u2219\u00B7\u221A\u207F\u00B2\u25A0\u00A0",
            "\u00C7\u00FC\u00E9\u00E2\u00E4\u00E0\u00E5\u00E7\u00EA\u00EB\u00E8\u00EF\u00EE\u00EC\u00C4\u00C5" +
            "\u00C9\u00E6\u00C6\u00F4\u00F6\u00F2\u00FB\u00F9\u00FF\u00D6\u00DC\u00F8\u00A3\u00D8\u00D7\u0192" +
            "\u00E1\u00ED\u00F3\u00FA\u00F1\u00D1\u00AA\u00BA\u00BF\u00AE\u00AC\u00BD\u00BC\u00A1\u00AB\u00BB" +
            "\u2591\u2592\u2593\u2502\u2524\u00C1\u00C2\u00C0\u00A9\u2563\u2551\u2557\u255D\u00A2\u00A5\u2510" +
            "\u2514\u2534\u252C\u251C\u2500\u253C\u00E3\u00C3\u255A\u2554\u2569\u2566\u2560\u2550\u256C\u00A4" +
            "\u00F0\u00D0\u00CA\u00CB\u00C8\u0131\u00CD\u00CE\u00CF\u2518\u250C\u2588\u2584\u00A6\u00CC\u2580" +
            "\u00D3\u00DF\u00D4\u00D2\u00F5\u00D5\u00B5\u00FE\u00DE\u00DA\u00DB\u00D9\u00FD\u00DD\u00AF\u00B4" +
            "\u00AD\u00B1\u2017\u00BE\u00B6\u00A7\u00F7\u00B8\u00B0\u00A8\u00B7\u00B9\u00B3\u00B2\u25A0\u00A0",
            "\u0080\u0081\u0082\u0083\u0084\u0085\u0086\u0087\u0088\u0089\u008A\u008B\u008C\u008D\u008E\u008F" +
            "\u0090\u0091\u0092\u0093\u0094\u0095\u0096\u0097\u0098\u0099\u009A\u009B\u009C\u009D\u009E\u009F" +
            "\u00A0\u00A1\u00A2\u00A3\u00A4\u00A5\u00A6\u00A7\u00A8\u00A9\u00AA\u00AB\u00AC\u00AD\u00AE\u00AF" +
            "\u00B0\u00B1\u00B2\u00B3\u00B4\u00B5\u00B6\u00B7\u00B8\u00B9\u00BA\u00BB\u00BC\u00BD\u00BE\u00BF" +
            "\u00C0\u00C1\u00C2\u00C3\u00C4\u00C5\u00C6\u00C7\u00C8\u00C9\u00CA\u00CB\u00CC\u00CD\u00CE\u00CF" +
            "\u00D0\u00D1\u00D2\u00D3\u00D4\u00D5\u00D6\u00D7\u00D8\u00D9\u00DA\u00DB\u00DC\u00DD\u00DE\u00DF" +
            "\u00E0\u00E1\u00E2\u00E3\u00E4\u00E5\u00E6\u00E7\u00E8\u00E9\u00EA\u00EB\u00EC\u00ED\u00EE\u00EF" +
            "\u00F0\u00F1\u00F2\u00F3\u00F4\u00F5\u00F6\u00F7\u00F8\u00F9\u00FA\u00FB\u00FC\u00FD\u00FE\u00FF",
        };
    }
}
