using System;
using System.Runtime.InteropServices;
using System.Text;
using Microsoft.Win32.SafeHandles;

namespace Stencilor
{
    /// <summary>A handle of the C library that frees itself.</summary>
    internal abstract class Handle : SafeHandleZeroOrMinusOneIsInvalid
    {
        private readonly Action<IntPtr> free;

        protected Handle(Action<IntPtr> free) : base(true)
        {
            this.free = free;
        }

        protected override bool ReleaseHandle()
        {
            free(handle);
            return true;
        }
    }

    internal sealed class ValueHandle : Handle
    {
        private ValueHandle() : base(Native.stencilor_value_free) { }
    }

    internal sealed class ContextHandle : Handle
    {
        private ContextHandle() : base(Native.stencilor_context_free) { }
    }

    internal sealed class TemplateHandle : Handle
    {
        private TemplateHandle() : base(Native.stencilor_template_free) { }
    }

    internal sealed class SourceHandle : Handle
    {
        private SourceHandle() : base(Native.stencilor_source_free) { }
    }

    internal sealed class OptionsHandle : Handle
    {
        private OptionsHandle() : base(Native.stencilor_options_free) { }
    }

    internal sealed class ResultHandle : Handle
    {
        private ResultHandle() : base(Native.stencilor_result_free) { }
    }

    internal sealed class TextHandle : Handle
    {
        private TextHandle() : base(Native.stencilor_text_free) { }
    }

    internal sealed class ErrorHandle : Handle
    {
        private ErrorHandle() : base(Native.stencilor_error_free) { }
    }

    /// <summary>The functions of the C library and their statuses.</summary>
    internal static class Native
    {
        private const string Library = "stencilor_c";
        private const CallingConvention C = CallingConvention.Cdecl;

        internal const int Ok = 0, Stopped = 1, NotFound = 3, Unreadable = 4, DepthLimit = 8,
                           OutOfMemory = 10;

        // Lone surrogates become U+FFFD, as malformed bytes do in the library.
        private static readonly UTF8Encoding utf8 = new UTF8Encoding(false, false);

        [UnmanagedFunctionPointer(C)]
        internal delegate int FindFunction(IntPtr payload, IntPtr path, UIntPtr size, IntPtr request);

        /// <summary>The bytes of a string, for functions that take bytes and a size.</summary>
        internal static byte[] Bytes(string text)
        {
            return utf8.GetBytes(text);
        }

        internal static UIntPtr Size(byte[] bytes)
        {
            return (UIntPtr)bytes.Length;
        }

        /// <summary>Copies a string that the library returned; its handle must still be alive.</summary>
        internal static string Text(IntPtr text, UIntPtr size)
        {
            var bytes = new byte[checked((int)size)];
            Marshal.Copy(text, bytes, 0, bytes.Length);
            return utf8.GetString(bytes);
        }

        /// <summary>Throws for a status that has no exception of its own.</summary>
        internal static void Check(int status)
        {
            if (status == OutOfMemory)
            {
                throw new OutOfMemoryException();
            }
            if (status != Ok)
            {
                throw new TemplateException(Marshal.PtrToStringAnsi(stencilor_status_text(status)));
            }
        }

        [DllImport(Library, CallingConvention = C)]
        internal static extern IntPtr stencilor_status_text(int status);
        [DllImport(Library, CallingConvention = C)]
        internal static extern IntPtr stencilor_version();

