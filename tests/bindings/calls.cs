// Calls everything that bindings/csharp has: calls.exe FILES OUTPUT
using System;
using System.Globalization;
using System.IO;
using System.Linq;
using System.Text;
using OldTorvIO;
using OldTorvIO.Raw;

static class CallsTest
{
    static string files, output;

    static string InFiles(string name) { return Path.Combine(files, name); }
    static void Line(params object[] values)
    {
        Console.WriteLine(string.Join(" | ", values.Select(
            one => Convert.ToString(one, CultureInfo.InvariantCulture))));
    }
    static string Real(double value) { return value.ToString("F4", CultureInfo.InvariantCulture); }
    static string Reals(float[] values) { return string.Join(" ", values.Select(one => Real(one))); }
    static void Write(string name, string content)
    {
        File.WriteAllText(Path.Combine(output, name), content, new UTF8Encoding(false));
    }
    static void Write(string name, byte[] content) { File.WriteAllBytes(Path.Combine(output, name), content); }

    static void Status(string label, Action job)
    {
        try
        {
            job();
            Line(label, "no error");
        }
        catch (TorvioException error)
        {
            Line(label, error.Function, error.Status);
        }
    }

    static void Refused(string label, Action job)
    {
        try
        {
            job();
            Line(label, "accepted");
        }
        catch (ArgumentException)
        {
            Line(label, "refused");
        }
        catch (InvalidOperationException)
        {
            Line(label, "refused");
        }
    }

    static void Parts()
    {
        Refused("a shape before the first part", () => PartBuilder.Add(new NewShape(1, 1, 1)));
        PartBuilder.Start(24, 12.5f, 0.0625f, -1, "COVER", "CABINET", "STEEL", "first", "Ä€", null);
        Line("shapes", PartBuilder.Add(new NewShape(1, 1, 1, 0.5f, 1)));
        var shape = new NewShape(2, 1, 2)
        {
            Flags = 3, ItemWord1 = 16, ItemWord2 = 0.25f, PairA = 1, PairB = 2, PairC = 3, PairD = 4,
            ToolName = "corner punch", ItemShort1 = -1, ItemShort2 = 7, ItemWord3 = 0.5f, ItemWord4 = 0.75f
        };
        shape.SetBits(0, 0x3F000000);
        shape.SetBits(1, 7);
        Line("shapes", PartBuilder.Add(shape));
        Status("no such tool", () => PartBuilder.Add(new NewShape(1, 1, 2) { ToolName = "no such tool" }));
        Status("no such group", () => PartBuilder.AddGroup(1, 1, 0, "no such tool"));
        Line("shapes", PartBuilder.AddGroup(5, 6, 4, "Corner Punch"));
        Line("shapes", PartBuilder.AddToGroup(3, new NewShape(5.5f, 6.5f, 1, 0.5f)));
        Refused("a group that does not exist", () => PartBuilder.AddToGroup(9, new NewShape(1, 1, 1)));
        Refused("a long material", () => PartBuilder.Start(1, 1, 1, material: new string('x', 21)));
        Status("version 63", () => PartBuilder.Save(InFiles("calls.part"), 63));
        Status("no such folder", () => PartBuilder.Save(InFiles("no such folder/calls.part")));
        PartBuilder.Save(InFiles("calls.part"));
        Refused("a long path", () => PartBuilder.Save(new string('x', 260)));

        PartInfo info = PartFile.Info(InFiles("calls.part"));
        Line("part", info.MaterialType, Real(info.Width), Real(info.Height), Real(info.Thickness));
        foreach (string key in new[] { "angle", "Revision", "MATTYPE", "Thickness" })
        {
            Line(key, PartFile.Value(InFiles("calls.part"), key));
        }
        Status("an unknown key", () => PartFile.Value(InFiles("calls.part"), "colour"));
        Line("tools", PartFile.Tools(InFiles("calls.part")));
        Line("special tools", PartFile.SpecialTools(InFiles("calls.part")).Replace(files, ""));
        Line("special tools", PartFile.SpecialTools(InFiles("tooled.part")));
        Line("special tools", GroupPartFile.SpecialTools(InFiles("brackets.group")));
        using (var list = new PartList())
        {
            list.Load(InFiles("brackets.group"));
            Status("a list from a material", () => list.Load(InFiles("steel.mat")));
        }
    }

