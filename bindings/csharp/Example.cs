// Four jobs on the files of a folder, and two files that cannot be read.
using System;
using System.Globalization;
using System.IO;
using System.Json;
using OldTorvIO;

static class Example
{
    static void AskParts(string path)
    {
        using (Sheet sheet = Sheet.Open(path))
        {
            Print("{0} x {1}, {2} parts", sheet.Value("width"), sheet.Value("height"), sheet.Value("part_count"));
            // Six texts for each part: path, width, height, quantity, work order and ";".
            string[] details = sheet.Value("part_details_01").Split('|');
            for (int i = 0; i + 5 < details.Length; i += 6)
            {
                Print("  {0} of {1}, {2} x {3}, for {4}", details[i + 3], details[i], details[i + 1], details[i + 2],
                      details[i + 4]);
            }
        }
    }

    static void WalkNest(string path)
    {
        JsonValue record = JsonValue.Parse(Torvio.Json(path))["record"];
        foreach (JsonValue part in (JsonArray)record["partList"]["parts"])
        {
            Print("{0}: {1} shapes", (string)part["partName"], part["shapes"]["shapes"].Count);
            foreach (JsonValue pattern in (JsonArray)part["patterns"])
            {
                Print("  {0} x {1} at {2:F4}, {3:F4}", (int)pattern["gridCount1"], (int)pattern["gridCount2"],
                      (double)pattern["originX"], (double)pattern["originY"]);
            }
        }
    }

    static void BuildPart(string path)
    {
        PartBuilder.Start(24, 12, 0.0625f, material: "STEEL", customText1: "Träger 7");
        PartBuilder.Add(new NewShape(6, 6, 1, 0.5f));
        PartBuilder.Add(new NewShape(18, 6, 1, 0.5f));
        PartBuilder.Save(path, 180);

        PartInfo info = PartFile.Info(path);
        Print("{0:F4} x {1:F4} x {2:F4}", info.Width, info.Height, info.Thickness);
        JsonValue record = JsonValue.Parse(Torvio.Json(path))["record"];
        JsonValue shapes = record["shapes"]["shapes"];
        Print("{0}: {1} shapes, the last at {2:F4}", (string)record["customText1"], shapes.Count,
              (double)shapes[1]["x"]);
    }

    static void ReadRecord(string path)
    {
        JsonValue file = JsonValue.Parse(Torvio.Json(path));
        JsonValue record = file["record"];
        Print("{0} of version {1}: {2}", (string)file["kind"], (int)file["version"], (string)record["name"]);
        foreach (JsonValue entry in (JsonArray)record["entryList"])
        {
            Print("  {0}: {1}", (int)entry["entryKey"], (string)entry["entryText"]);
        }
    }

    static void Report(Action job)
    {
        try
        {
            job();
        }
        catch (TorvioException error)
        {
            string place = error.Offset == null ? "" : string.Format(", at {0} in {1}", error.Offset, error.Field);
            Print("{0}: status {1}{2}", error.Function, error.Status, place);
            if (error.Result == null) return;
            JsonValue record = JsonValue.Parse(error.Result)["record"];
            Print("  {0} parts were read", record["partList"]["parts"].Count);
        }
    }

    static void Print(string format, params object[] values)
    {
        Console.WriteLine(string.Format(CultureInfo.InvariantCulture, format, values));
    }

    static void Main(string[] arguments)
    {
        Console.OutputEncoding = new System.Text.UTF8Encoding(false);
        Func<string, string> inFolder = name => Path.Combine(arguments[0], name);
        Print("Parts of a sheet");
        AskParts(inFolder("nest_180.sheet"));
        Print("A nest");
        WalkNest(inFolder("nest_180.sheet"));
        Print("A new part");
        BuildPart(inFolder("Träger.part"));
        Print("A material");
        ReadRecord(inFolder("steel.mat"));
        Print("A file that does not exist");
        Report(() => Torvio.Json(inFolder("nothing.sheet")));
        Report(() => PartFile.Info(inFolder("nothing.part")));
        Print("A damaged file");
        Report(() => Torvio.Json(inFolder("damaged.sheet")));
        Report(() => Sheet.Open(inFolder("damaged.sheet")).Dispose());
    }
}
