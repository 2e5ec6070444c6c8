// The functions of OldTorvIO.h.
using System;
using System.IO;
using System.Linq;
using OldTorvIO.Raw;

namespace OldTorvIO
{
    // Statuses, and outputs that show whether a function has set them.
    static class Calls
    {
        static string Meaning(long status)
        {
            switch (status)
            {
                case 1: return "the file ends too early, or contains a value that is refused";
                case -1: return "this version is not accepted";
                case -2: return "the file cannot be opened or saved";
                default: return "status " + status;
            }
        }

        internal static void Check(string function, string path, long status)
        {
            if (status != 0) throw new TorvioException(function, path, Meaning(status), status);
        }

        // Some functions return 0 and change nothing if a file has a fault after its version word. Outputs begin with a
        // value that no file has, so that this is noticed.
        internal static void CheckChanged(string function, string path, bool changed)
        {
            if (!changed) throw new TorvioException(function, path, "the file is damaged after its version word", 1);
        }

        // A NaN that differs from those of files: a file with exactly these bits would look damaged.
        internal static readonly float Unchanged = BitConverter.ToSingle(BitConverter.GetBytes(UnchangedBits), 0);
        const int UnchangedBits = 0x7FC0DEAD;

        internal static bool IsUnchanged(float number) { return Native.BitsOf(number) == UnchangedBits; }

        internal static byte[] UnchangedText(int size)
        {
            var text = new byte[size];
            text[0] = text[1] = 1;
            return text;
        }

        internal static bool IsUnchanged(byte[] text) { return text[0] == 1 && text[1] == 1 && text[2] == 0; }

        internal static byte[] Required(string text, string encoding, int most, string what)
        {
            if (text == null) throw new ArgumentNullException(what);
            return CodePage.Encode(text, encoding, most, what);
        }

        internal delegate int Reader(byte[] text);

        // The buffer grows until the text fits: at the latest in the second call, unless the file changes.
        internal static byte[] TextOfAnyLength(Reader read)
        {
            for (int size = 4096;;)
            {
                var text = new byte[size];
                int length = read(text);
                if (length < size) return text;
                size = checked(length + 1);
            }
        }
    }

    // ---- Parts ----

    /// <summary>A shape of a new part. The nine values are 32-bit floats; SetBits stores other values.</summary>
    public sealed class NewShape
    {
        readonly uint[] values = new uint[9];

        public float X, Y;
        public byte Type;
        public uint Flags;
        public uint ItemWord1;
        public float ItemWord2, PairA, PairB, PairC, PairD;
        /// <summary>The special tool that makes the shape; null for none.</summary>
        public string ToolName;
        public short ItemShort1, ItemShort2;
        public float ItemWord3, ItemWord4;

        public NewShape(float x, float y, byte type, params float[] shapeValues)
        {
            X = x;
            Y = y;
            Type = type;
            if (shapeValues.Length > 9) throw new ArgumentException("a shape has nine values");
            for (int i = 0; i < shapeValues.Length; ++i) values[i] = (uint)Native.BitsOf(shapeValues[i]);
        }

        public void SetBits(int index, uint bits) { values[index] = bits; }
        internal uint[] Values { get { return values; } }
    }

    /// <summary>The part builder, which exists once per process. The methods that add return the number of
    /// shapes in the part.</summary>
    public static class PartBuilder
    {
        static readonly object access = new object();
        static int shapeCount = -1;  // before the first start

        static void CheckStarted()
        {
            if (shapeCount < 0) throw new InvalidOperationException("PartBuilder.Start must be called first");
        }

        static int Counted(string function, string tool, int count)
        {
            if (count < 0) throw new TorvioException(function, tool, "the special tool cannot be loaded", -1);
            return shapeCount = count;
        }

        /// <summary>Texts that are null have the defaults of their fields.</summary>
        public static void Start(float width, float height, float thickness, short kind = 1, string name = null,
                                 string assembly = null, string material = null, string customText1 = null,
                                 string customText2 = null, string customText3 = null,
                                 string encoding = CodePage.Default)
        {
            byte[] nameText = CodePage.Encode(name, encoding, 255, "name");
            byte[] assemblyText = CodePage.Encode(assembly, encoding, 20, "assembly");
            byte[] materialText = CodePage.Encode(material, encoding, 20, "material");
            byte[][] custom = new[] { customText1, customText2, customText3 }
                .Select(one => CodePage.Encode(one, encoding, 255, "a custom text")).ToArray();
            lock (access)
            {
                OldTorvIOFunctions.InitTorvPart(width, height, thickness, kind, nameText, assemblyText, materialText,
                                                custom[0], custom[1], custom[2]);
                shapeCount = 0;
            }
        }