    static void Tools()
    {
        SpecialTool tool = SpecialToolFile.Open(InFiles("Corner Punch.spt"));
        Line("special tool", Real(tool.Orientation), Real(tool.SpecialValue), Reals(tool.Dimensions),
             tool.FirstValueCount, Reals(tool.FirstValues), tool.SecondValueCount, Reals(tool.SecondValues),
             Reals(tool.ExtraValues), tool.LateFlag);
        foreach (ToolShape shape in tool.Shapes)
        {
            Line("shape", shape.Type, Real(shape.X), Real(shape.Y), Reals(shape.Values));
        }
        foreach (InventoryTool one in ToolInventoryFile.Open(InFiles("shop.inv")))
        {
            Line("tool", one.Name, Reals(one.Dimensions), Real(one.Orientation), one.FirstValueCount,
                 Reals(one.FirstValues), one.SecondValueCount, Reals(one.SecondValues));
        }
        Status("no inventory", () => ToolInventoryFile.Open(InFiles("nothing")));
    }

    static void Machines()
    {
        Machine machine = MachineFile.Open(InFiles("punch.mch"));
        Line("machine", machine.Kind, machine.Version, Real(machine.SizeX), Real(machine.SizeY), machine.Text1,
             machine.Text2, machine.StationWord, machine.Extra1, machine.Extra2, machine.StationMode);
        foreach (Station one in machine.Stations)
        {
            Line("station", one.StationNumber, one.StationType, Real(one.Orientation), Real(one.RealF),
                 Real(one.StationValue), one.ValueCount, Reals(one.Values), Reals(one.Limits), one.ShapeCode,
                 Reals(one.Dimensions), Reals(one.Offsets), one.SpecialToolPath, Reals(one.PairValues), one.WordF);
        }
        MachineName name = MachineFile.Name(InFiles("punch.mch"));
        Line("name", name.DisplayName, name.Kind, name.Text2, name.SecondText, name.LateText);
        MachineSize size = MachineFile.Size(InFiles("punch.mch"));
        Line("size", Real(size.SizeX), Real(size.SizeY), size.ClampCount, size.BlockMode, Real(size.StationMinX),
             Real(size.StationMinY), Real(size.StationMaxX), Real(size.StationMaxY), Reals(size.Area));
        Status("a damaged machine", () => MachineFile.Open(InFiles("damaged.mch")));
        Status("its name", () => MachineFile.Name(InFiles("damaged.mch")));
        Status("its size", () => MachineFile.Size(InFiles("damaged.mch")));
    }