        [DllImport(Library, CallingConvention = C)]
        internal static extern IntPtr stencilor_error_text(ErrorHandle error, out UIntPtr size);
        [DllImport(Library, CallingConvention = C)]
        internal static extern void stencilor_error_free(IntPtr error);
        [DllImport(Library, CallingConvention = C)]
        internal static extern IntPtr stencilor_text_data(TextHandle text, out UIntPtr size);
        [DllImport(Library, CallingConvention = C)]
        internal static extern void stencilor_text_free(IntPtr text);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_value_null(out ValueHandle value);
        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_value_boolean(int isTrue, out ValueHandle value);
        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_value_text(byte[] text, UIntPtr size, out ValueHandle value);
        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_value_raw_text(byte[] text, UIntPtr size, out ValueHandle value);
        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_value_integer(long number, out ValueHandle value);
        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_value_double(double number, out ValueHandle value);
        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_value_list(out ValueHandle value);
        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_value_dictionary(out ValueHandle value);
        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_value_add(ValueHandle list, ValueHandle item);
        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_value_set(ValueHandle dictionary, byte[] key, UIntPtr keySize,
                                                       ValueHandle member);
        [DllImport(Library, CallingConvention = C)]
        internal static extern void stencilor_value_free(IntPtr value);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_context_create(ValueHandle value, int flags,
                                                            out ContextHandle context, out ErrorHandle error);
        [DllImport(Library, CallingConvention = C)]
        internal static extern void stencilor_context_free(IntPtr context);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_template_parse(byte[] text, UIntPtr size, byte[] name,
                                                            UIntPtr nameSize, out TemplateHandle parsed);
        [DllImport(Library, CallingConvention = C)]
        internal static extern IntPtr stencilor_template_name(TemplateHandle parsed, out UIntPtr size);
        [DllImport(Library, CallingConvention = C)]
        internal static extern IntPtr stencilor_template_fault(TemplateHandle parsed);
        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_template_render(TemplateHandle parsed, ContextHandle context,
                                                             OptionsHandle options, out ResultHandle result);
        [DllImport(Library, CallingConvention = C)]
        internal static extern void stencilor_template_free(IntPtr parsed);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_options_create(out OptionsHandle options);
        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_options_set_escape(OptionsHandle options, int kind);
        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_options_set_limit(OptionsHandle options, int limit, ulong value);
        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_options_set_source(OptionsHandle options, SourceHandle source);
        [DllImport(Library, CallingConvention = C)]
        internal static extern void stencilor_options_free(IntPtr options);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_source_memory(out SourceHandle source);
        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_source_add(SourceHandle source, byte[] path, UIntPtr pathSize,
                                                        byte[] text, UIntPtr size);
        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_source_folder(byte[] path, UIntPtr size, out SourceHandle source);
        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_source_callback(FindFunction find, IntPtr payload,
                                                             out SourceHandle source);
        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_source_find(SourceHandle source, byte[] path, UIntPtr size,
                                                         out TemplateHandle parsed);
        [DllImport(Library, CallingConvention = C)]
        internal static extern void stencilor_source_free(IntPtr source);
        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_request_set_text(IntPtr request, byte[] text, UIntPtr size);

        [DllImport(Library, CallingConvention = C)]
        internal static extern IntPtr stencilor_result_text(ResultHandle result, out UIntPtr size);
        [DllImport(Library, CallingConvention = C)]
        internal static extern ulong stencilor_result_usage(ResultHandle result, int limit);
        [DllImport(Library, CallingConvention = C)]
        internal static extern UIntPtr stencilor_result_message_count(ResultHandle result);
        [DllImport(Library, CallingConvention = C)]
        internal static extern IntPtr stencilor_result_message(ResultHandle result, UIntPtr index);
        [DllImport(Library, CallingConvention = C)]
        internal static extern void stencilor_result_free(IntPtr result);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_message_kind(IntPtr message);
        [DllImport(Library, CallingConvention = C)]
        internal static extern IntPtr stencilor_message_text(IntPtr message, out UIntPtr size);
        [DllImport(Library, CallingConvention = C)]
        internal static extern IntPtr stencilor_message_name(IntPtr message, out UIntPtr size);
        [DllImport(Library, CallingConvention = C)]
        internal static extern IntPtr stencilor_message_template_name(IntPtr message, out UIntPtr size);
        [DllImport(Library, CallingConvention = C)]
        internal static extern UIntPtr stencilor_message_line(IntPtr message);
        [DllImport(Library, CallingConvention = C)]
        internal static extern UIntPtr stencilor_message_column(IntPtr message);

        [DllImport(Library, CallingConvention = C)]
        internal static extern UIntPtr stencilor_message_include_count(IntPtr message);
        [DllImport(Library, CallingConvention = C)]
        internal static extern IntPtr stencilor_message_include_template_name(IntPtr message, UIntPtr index,
                                                                              out UIntPtr size);
        [DllImport(Library, CallingConvention = C)]
        internal static extern UIntPtr stencilor_message_include_line(IntPtr message, UIntPtr index);
        [DllImport(Library, CallingConvention = C)]
        internal static extern UIntPtr stencilor_message_include_column(IntPtr message, UIntPtr index);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_check(TemplateHandle parsed, SourceHandle source,
                                                   ContextHandle context, out TextHandle json);
        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_check(TemplateHandle parsed, SourceHandle source,
                                                   IntPtr noContext, out TextHandle json);
        [DllImport(Library, CallingConvention = C)]
        internal static extern int stencilor_names(TemplateHandle parsed, SourceHandle source,
                                                   out TextHandle json);
    }
}
