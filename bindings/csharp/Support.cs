// Handles, texts and errors: what the classes over both libraries share.
using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;
using System.Text;
using OldTorvIO.Raw;

namespace OldTorvIO
{
    /// <summary>A function has returned a status other than 0.</summary>
    public class TorvioException : Exception
    {
        internal TorvioException(string function, string file, string message, long status)
            : base(string.IsNullOrEmpty(file) ? message : file + ": " + message)
        {
            Function = function;
            Status = status;
            Field = "";
        }

        /// <summary>The name of the function in its header, which lists the statuses.</summary>
        public string Function { get; private set; }
        public long Status { get; private set; }
        /// <summary>Where a damaged file breaks, in bytes from its start; null if that is unknown.</summary>
        public ulong? Offset { get; internal set; }
        /// <summary>The field of the file that is damaged; empty if there is none.</summary>
        public string Field { get; internal set; }
        /// <summary>What was read of a damaged file: what the function would have returned. May be null.</summary>
        public string Result { get; internal set; }
        /// <summary>What would be lost, if a conversion is refused. May be null.</summary>
        public string Report { get; internal set; }
    }

    /// <summary>Texts of files are bytes of a code page.</summary>
    public static class CodePage
    {
        public const string Default = "cp1252";

        static readonly Dictionary<char, byte>[] bytes = new Dictionary<char, byte>[CodePageTables.Names.Length];

        static int IndexOf(string name)
        {
            int index = Array.IndexOf(CodePageTables.Names, name);
            if (index < 0)
            {
                throw new ArgumentException("there is no code page " + name + ", only "
                                            + string.Join(", ", CodePageTables.Names));
            }
            lock (bytes)
            {
                if (bytes[index] == null)
                {
                    var made = new Dictionary<char, byte>();
                    for (int i = 0; i < 128; ++i) made.Add(CodePageTables.Characters[index][i], (byte)(i + 0x80));
                    bytes[index] = made;
                }
            }
            return index;
        }

        /// <summary>The text as bytes that end with a zero; null stays null.</summary>
        public static byte[] Encode(string text, string name = Default)
        {
            return Encode(text, name, int.MaxValue, "the text");
        }

        // More than `most` bytes would end the process.
        internal static byte[] Encode(string text, string name, int most, string what)
        {
            int index = IndexOf(name);
            if (text == null) return null;
            if (text.Length > most)
            {
                throw new ArgumentException(string.Format("{0} must have at most {1} characters", what, most));
            }
            var encoded = new byte[text.Length + 1];
            for (int i = 0; i < text.Length; ++i)
            {
                char one = text[i];
                if (one == 0) throw new ArgumentException(what + " must not contain a NUL");
                if (one < 0x80) encoded[i] = (byte)one;
                else if (!bytes[index].TryGetValue(one, out encoded[i]))
                {
                    throw new ArgumentException(string.Format("{0}: the code page {1} has no U+{2:X4}", what, name,
                                                              (int)one));
                }
            }
            return encoded;
        }

        /// <summary>The bytes up to the first zero as a text.</summary>
        public static string Decode(byte[] text, string name = Default)
        {
            string characters = CodePageTables.Characters[IndexOf(name)];
            var decoded = new StringBuilder();
            foreach (byte one in text)
            {
                if (one == 0) break;
                decoded.Append(one < 0x80 ? (char)one : characters[one - 0x80]);
            }
            return decoded.ToString();
        }
    }

    static class Native
    {
        static readonly Encoding strictUtf8 = new UTF8Encoding(false, true);

        internal static byte[] Terminated(byte[] text)
        {
            if (Array.IndexOf(text, (byte)0) >= 0) throw new ArgumentException("a text must not contain a NUL");
            Array.Resize(ref text, text.Length + 1);
            return text;
        }

        internal static byte[] Utf8(string text)
        {
            return text == null ? null : Terminated(strictUtf8.GetBytes(text));
        }

        // The name of a file as the system has it: UTF-8, but on Windows in its code page.
        internal static byte[] FileName(string path, int most = int.MaxValue)
        {
            if (path == null) throw new ArgumentNullException("path");
            byte[] name;
            if (Environment.OSVersion.Platform == PlatformID.Win32NT)
            {
                Encoding system = Encoding.GetEncoding(0, EncoderFallback.ExceptionFallback,
                                                       DecoderFallback.ExceptionFallback);
                name = Terminated(system.GetBytes(path));
            }
            else
            {
                name = Utf8(path);
            }
            if (name.Length - 1 > most)
            {
                throw new ArgumentException(string.Format("the name of a file must have at most {0} bytes here", most));
            }
            return name;
        }

        internal static string TextAt(IntPtr address)
        {
            int length = 0;
            while (Marshal.ReadByte(address, length) != 0) ++length;
            var bytes = new byte[length];
            Marshal.Copy(address, bytes, 0, length);
            return Encoding.UTF8.GetString(bytes);
        }

        internal static int BitsOf(float number)
        {
            return BitConverter.ToInt32(BitConverter.GetBytes(number), 0);
        }
    }
}

namespace OldTorvIO.Raw
{
    /// <summary>An OldSheet.</summary>
    public sealed class SheetHandle : SafeHandle
    {
        SheetHandle() : base(IntPtr.Zero, true) { }
        public override bool IsInvalid { get { return handle == IntPtr.Zero; } }
        protected override bool ReleaseHandle()
        {
            OldTorvIOFunctions.FreeSheetHandle(handle);
            return true;
        }
    }

    /// <summary>A SheetPartList.</summary>
    public sealed class PartListHandle : SafeHandle
    {
        PartListHandle() : base(IntPtr.Zero, true) { }
        public override bool IsInvalid { get { return handle == IntPtr.Zero; } }
        protected override bool ReleaseHandle()
        {
            OldTorvIOFunctions.DeleteOldPartlistInfo(handle);
            return true;
        }
    }

    /// <summary>A torvio_buffer.</summary>
    public sealed class BufferHandle : SafeHandle
    {
        BufferHandle() : base(IntPtr.Zero, true) { }
        public override bool IsInvalid { get { return handle == IntPtr.Zero; } }
        protected override bool ReleaseHandle()
        {
            TorvioFunctions.torvio_free(handle);
            return true;
        }

        /// <summary>A copy of the bytes.</summary>
        public byte[] ToArray()
        {
            var buffer = (NativeBuffer)Marshal.PtrToStructure(handle, typeof(NativeBuffer));
            var bytes = new byte[checked((int)buffer.size.ToUInt64())];
            Marshal.Copy(buffer.data, bytes, 0, bytes.Length);
            return bytes;
        }
    }

    /// <summary>A torvio_error.</summary>
    public sealed class ErrorHandle : SafeHandle
    {
        ErrorHandle() : base(IntPtr.Zero, true) { }
        public override bool IsInvalid { get { return handle == IntPtr.Zero; } }
        protected override bool ReleaseHandle()
        {
            TorvioFunctions.torvio_free(handle);
            return true;
        }

        /// <summary>The members; their texts are valid as long as the handle is open.</summary>
        public NativeError Read()
        {
            return (NativeError)Marshal.PtrToStructure(handle, typeof(NativeError));
        }
    }
}