    static void Sheets()
    {
        string text3, text5;
        foreach (string name in new[] { "nest_180.sheet", "nest_80.sheet" })
        {
            string path = InFiles(name);
            SheetInfo info = SheetFile.Info(path);
            SheetClamps clamps = SheetFile.Clamps(path);
            Line("sheet", info.MaterialName, info.MaterialGroup, info.MaterialType, info.MaterialText3,
                 info.MaterialText4, info.MaterialText5, info.MachinePath, info.SheetLabel, info.MaterialFile,
                 Real(info.Width), Real(info.Height), Real(info.Thickness), Real(info.LateValue), info.PartNames, info.Tools);
            Line("clamps", clamps.Word, string.Join(" ", clamps.Bits), Reals(clamps.Positions), clamps.Count,
                 Real(clamps.Spacing));
            SheetFile.MaterialTexts(path, out text3, out text5);
            Line("texts", text3, text5);
            Line("utilization", Real(SheetFile.Utilization(path)));
            int[] flags = SheetFile.DriverFlags(path);
            Line("flags", flags.Length, flags[55], flags[101], flags[600]);
            Line("sequence", SheetFile.SequenceSize(path));
            SheetFile.Verify(path);
        }
        string damaged = InFiles("damaged.sheet");
        Status("info", () => SheetFile.Info(damaged));
        Status("clamps", () => SheetFile.Clamps(damaged));
        Status("materialTexts", () => SheetFile.MaterialTexts(damaged, out text3, out text5));
        Status("utilization", () => SheetFile.Utilization(damaged));
        Status("driverFlags", () => SheetFile.DriverFlags(damaged));
        Status("sequenceSize", () => SheetFile.SequenceSize(damaged));
        Status("verify", () => SheetFile.Verify(damaged));
        Status("no sheet", () => SheetFile.Verify(InFiles("nothing")));

        string copy = InFiles("cöpy.sheet");
        File.Copy(InFiles("nest_180.sheet"), copy, true);
        SheetFile.UpdateWorkOrder(copy, "BRACKET 01", "no such number", "WO-1");
        SheetFile.UpdateWorkOrder(copy, "BRACKET 02", "WO-7001", "WO-2");
        SheetFile.UpdateWorkOrder(copy, "BRACKET 03", null, "Prüfung");
        SheetFile.ReplaceNcPath(copy, @"D:\NC");
        using (Sheet sheet = Sheet.Open(copy))
        {
            foreach (string key in new[] { "Material_Group", "width", "height", "part_count",
                                           "partfulldosname_and_count",
                                           "partfulldosname_and_count_and_wonumber", "partname_and_count_and_wonumber",
                                           "PART_DETAILS_01", "sheet_mat_type", "sheet_thickness", "preSkeletonDosName",
                                           "totalSknPartCutArea", "sheet_utilization", "sheet_sequence_size" })
            {
                Line(key, sheet.Value(key));
            }
            Line("groups", sheet.PartGroupIds());
            Refused("an unknown key", () => sheet.Value("colour"));
        }
        SheetFile.ReplaceSkeleton(copy, InFiles("calls.part"));
        Status("no skeleton", () => SheetFile.ReplaceSkeleton(copy, InFiles("nothing")));

        using (var made = new Sheet())
        {
            Line("a new sheet", made.Value("width"), made.PartGroupIds());
            made.Save(InFiles("made.sheet"));
            made.Load(InFiles("made.sheet"));
            made.Load(copy);
            Line("parts", made.Value("part_count"), made.Value("totalSknPartCutArea"));
            Status("version 51", () => made.Save(InFiles("refused.sheet"), 51));
            Status("a sheet of a material", () => made.Load(InFiles("steel.mat")));
        }
    }

    static TorvioFile Named(string name, string called)
    {
        return new TorvioFile(InFiles(name)) { Name = called };
    }