        public static int Add(NewShape shape, string encoding = CodePage.Default)
        {
            byte[] tool = CodePage.Encode(shape.ToolName, encoding, 255, "ToolName");
            lock (access)
            {
                CheckStarted();
                return Counted("AddPatternToTorvPart", shape.ToolName, OldTorvIOFunctions.AddPatternToTorvPart(
                    shape.X, shape.Y, shape.Type, shape.Flags, shape.Values, shape.ItemWord1, shape.ItemWord2,
                    shape.PairA, shape.PairB, shape.PairC, shape.PairD, tool, shape.ItemShort1, shape.ItemShort2,
                    shape.ItemWord3, shape.ItemWord4));
            }
        }

        public static int AddGroup(float x, float y, float angle, string toolName, string encoding = CodePage.Default)
        {
            byte[] tool = Calls.Required(toolName, encoding, 255, "toolName");
            lock (access)
            {
                CheckStarted();
                return Counted("AddGroupPatIntoTorvPart", toolName,
                               OldTorvIOFunctions.AddGroupPatIntoTorvPart(x, y, angle, tool));
            }
        }

        /// <summary>Only place, type and values of the shape are used. groupIndex: the position of the head of the
        /// group, from 1.</summary>
        public static int AddToGroup(int groupIndex, NewShape shape)
        {
            lock (access)
            {
                CheckStarted();
                // A position after the new member would end the process.
                if (groupIndex < 1 || groupIndex > shapeCount) throw new ArgumentOutOfRangeException("groupIndex");
                ushort count = OldTorvIOFunctions.AddPatIntoGroupPat(groupIndex, shape.X, shape.Y, shape.Type, 0,
                                                                     shape.Values);
                if (count != (ushort)(shapeCount + 1))
                {
                    throw new TorvioException("AddPatIntoGroupPat", "the part", "memory ran out", 0);
                }
                return ++shapeCount;
            }
        }

        public static void Save(string path, short version = 180)
        {
            byte[] name = Native.FileName(path, 259);
            lock (access) Calls.Check("SaveTorvPart", path, OldTorvIOFunctions.SaveTorvPart(name, version));
        }
    }

    public sealed class PartInfo
    {
        public string MaterialType { get; internal set; }
        public float Width { get; internal set; }
        public float Height { get; internal set; }
        public float Thickness { get; internal set; }
    }

    public static class PartFile
    {
        public static PartInfo Info(string path, string encoding = CodePage.Default)
        {
            var material = new byte[257];
            float width = 0, height = 0, thickness = 0;
            Calls.Check("GetOldPartInfo", path, OldTorvIOFunctions.GetOldPartInfo(
                Native.FileName(path), material, ref width, ref height, ref thickness));
            return new PartInfo { MaterialType = CodePage.Decode(material, encoding), Width = width, Height = height,
                                  Thickness = thickness };
        }

        public static string Value(string path, string key, string encoding = CodePage.Default)
        {
            var value = new byte[257];
            Calls.Check("GetOldPartInfo_v1", path, OldTorvIOFunctions.GetOldPartInfo_v1(
                Native.FileName(path), Calls.Required(key, CodePage.Default, int.MaxValue, "key"), value));
            return CodePage.Decode(value, encoding);
        }

        static byte[] RawTools(string path)
        {
            return Calls.TextOfAnyLength(text =>
            {
                uint length = 0;
                Calls.Check("GetOldPartTool", path, OldTorvIOFunctions.GetOldPartTool(
                    Native.FileName(path), text, text.Length, ref length));
                return checked((int)length);
            });
        }

        public static string Tools(string path, string encoding = CodePage.Default)
        {
            return CodePage.Decode(RawTools(path), encoding);
        }

        public static string SpecialTools(string path, string encoding = CodePage.Default)
        {
            // Each special tool is an item of the tools, and each item ends with a comma.
            int most = RawTools(path).Count(one => one == ',');
            var text = new byte[1 + 258 * most];
            Calls.Check("GetOldSptFromPart", path, OldTorvIOFunctions.GetOldSptFromPart(Native.FileName(path), text));
            return CodePage.Decode(text, encoding);
        }
    }

