// The functions of torvio.h.
using System;
using System.Collections.Generic;
using System.Linq;
using System.Runtime.InteropServices;
using System.Text;
using OldTorvIO.Raw;

namespace OldTorvIO
{
    /// <summary>One file, by its path or in memory. A string is the path of a file.</summary>
    public sealed class TorvioFile
    {
        public TorvioFile(string path)
        {
            if (path == null) throw new ArgumentNullException("path");
            Path = path;
        }

        public TorvioFile(byte[] data)
        {
            if (data == null) throw new ArgumentNullException("data");
            Data = data;
        }

        public string Path { get; private set; }
        public byte[] Data { get; private set; }
        /// <summary>The name of the file in results; null for its path.</summary>
        public string Name { get; set; }
        /// <summary>The kind of the file, such as "sheet"; null if it is to be detected.</summary>
        public string Kind { get; set; }
        /// <summary>The code page of the texts in the file; null for "cp1252".</summary>
        public string Encoding { get; set; }

        public static implicit operator TorvioFile(string path) { return new TorvioFile(path); }
        public static implicit operator TorvioFile(byte[] data) { return new TorvioFile(data); }
    }

    /// <summary>A new file, and what became of the old one as JSON.</summary>
    public sealed class NewFile
    {
        public byte[] Data { get; internal set; }
        public string Report { get; internal set; }
    }

    /// <summary>The functions of torvio.h, which describes their results: texts, often JSON. Every status but 0 is a
    /// TorvioException, whose Result has what was read of a damaged file. All may run in any number of
    /// threads.</summary>
    public static class Torvio
    {
        public static string Version { get { return Native.TextAt(TorvioFunctions.torvio_version()); } }

        public static string Supported()
        {
            return Text("torvio_supported", null, (out BufferHandle result, out ErrorHandle error) =>
                TorvioFunctions.torvio_supported(out result, out error));
        }

        /// <summary>Returns a verdict for every file, even if it is damaged or cannot be read.</summary>
        public static string Check(TorvioFile file)
        {
            using (var input = new Input(file))
            {
                Function check = (out BufferHandle result, out ErrorHandle error) =>
                    TorvioFunctions.torvio_check(ref input.Native, 0, out result, out error);
                // A file that cannot be read has a verdict, too; wrong arguments and lack of memory have no result.
                return Encoding.UTF8.GetString(Call("torvio_check", file, check, null,
                                                    TorvioFunctions.TORVIO_NOT_READ));
            }
        }

        public static string Info(TorvioFile file)
        {
            using (var input = new Input(file))
            {
                return Text("torvio_info", file, (out BufferHandle result, out ErrorHandle error) =>
                    TorvioFunctions.torvio_info(ref input.Native, 0, out result, out error));
            }
        }

        public static string Json(TorvioFile file, bool pretty = false)
        {
            using (var input = new Input(file))
            {
                return Text("torvio_json", file, (out BufferHandle result, out ErrorHandle error) =>
                    TorvioFunctions.torvio_json(ref input.Native, pretty ? TorvioFunctions.TORVIO_PRETTY : 0,
                                                out result, out error));
            }
        }

        /// <summary>The bytes of a file. version 0: the version in the JSON.</summary>
        public static byte[] FromJson(TorvioFile file, int version = 0)
        {
            using (var input = new Input(file))
            {
                return Call("torvio_from_json", file, (out BufferHandle result, out ErrorHandle error) =>
                    TorvioFunctions.torvio_from_json(ref input.Native, version, 0, out result, out error));
            }
        }

        public static string Schema(string kind)
        {
            return Text("torvio_schema", null, (out BufferHandle result, out ErrorHandle error) =>
                TorvioFunctions.torvio_schema(Native.Utf8(kind), out result, out error));
        }

        /// <summary>find and range: null for all fields.</summary>
        public static string Map(TorvioFile file, string find = null, string range = null)
        {
            using (var input = new Input(file))
            {
                return Text("torvio_map", file, (out BufferHandle result, out ErrorHandle error) =>
                    TorvioFunctions.torvio_map(ref input.Native, Native.Utf8(find), Native.Utf8(range), 0, out result,
                                               out error));
            }
        }

        public static string MapPage(TorvioFile file)
        {
            using (var input = new Input(file))
            {
                return Text("torvio_map", file, (out BufferHandle result, out ErrorHandle error) =>
                    TorvioFunctions.torvio_map(ref input.Native, null, null, TorvioFunctions.TORVIO_PAGE, out result,
                                               out error));
            }
        }

        /// <summary>language: null for Markdown, "json", "kaitai".</summary>
        public static string Format(string name, string language = null)
        {
            return Text("torvio_format", null, (out BufferHandle result, out ErrorHandle error) =>
                TorvioFunctions.torvio_format(Native.Utf8(name), Native.Utf8(language), out result, out error));
        }

        public static string Draw(TorvioFile file)
        {
            using (var input = new Input(file))
            {
                return Text("torvio_draw", file, (out BufferHandle result, out ErrorHandle error) =>
                    TorvioFunctions.torvio_draw(ref input.Native, 0, out result, out error));
            }
        }

