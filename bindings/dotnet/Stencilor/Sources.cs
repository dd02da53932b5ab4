using System;
using System.Collections.Generic;
using System.IO;
using System.Runtime.ExceptionServices;

namespace Stencilor
{
    /// <summary>Calls of library functions that may call back. What a callback throws is rethrown when the
    /// library has returned.</summary>
    internal static class Calls
    {
        [ThreadStatic]
        private static Exception kept;

        internal static int Guard(Action callback)
        {
            try
            {
                callback();
                return 0;
            }
            catch (Exception exception)
            {
                kept = exception;
                return 1;
            }
        }

        internal static void ThrowKept(int status)
        {
            if (status == Native.Stopped)
            {
                Exception exception = kept;
                kept = null;
                Rethrow(exception);
            }
        }

        /// <summary>Throws an exception again, and keeps its original stack trace.</summary>
        internal static void Rethrow(Exception exception)
        {
            ExceptionDispatchInfo.Capture(exception).Throw();
        }
    }

    /// <summary>Where included templates come from. Threads may share a source if its function allows
    /// that.</summary>
    public sealed class TemplateSource : IDisposable
    {
        /// <summary>A source without templates.</summary>
        internal static readonly TemplateSource Empty =
            FromTexts(new Dictionary<string, string>());

        private readonly Native.FindFunction find; // the library may call it for as long as the source exists

        private TemplateSource(SourceHandle handle, Native.FindFunction find = null)
        {
            Handle = handle;
            this.find = find;
        }

        internal SourceHandle Handle { get; }

        /// <summary>Creates a source from the files in a folder and its subfolders. Nothing outside it can be
        /// included. Files that change are read again.</summary>
        /// <exception cref="DirectoryNotFoundException">it is not an accessible folder</exception>
        public static TemplateSource FromFolder(string folder)
        {
            byte[] path = Native.Bytes(folder);
            int status = Native.stencilor_source_folder(path, Native.Size(path), out SourceHandle handle);
            if (status == Native.NotFound)
            {
                throw new DirectoryNotFoundException("There is no template folder \"" + folder + "\".");
            }
            Native.Check(status);
            return new TemplateSource(handle);
        }

        /// <summary>Creates a source from strings by path, which are copied.</summary>
        public static TemplateSource FromTexts(IEnumerable<KeyValuePair<string, string>> texts)
        {
            Native.Check(Native.stencilor_source_memory(out SourceHandle handle));
            foreach (KeyValuePair<string, string> pair in texts)
            {
                byte[] path = Native.Bytes(pair.Key), text = Native.Bytes(pair.Value);
                Native.Check(Native.stencilor_source_add(handle, path, Native.Size(path), text,
                                                         Native.Size(text)));
            }
            return new TemplateSource(handle);
        }

        /// <summary>Creates a source from a function that returns the text at a path, or null if there is
        /// none. Its exceptions reach the caller of the render.</summary>
        public static TemplateSource FromFunction(Func<string, string> function)
        {
            Native.FindFunction find = (payload, path, size, request) => Calls.Guard(() =>
            {
                string text = function(Native.Text(path, size));
                if (text != null)
                {
                    byte[] bytes = Native.Bytes(text);
                    Native.stencilor_request_set_text(request, bytes, Native.Size(bytes));
                }
            });
            Native.Check(Native.stencilor_source_callback(find, IntPtr.Zero, out SourceHandle handle));
            return new TemplateSource(handle, find);
        }

        /// <summary>Finds a template.</summary>
        /// <param name="path">the path, as written in include tags</param>
        /// <exception cref="TemplateNotFoundException">there is none, or it cannot be read</exception>
        /// <exception cref="TemplateSyntaxException">it is not well formed</exception>
        public Template GetTemplate(string path)
        {
            byte[] bytes = Native.Bytes(path);
            int status = Native.stencilor_source_find(Handle, bytes, Native.Size(bytes),
                                                      out TemplateHandle found);
            KeepFunction();
            Calls.ThrowKept(status);
            if (status == Native.NotFound || status == Native.Unreadable)
            {
                throw new TemplateNotFoundException(path, status == Native.Unreadable);
            }
            return new Template(status, found);
        }

        /// <summary>Keeps the function alive until here, because the library may call it.</summary>
        internal void KeepFunction()
        {
            GC.KeepAlive(find);
        }

        /// <summary>Frees the source. Renders that use it must have ended.</summary>
        public void Dispose()
        {
            Handle.Dispose();
        }
    }
}