    public static class GroupPartFile
    {
        public static string SpecialTools(string path, string encoding = CodePage.Default)
        {
            return CodePage.Decode(Calls.TextOfAnyLength(text =>
            {
                uint length = 0;
                Calls.Check("GetOldSptFromGroupPart", path, OldTorvIOFunctions.GetOldSptFromGroupPart(
                    Native.FileName(path), text, text.Length, ref length));
                return checked((int)length);
            }), encoding);
        }
    }

    /// <summary>The parts of group part files; only shows whether they can be loaded.</summary>
    public sealed class PartList : IDisposable
    {
        public PartList()
        {
            Handle = OldTorvIOFunctions.CreateOldPartlistInfo();
            if (Handle.IsInvalid) throw new OutOfMemoryException();
        }

        /// <summary>For the raw functions.</summary>
        public PartListHandle Handle { get; private set; }

        public void Load(string path)
        {
            Calls.Check("LoadGroupPart", path, OldTorvIOFunctions.LoadGroupPart(Native.FileName(path), Handle));
        }

        public void Dispose() { Handle.Dispose(); }
    }

    // ---- Special tools, inventories, machines ----

    public sealed class ToolShape
    {
        public int Type { get; internal set; }
        public float X { get; internal set; }
        public float Y { get; internal set; }
        public float[] Values { get; internal set; }
    }

    public sealed class SpecialTool
    {
        public float Orientation { get; internal set; }
        public float SpecialValue { get; internal set; }
        public float[] Dimensions { get; internal set; }
        public int FirstValueCount { get; internal set; }
        public float[] FirstValues { get; internal set; }
        public int SecondValueCount { get; internal set; }
        public float[] SecondValues { get; internal set; }
        public float[] ExtraValues { get; internal set; }
        public byte LateFlag { get; internal set; }
        public ToolShape[] Shapes { get; internal set; }
    }

    public static class SpecialToolFile
    {
        static readonly object access = new object();

        /// <summary>The header says what is returned for a file without shapes.</summary>
        public static SpecialTool Open(string path)
        {
            uint count = 0;
            float orientation = 0, special = 0;
            float[] dimensions = new float[3], first = new float[6], second = new float[6], extra = new float[2];
            int firstCount = 0, secondCount = 0;
            byte late = 0;
            lock (access)
            {
                Calls.Check("OpenSpecialToolFile", path, OldTorvIOFunctions.OpenSpecialToolFile(
                    Native.FileName(path), ref count, ref orientation, ref special, ref dimensions[0],
                    ref dimensions[1], ref dimensions[2], ref firstCount, ref first[0], ref first[1], ref first[2],
                    ref first[3], ref first[4], ref first[5], ref secondCount, ref second[0], ref second[1], ref second[2],
                    ref second[3], ref second[4], ref second[5], ref extra[0], ref extra[1], ref late));
                return new SpecialTool
                {
                    Orientation = orientation, SpecialValue = special, Dimensions = dimensions,
                    FirstValueCount = firstCount, FirstValues = first, SecondValueCount = secondCount,
                    SecondValues = second, ExtraValues = extra, LateFlag = late,
                    Shapes = Enumerable.Range(0, checked((int)count)).Select(ShapeAt).ToArray()
                };
            }
        }

        static ToolShape ShapeAt(int index)
        {
            int type = 0;
            float x = 0, y = 0;
            var values = new float[4];
            OldTorvIOFunctions.GetShapeAt(index, ref type, ref x, ref y, ref values[0], ref values[1], ref values[2],
                                          ref values[3]);
            return new ToolShape { Type = type, X = x, Y = y, Values = values };
        }
    }

    public sealed class InventoryTool
    {
        public string Name { get; internal set; }
        public float[] Dimensions { get; internal set; }
        public float Orientation { get; internal set; }
        public int FirstValueCount { get; internal set; }
        public float[] FirstValues { get; internal set; }
        public int SecondValueCount { get; internal set; }
        public float[] SecondValues { get; internal set; }
    }

    public static class ToolInventoryFile
    {
        static readonly object access = new object();