        public static string DrawPage(IEnumerable<TorvioFile> files, string title = null)
        {
            var inputs = new List<Input>();
            try
            {
                foreach (TorvioFile file in files) inputs.Add(new Input(file));
                NativeInput[] native = inputs.Select(one => one.Native).ToArray();
                return Text("torvio_draw_page", null, (out BufferHandle result, out ErrorHandle error) =>
                    TorvioFunctions.torvio_draw_page(native, new UIntPtr((uint)native.Length), Native.Utf8(title), 0,
                                                     out result, out error));
            }
            finally
            {
                foreach (Input one in inputs) one.Dispose();
            }
        }

        /// <summary>part: null for the complete files, or the part that is in both. common: leaves out members that one
        /// of the versions does not store.</summary>
        public static string Diff(TorvioFile a, TorvioFile b, out bool same, string part = null, double tolerance = 0,
                                  bool common = false)
        {
            using (var first = new Input(a))
            using (var second = new Input(b))
            {
                int equal = 0;
                string lines = Text("torvio_diff", null, (out BufferHandle result, out ErrorHandle error) =>
                    TorvioFunctions.torvio_diff(ref first.Native, ref second.Native, Native.Utf8(part), tolerance,
                                                common ? TorvioFunctions.TORVIO_COMMON : 0, ref equal, out result,
                                                out error));
                same = equal == 1;
                return lines;
            }
        }

        public static NewFile Convert(TorvioFile file, int version, bool allowLoss = false)
        {
            using (var input = new Input(file))
            {
                return Made("torvio_convert", file,
                    (out BufferHandle result, out BufferHandle report, out ErrorHandle error) =>
                        TorvioFunctions.torvio_convert(ref input.Native, version,
                                                       allowLoss ? TorvioFunctions.TORVIO_ALLOW_LOSS : 0, out result,
                                                       out report, out error));
            }
        }

        public static NewFile Recover(TorvioFile file)
        {
            using (var input = new Input(file))
            {
                return Made("torvio_recover", file,
                    (out BufferHandle result, out BufferHandle report, out ErrorHandle error) =>
                        TorvioFunctions.torvio_recover(ref input.Native, 0, out result, out report, out error));
            }
        }

        // ---- Calls ----

        delegate int Function(out BufferHandle result, out ErrorHandle error);
        delegate int ReportFunction(out BufferHandle result, out BufferHandle report, out ErrorHandle error);

        static string Text(string name, TorvioFile file, Function function)
        {
            return Encoding.UTF8.GetString(Call(name, file, function));
        }

        static NewFile Made(string name, TorvioFile file, ReportFunction function)
        {
            BufferHandle reported = null;
            try
            {
                byte[] data = Call(name, file, (out BufferHandle result, out ErrorHandle error) =>
                    function(out result, out reported, out error), () => TextOf(reported));
                return new NewFile { Data = data, Report = TextOf(reported) };
            }
            finally
            {
                if (reported != null) reported.Dispose();
            }
        }

        static string TextOf(BufferHandle buffer)
        {
            return buffer == null || buffer.IsInvalid ? null : Encoding.UTF8.GetString(buffer.ToArray());
        }

        static byte[] Call(string name, TorvioFile file, Function function, Func<string> report = null,
                           int highestAccepted = TorvioFunctions.TORVIO_OK)
        {
            BufferHandle result = null;
            ErrorHandle error = null;
            try
            {
                int status = function(out result, out error);
                byte[] bytes = result.IsInvalid ? null : result.ToArray();
                if (bytes != null && status <= highestAccepted) return bytes;
                string about = file == null ? null : file.Name ?? file.Path;
                if (error.IsInvalid) throw new TorvioException(name, about, "memory ran out", status);
                NativeError why = error.Read();
                throw new TorvioException(name, about, Native.TextAt(why.message), status)
                {
                    Field = Native.TextAt(why.field),
                    Offset = why.offset == TorvioFunctions.TORVIO_NO_OFFSET ? (ulong?)null : why.offset,
                    Result = bytes == null ? null : Encoding.UTF8.GetString(bytes),
                    Report = report == null ? null : report()
                };
            }
            finally
            {
                if (result != null) result.Dispose();
                if (error != null) error.Dispose();
            }
        }

        // A torvio_input with memory that stays where it is.
        sealed class Input : IDisposable
        {
            internal NativeInput Native;
            readonly List<GCHandle> pinned = new List<GCHandle>();

            internal Input(TorvioFile file)
            {
                if (file == null) throw new ArgumentNullException("file");
                try
                {
                    Native.path = Pinned(OldTorvIO.Native.Utf8(file.Path));
                    if (file.Data != null)
                    {
                        // A file of no bytes needs an address, too.
                        Native.data = Pinned(file.Data.Length > 0 ? file.Data : new byte[1]);
                        Native.size = new UIntPtr((uint)file.Data.Length);
                    }
                    Native.name = Pinned(OldTorvIO.Native.Utf8(file.Name));
                    Native.kind = Pinned(OldTorvIO.Native.Utf8(file.Kind));
                    Native.encoding = Pinned(OldTorvIO.Native.Utf8(file.Encoding));
                }
                catch
                {
                    Dispose();
                    throw;
                }
            }

            IntPtr Pinned(byte[] bytes)
            {
                if (bytes == null) return IntPtr.Zero;
                GCHandle handle = GCHandle.Alloc(bytes, GCHandleType.Pinned);
                pinned.Add(handle);
                return handle.AddrOfPinnedObject();
            }

            public void Dispose()
            {
                foreach (GCHandle one in pinned) one.Free();
                pinned.Clear();
            }
        }
    }
}