    static void Companion()
    {
        var inMemory = new TorvioFile(File.ReadAllBytes(InFiles("nest_180.sheet")))
        {
            Name = "Träger", Kind = "sheet", Encoding = "cp437"
        };
        Write("version", Torvio.Version);
        Write("supported", Torvio.Supported());
        Write("check", Torvio.Check(InFiles("nest_180.sheet")));
        Write("check damaged", Torvio.Check(Named("damaged.sheet", "a")));
        Write("check nothing", Torvio.Check(Named("nothing", "a")));
        Write("check empty", Torvio.Check(new byte[0]));
        Write("info", Torvio.Info(inMemory));
        Write("json", Torvio.Json(inMemory));
        Write("json pretty", Torvio.Json(InFiles("calls.part"), true));
        byte[] macro = Encoding.UTF8.GetBytes(Torvio.Json(InFiles("tab.mac")));
        Write("from json", Torvio.FromJson(macro));
        Write("from json 180", Torvio.FromJson(macro, 180));
        Write("schema", Torvio.Schema("part"));
        Write("map", Torvio.Map(InFiles("nest_180.sheet"), "**.*Count", "0..20000"));
        Write("map page", Torvio.MapPage(InFiles("tab.mac")));
        Write("format", Torvio.Format("macro"));
        Write("format json", Torvio.Format("clamp-info", "json"));
        Write("draw", Torvio.Draw(inMemory));
        Write("page", Torvio.DrawPage(new[] { inMemory, InFiles("punch.mch") }, "<Seite>"));
        bool same, partSame;
        Write("diff", Torvio.Diff(InFiles("nest_112.sheet"), InFiles("nest_180.sheet"), out same));
        Write("diff part", Torvio.Diff(Named("nest_180.sheet", null), InDefaultEncoding(inMemory), out partSame,
                                       "BRACKET 02", 0.5, true));
        Line("same", same ? 1 : 0, partSame ? 1 : 0);
        NewFile converted = Torvio.Convert(InFiles("nest_180.sheet"), 112, true);
        Write("convert", converted.Data);
        Write("convert report", converted.Report);
        NewFile recovered = Torvio.Recover(InFiles("damaged.sheet"));
        Write("recover", recovered.Data);
        Write("recover report", recovered.Report);
        try
        {
            Torvio.Convert(InFiles("nest_180.sheet"), 112);
        }
        catch (TorvioException error)
        {
            Write("convert refused", error.Report);
            Line(error.Function, error.Status, error.Result == null ? "no result" : "a result");
        }
        try
        {
            Torvio.Map(InFiles("damaged.sheet"), "*");
        }
        catch (TorvioException error)
        {
            Write("map damaged", error.Result);
            Line(error.Function, error.Status, error.Offset, error.Field);
        }
        Status("a macro", () => Torvio.Draw(InFiles("tab.mac")));
        Status("a folder", () => Torvio.Info(files));
        Status("no JSON", () => Torvio.FromJson(Encoding.UTF8.GetBytes("{}")));
        Status("no kind", () => Torvio.Schema("plate"));
        Status("no file", () => Torvio.DrawPage(new TorvioFile[0]));
        Status("a flag", () => Torvio.Diff(InFiles("tab.mac"), InFiles("tab.mac"), out same, null, -1));
        // A number that signals: no computation with it may end the program.
        TorvioFile signals = File.ReadAllBytes(InFiles("signals.sheet"));
        signals.Name = "a";
        Write("signals", Torvio.Json(signals));
        Write("draw signals", Torvio.Draw(signals));
    }

    static TorvioFile InDefaultEncoding(TorvioFile file)
    {
        return new TorvioFile(file.Data) { Name = file.Name, Kind = file.Kind };
    }

    static void Texts()
    {
        foreach (string page in new[] { "cp1252", "cp1250", "cp1251", "cp1253", "cp1254", "cp437", "cp850", "latin1" })
        {
            byte[] bytes = Enumerable.Range(0, 256).Select(index => (byte)((index + 1) % 256)).ToArray();
            string text = CodePage.Decode(bytes, page);
            Write("page " + page, text);
            Line(page, CodePage.Encode(text, page).SequenceEqual(bytes) ? "comes back" : "is lost");
        }
        Refused("a character that is missing", () => PartFile.Value(InFiles("calls.part"), "я"));
        Refused("an unknown code page", () => CodePage.Encode("a", "cp9"));
        Refused("a NUL in a path", () => Torvio.Check("a\0b"));
        Refused("a NUL in a text", () => PartFile.Value(InFiles("calls.part"), "a\0b"));
    }

    // Functions for C++ records, which only their status shows here, and the second name of a function.
    static void RawFunctions()
    {
        byte[] path = Encoding.UTF8.GetBytes(InFiles("calls.part") + "\0");
        Line("raw", OldTorvIOFunctions.LoadOldPart(path, IntPtr.Zero),
             OldTorvIOFunctions.LoadOldSpecialTool(path, IntPtr.Zero),
             OldTorvIOFunctions.LoadOldToolInventory(path, IntPtr.Zero),
             OldTorvIOFunctions.LoadOldMacro(path, IntPtr.Zero), OldTorvIOFunctions.LoadOldMaterial(path, IntPtr.Zero),
             OldTorvIOFunctions.LoadOldMachine(path, IntPtr.Zero));
        SheetHandle sheet = OldTorvIOFunctions.CreateSheetInfo();
        OldTorvIOFunctions.DeleteSheetInfo(sheet.DangerousGetHandle());
        sheet.SetHandleAsInvalid();
    }

    static void Main(string[] arguments)
    {
        Console.OutputEncoding = new UTF8Encoding(false);
        files = arguments[0];
        output = arguments[1];
        Parts();
        Tools();
        Machines();
        Sheets();
        Companion();
        Texts();
        RawFunctions();
    }
}