        /// <summary>A damaged file looks like an empty one. A special tool whose file is not in the list ends the
        /// process.</summary>
        public static InventoryTool[] Open(string path, string encoding = CodePage.Default)
        {
            lock (access)
            {
                uint count = 0;
                Calls.Check("LoadOldToolInventoryForCount", path,
                            OldTorvIOFunctions.LoadOldToolInventoryForCount(Native.FileName(path), ref count));
                return Enumerable.Range(0, checked((int)count)).Select(index => ToolAt(index, encoding)).ToArray();
            }
        }

        static InventoryTool ToolAt(int index, string encoding)
        {
            var name = new byte[257];
            float[] dimensions = new float[3], first = new float[6], second = new float[6];
            float orientation = 0;
            int firstCount = 0, secondCount = 0;
            OldTorvIOFunctions.GetOldToolInventoryInformation(
                index, name, ref dimensions[0], ref dimensions[1], ref dimensions[2], ref orientation, ref firstCount,
                ref first[0], ref first[1], ref first[2], ref first[3], ref first[4], ref first[5], ref secondCount,
                ref second[0], ref second[1], ref second[2], ref second[3], ref second[4], ref second[5]);
            return new InventoryTool
            {
                Name = CodePage.Decode(name, encoding), Dimensions = dimensions, Orientation = orientation,
                FirstValueCount = firstCount, FirstValues = first, SecondValueCount = secondCount, SecondValues = second
            };
        }
    }

    public sealed class Station
    {
        public int StationNumber { get; internal set; }
        public int StationType { get; internal set; }
        public float Orientation { get; internal set; }
        public float RealF { get; internal set; }
        public float StationValue { get; internal set; }
        public int ValueCount { get; internal set; }
        public float[] Values { get; internal set; }
        public float[] Limits { get; internal set; }
        public int ShapeCode { get; internal set; }
        public float[] Dimensions { get; internal set; }
        public float[] Offsets { get; internal set; }
        public string SpecialToolPath { get; internal set; }
        public float[] PairValues { get; internal set; }
        public int WordF { get; internal set; }
    }

    public sealed class Machine
    {
        public int Kind { get; internal set; }
        public int Version { get; internal set; }
        public float SizeX { get; internal set; }
        public float SizeY { get; internal set; }
        public string Text1 { get; internal set; }
        public string Text2 { get; internal set; }
        public int StationWord { get; internal set; }
        public uint Extra1 { get; internal set; }
        public uint Extra2 { get; internal set; }
        public int StationMode { get; internal set; }
        public Station[] Stations { get; internal set; }
    }

    public sealed class MachineName
    {
        public string DisplayName { get; internal set; }
        public uint Kind { get; internal set; }
        public string Text2 { get; internal set; }
        public string SecondText { get; internal set; }
        public string LateText { get; internal set; }
    }

    public sealed class MachineSize
    {
        public float SizeX { get; internal set; }
        public float SizeY { get; internal set; }
        public int ClampCount { get; internal set; }
        public int BlockMode { get; internal set; }
        public float StationMinX { get; internal set; }
        public float StationMinY { get; internal set; }
        public float StationMaxX { get; internal set; }
        public float StationMaxY { get; internal set; }
        public float[] Area { get; internal set; }
    }

    public static class MachineFile
    {
        static readonly object access = new object();

        public static Machine Open(string path, string encoding = CodePage.Default)
        {
            var information = new MachineInformation { infoText1 = new byte[256], infoText2 = new byte[256] };
            lock (access)
            {
                Calls.Check("LoadOldMachineInformation", path,
                            OldTorvIOFunctions.LoadOldMachineInformation(Native.FileName(path), ref information));
                Calls.CheckChanged("LoadOldMachineInformation", path, information.infoVersion != 0);
                return new Machine
                {
                    Kind = information.infoKind, Version = information.infoVersion, SizeX = information.infoSizeX,
                    SizeY = information.infoSizeY, Text1 = CodePage.Decode(information.infoText1, encoding),
                    Text2 = CodePage.Decode(information.infoText2, encoding), StationWord = information.infoStationWord,
                    Extra1 = information.infoExtra1, Extra2 = information.infoExtra2,
                    StationMode = information.infoStationMode,
                    Stations = Enumerable.Range(0, information.infoStationCount)
                        .Select(index => StationAt(index, encoding)).ToArray()
                };
            }
        }

        static Station StationAt(int index, string encoding)
        {
            int number = 0, type = 0, valueCount = 0, shapeCode = 0, wordF = 0;
            float orientation = 0, realF = 0, stationValue = 0;
            float[] values = new float[6], limits = new float[4], dimensions = new float[3], offsets = new float[3];
            float[] pair = new float[2];
            var toolPath = new byte[257];
            OldTorvIOFunctions.LoadOldStationToolFromMachine(
                index, ref number, ref type, ref orientation, ref realF, ref stationValue, ref valueCount, values,
                ref limits[0], ref limits[1], ref limits[2], ref limits[3], ref shapeCode, dimensions, offsets,
                toolPath, ref pair[0], ref pair[1], ref wordF);
            return new Station
            {
                StationNumber = number, StationType = type, Orientation = orientation, RealF = realF,
                StationValue = stationValue, ValueCount = valueCount, Values = values, Limits = limits,
                ShapeCode = shapeCode, Dimensions = dimensions, Offsets = offsets,
                SpecialToolPath = CodePage.Decode(toolPath, encoding), PairValues = pair, WordF = wordF
            };
        }

        public static MachineName Name(string path, string encoding = CodePage.Default)
        {
            byte[] name = Calls.UnchangedText(257), text2 = new byte[257], second = new byte[257], late = new byte[257];
            uint kind = 0;
            lock (access)
            {
                Calls.Check("GetOldVLMQMachineName", path, OldTorvIOFunctions.GetOldVLMQMachineName(
                    Native.FileName(path), name, ref kind, text2, second, late));
            }
            Calls.CheckChanged("GetOldVLMQMachineName", path, !Calls.IsUnchanged(name));
            return new MachineName
            {
                DisplayName = CodePage.Decode(name, encoding), Kind = kind, Text2 = CodePage.Decode(text2, encoding),
                SecondText = CodePage.Decode(second, encoding), LateText = CodePage.Decode(late, encoding)
            };
        }

        public static MachineSize Size(string path)
        {
            float sizeX = 0, sizeY = 0, minX = 0, minY = 0, maxX = 0, maxY = 0;
            float clamps = 0, mode = 0;  // integers in the bytes of a float
            var area = new float[4];
            Calls.Check("GetMachineDatasForQD", path, OldTorvIOFunctions.GetMachineDatasForQD(
                Native.FileName(path), ref sizeX, ref sizeY, ref clamps, ref mode, ref minX, ref minY, ref maxX,
                ref maxY, ref area[0], ref area[1], ref area[2], ref area[3]));
            return new MachineSize
            {
                SizeX = sizeX, SizeY = sizeY, ClampCount = Native.BitsOf(clamps), BlockMode = Native.BitsOf(mode),
                StationMinX = minX, StationMinY = minY, StationMaxX = maxX, StationMaxY = maxY, Area = area
            };
        }
    }

    // ---- Sheets ----

    public sealed class SheetInfo
    {
        public string MaterialName { get; internal set; }
        public string MaterialGroup { get; internal set; }
        public string MaterialType { get; internal set; }
        public string MaterialText3 { get; internal set; }
        public string MaterialText4 { get; internal set; }
        public string MaterialText5 { get; internal set; }
        public string MachinePath { get; internal set; }
        public string SheetLabel { get; internal set; }
        public string MaterialFile { get; internal set; }
        public float Width { get; internal set; }
        public float Height { get; internal set; }
        public float Thickness { get; internal set; }
        public double LateValue { get; internal set; }
        public string PartNames { get; internal set; }
        public string Tools { get; internal set; }
    }

    public sealed class SheetClamps
    {
        public uint Word { get; internal set; }
        public uint[] Bits { get; internal set; }
        public float[] Positions { get; internal set; }
        public uint Count { get; internal set; }
        public float Spacing { get; internal set; }
    }

    public static class SheetFile
    {
        static readonly object access = new object();

        public static SheetInfo Info(string path, string encoding = CodePage.Default)
        {
            for (int namesSize = 4096, toolsSize = 4096;;)
            {
                byte[][] texts = Enumerable.Range(0, 9).Select(one => new byte[261]).ToArray();
                byte[] names = new byte[namesSize], tools = new byte[toolsSize];
                int namesLength = -1, toolsLength = 0;
                float width = 0, height = 0, thickness = 0;
                double late = 0;
                Calls.Check("GetOldSheetInfo", path, OldTorvIOFunctions.GetOldSheetInfo(
                    Native.FileName(path), texts[0], texts[1], texts[2], texts[3], texts[4], texts[5], texts[6],
                    texts[7], texts[8], ref width, ref height, ref thickness, ref late, names, namesSize, ref namesLength,
                    tools, toolsSize, ref toolsLength));
                Calls.CheckChanged("GetOldSheetInfo", path, namesLength >= 0);
                if (namesLength < namesSize && toolsLength < toolsSize)
                {
                    string[] decoded = texts.Select(one => CodePage.Decode(one, encoding)).ToArray();
                    return new SheetInfo
                    {
                        MaterialName = decoded[0], MaterialGroup = decoded[1], MaterialType = decoded[2],
                        MaterialText3 = decoded[3], MaterialText4 = decoded[4], MaterialText5 = decoded[5],
                        MachinePath = decoded[6], SheetLabel = decoded[7], MaterialFile = decoded[8], Width = width,
                        Height = height, Thickness = thickness, LateValue = late,
                        PartNames = CodePage.Decode(names, encoding), Tools = CodePage.Decode(tools, encoding)
                    };
                }
                namesSize = Math.Max(namesSize, checked(namesLength + 1));
                toolsSize = Math.Max(toolsSize, checked(toolsLength + 1));
            }
        }

        public static SheetClamps Clamps(string path)
        {
            uint word = 0, count = 0;
            float first = 0, second = 0, third = 0, spacing = 0;
            var positions = new float[8];
            positions[0] = Calls.Unchanged;
            Calls.Check("GetOldClampInfo", path, OldTorvIOFunctions.GetOldClampInfo(
                Native.FileName(path), ref word, ref first, ref second, ref third, positions, ref count, ref spacing));
            Calls.CheckChanged("GetOldClampInfo", path, !Calls.IsUnchanged(positions[0]));
            return new SheetClamps
            {
                Word = word, Positions = positions, Count = count, Spacing = spacing,
                Bits = new[] { first, second, third }.Select(one => (uint)Native.BitsOf(one)).ToArray()
            };
        }

        public static void MaterialTexts(string path, out string text3, out string text5,
                                         string encoding = CodePage.Default)
        {
            byte[] third = Calls.UnchangedText(257), fifth = new byte[257];
            Calls.Check("GetOldVLMQMaterialName", path,
                        OldTorvIOFunctions.GetOldVLMQMaterialName(Native.FileName(path), third, fifth));
            Calls.CheckChanged("GetOldVLMQMaterialName", path, !Calls.IsUnchanged(third));
            text3 = CodePage.Decode(third, encoding);
            text5 = CodePage.Decode(fifth, encoding);
        }

        public static float Utilization(string path)
        {
            float utilization = Calls.Unchanged;
            Calls.Check("GetOldSkeletonUtil", path,
                        OldTorvIOFunctions.GetOldSkeletonUtil(Native.FileName(path), ref utilization));
            Calls.CheckChanged("GetOldSkeletonUtil", path, !Calls.IsUnchanged(utilization));
            return utilization;
        }

        public static int[] DriverFlags(string path)
        {
            var flags = new int[601];
            Calls.Check("GetSheetDriverFlags", path,
                        OldTorvIOFunctions.GetSheetDriverFlags(Native.FileName(path), flags));
            return flags;
        }

        public static uint SequenceSize(string path)
        {
            uint count = 0;
            Calls.Check("GetSheetSequenceListSize", path,
                        OldTorvIOFunctions.GetSheetSequenceListSize(Native.FileName(path), ref count));
            return count;
        }

        /// <summary>Fails if LoadOldSheetInformation returns a status other than 0.</summary>
        public static void Verify(string path)
        {
            lock (access)
            {
                Calls.Check("LoadOldSheetInformation", path,
                            OldTorvIOFunctions.LoadOldSheetInformation(Native.FileName(path)));
            }
        }

        /// <summary>This edit can ruin a sheet below version 152: read the header first.</summary>
        public static void ReplaceNcPath(string path, string ncPath, string encoding = CodePage.Default)
        {
            Calls.Check("ReplaceSheetMachineNcPath", path, OldTorvIOFunctions.ReplaceSheetMachineNcPath(
                Native.FileName(path), Calls.Required(ncPath, encoding, 255, "ncPath")));
        }

        /// <summary>This edit can ruin a sheet below version 152: read the header first.</summary>
        public static void ReplaceSkeleton(string path, string partPath)
        {
            Calls.Check("ReplaceSheetSknPatListWithPartPatList", path,
                        OldTorvIOFunctions.ReplaceSheetSknPatListWithPartPatList(Native.FileName(path),
                                                                                 Native.FileName(partPath)));
        }

        /// <summary>oldNumber: null means any number. This edit can ruin a sheet below version 152: read the header
        /// first.</summary>
        public static void UpdateWorkOrder(string path, string partName, string oldNumber, string newNumber,
                                           string encoding = CodePage.Default)
        {
            Calls.Check("UpdateSheetPartWONumber", path, OldTorvIOFunctions.UpdateSheetPartWONumber(
                Native.FileName(path), Calls.Required(partName, encoding, int.MaxValue, "partName"),
                CodePage.Encode(oldNumber, encoding), Calls.Required(newNumber, encoding, 255, "newNumber")));
        }
    }

    /// <summary>A sheet in memory. Dispose of it when it is not needed any more: it is large.</summary>
    public sealed class Sheet : IDisposable
    {
        static readonly string[] lists = { "partfulldosname_and_count", "partfulldosname_and_count_and_wonumber",
                                           "partname_and_count_and_wonumber", "part_details_01" };

        // The bytes of all files that were loaded: no text about their patterns needs more. Null if unknown.
        long? bytes = 0;

        /// <summary>A new sheet.</summary>
        public Sheet() : this(OldTorvIOFunctions.CreateSheetInfo())
        {
            if (Handle.IsInvalid) throw new OutOfMemoryException();
        }

        Sheet(SheetHandle handle) { Handle = handle; }

        public static Sheet Open(string path)
        {
            long size = SizeOf(path);
            SheetHandle handle;
            long status = OldTorvIOFunctions.GetOldSheetHandle(Native.FileName(path), out handle);
            var sheet = new Sheet(handle);
            if (status != 0) sheet.Dispose();
            Calls.Check("GetOldSheetHandle", path, status);
            sheet.Loaded(path, size, status);
            return sheet;
        }

        /// <summary>For the raw functions.</summary>
        public SheetHandle Handle { get; private set; }

        public void Load(string path)
        {
            long size = SizeOf(path), status = OldTorvIOFunctions.LoadOldSheet(Native.FileName(path), Handle);
            Loaded(path, size, status);
            Calls.Check("LoadOldSheet", path, status);
        }

        void Loaded(string path, long sizeBefore, long status)
        {
            long size = Math.Max(sizeBefore, SizeOf(path));
            // An empty file cannot be loaded: a loaded file of size 0 has an unknown size.
            bytes = size == 0 && status >= 0 ? null : bytes + size;
        }

        // The size of a file; pipes and devices have none.
        static long SizeOf(string path)
        {
            try
            {
                return new FileInfo(path).Length;
            }
            catch (IOException)
            {
                return 0;
            }
        }

        public void Save(string path, ushort version = 180)
        {
            Calls.Check("SaveOldSheet", path, OldTorvIOFunctions.SaveOldSheet(Native.FileName(path), Handle, version));
        }

        public string Value(string key, string encoding = CodePage.Default)
        {
            byte[] known = Calls.Required(key, CodePage.Default, int.MaxValue, "key");
            int parts = lists.Contains(key.ToLowerInvariant()) ? int.Parse(Value("part_count")) : 0;
            // An unknown key leaves the value unchanged.
            byte[] value = Calls.UnchangedText(checked(264 + parts * (260 + 256 + 256 + 3 * 64)));
            Calls.Check("GetOldSheetInfoByName", key, OldTorvIOFunctions.GetOldSheetInfoByName(Handle, known, value));
            if (Calls.IsUnchanged(value)) throw new ArgumentException("sheets have no value " + key);
            return CodePage.Decode(value, encoding);
        }

        public string PartGroupIds()
        {
            if (bytes == null)
            {
                throw new InvalidOperationException(
                    "the sheet is from a pipe or device: the size of the text is unknown");
            }
            // A pattern takes more bytes in its file than its id takes in the text.
            var value = new byte[checked((int)(bytes.Value + 1))];
            Calls.Check("GetOldSheetInfoPartGroupIDs", null,
                        OldTorvIOFunctions.GetOldSheetInfoPartGroupIDs(Handle, value));
            return CodePage.Decode(value);
        }

        public void Dispose() { Handle.Dispose(); }
    }
}
