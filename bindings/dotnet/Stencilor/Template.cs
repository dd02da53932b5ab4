using System;

namespace Stencilor
{
    /// <summary>How values are escaped.</summary>
    public enum Escape
    {
        /// <summary>They are not escaped.</summary>
        None = 0,
        /// <summary>For HTML text and quoted attributes.</summary>
        Html = 1,
        /// <summary>For the inside of JSON strings, also in HTML.</summary>
        Json = 2
    }

    /// <summary>The limits of a render. 0 means no limit, except that an include depth of 0 means
    /// 100.</summary>
    public sealed class Limits
    {
        /// <summary>Nodes visited, iterations, and every 64 names looked up.</summary>
        public ulong Steps { get; set; }
        /// <summary>The bytes of the text as UTF-8.</summary>
        public ulong OutputBytes { get; set; }
        /// <summary>The bytes of included templates, each path counted once.</summary>
        public ulong TemplateBytes { get; set; }
        /// <summary>Nested includes, at most 100.</summary>
        public ulong IncludeDepth { get; set; } = 100;
        /// <summary>Messages kept; further ones are only counted.</summary>
        public ulong Messages { get; set; } = 1000;
    }

    /// <summary>How to render. Concurrent renders may share options that do not change.</summary>
    public sealed class RenderOptions
    {
        /// <summary>How values are escaped.</summary>
        public Escape Escape { get; set; }
        /// <summary>Where included templates come from; null means no templates.</summary>
        public TemplateSource Source { get; set; }
        /// <summary>The limits of the render; null means the defaults.</summary>
        public Limits Limits { get; set; }
        /// <summary>Adds <c>index</c> (from 1), <c>first</c> and <c>last</c> to list elements. Ignored for a
        /// <see cref="Context"/>, which has its own setting.</summary>
        public bool Positions { get; set; }
        /// <summary><see cref="Template.Render"/> throws if there are messages.</summary>
        public bool Strict { get; set; }

        internal OptionsHandle MakeHandle()
        {
            Native.Check(Native.stencilor_options_create(out OptionsHandle made));
            Limits limits = Limits ?? new Limits();
            int status = Native.stencilor_options_set_escape(made, (int)Escape);
            if (status != Native.Ok)
            {
                made.Dispose();
                throw new ArgumentOutOfRangeException(nameof(Escape));
            }
            Native.stencilor_options_set_limit(made, 0, limits.Steps);
            Native.stencilor_options_set_limit(made, 1, limits.OutputBytes);
            Native.stencilor_options_set_limit(made, 2, limits.TemplateBytes);
            Native.stencilor_options_set_limit(made, 3, limits.IncludeDepth);
            Native.stencilor_options_set_limit(made, 4, limits.Messages);
            Native.stencilor_options_set_source(made, (Source ?? TemplateSource.Empty).Handle);
            return made;
        }
    }

    /// <summary>A template that is parsed once. It never changes, and threads may share it.</summary>
    public sealed class Template : IDisposable
    {
        private readonly TemplateHandle handle;

        /// <summary>Parses a template.</summary>
        /// <param name="text">the template</param>
        /// <param name="name">the name in messages</param>
        /// <exception cref="TemplateSyntaxException">it is not well formed</exception>
        public Template(string text, string name = "")
        {
            byte[] bytes = Native.Bytes(text), label = Native.Bytes(name);
            int status = Native.stencilor_template_parse(bytes, Native.Size(bytes), label, Native.Size(label),
                                                         out TemplateHandle made);
            handle = Accepted(status, made);
        }

        internal Template(int status, TemplateHandle made)
        {
            handle = Accepted(status, made);
        }

        private static TemplateHandle Accepted(int status, TemplateHandle made)
        {
            if (made.IsInvalid)
            {
                Native.Check(status);
            }
            IntPtr fault = Native.stencilor_template_fault(made);
            if (fault == IntPtr.Zero)
            {
                return made;
            }
            using (made)
            {
                throw new TemplateSyntaxException(new Message(fault));
            }
        }

        /// <summary>The name of the template in messages.</summary>
        public string Name
        {
            get
            {
                string name = Native.Text(Native.stencilor_template_name(handle, out UIntPtr size), size);
                GC.KeepAlive(handle);
                return name;
            }
        }

        /// <summary>Renders to a string.</summary>
        /// <param name="values">a <see cref="Context"/>, a dictionary, or an object with properties</param>
        /// <param name="options">how to render; null for the defaults</param>
        /// <exception cref="RenderException">a limit was reached, or the render is strict and there are
        /// messages</exception>
        /// <exception cref="ArgumentException">a value cannot be converted; names its path</exception>
        public string Render(object values, RenderOptions options = null)
        {
            RenderResult result = RenderResult(values, options);
            if (result.Status != RenderStatus.Complete ||
                options != null && options.Strict && result.Messages.Count > 0)
            {
                throw new RenderException(result);
            }
            return result.Text;
        }

        /// <summary>Like <see cref="Render"/>, but returns a string, a status and messages.</summary>
        public RenderResult RenderResult(object values, RenderOptions options = null)
        {
            options = options ?? new RenderOptions();
            return With(values, options.Positions, context => RenderResult(context, options));
        }

        private RenderResult RenderResult(Context context, RenderOptions options)
        {
            using (OptionsHandle made = options.MakeHandle())
            {
                int status = Native.stencilor_template_render(handle, context.Handle, made,
                                                              out ResultHandle result);
                (options.Source ?? TemplateSource.Empty).KeepFunction();
                using (result)
                {
                    Calls.ThrowKept(status);
                    if (result.IsInvalid)
                    {
                        Native.Check(status);
                    }
                    return new RenderResult(status, result);
                }
            }
        }

        /// <summary>Finds what is wrong with the template and everything that it includes.</summary>
        /// <param name="values">the values to look names up in; null to look up none</param>
        /// <param name="source">where included templates come from; null means no templates</param>
        /// <returns>the JSON document of <c>stencilor check --format json</c></returns>
        public string Check(object values = null, TemplateSource source = null)
        {
            source = source ?? TemplateSource.Empty;
            if (values != null)
            {
                return With(values, false, context => Analysed(
                    source, Native.stencilor_check(handle, source.Handle, context.Handle, out TextHandle found),
                    found));
            }
            int status = Native.stencilor_check(handle, source.Handle, IntPtr.Zero, out TextHandle json);
            return Analysed(source, status, json);
        }

        /// <summary>Lists the names that the template and everything that it includes look up.</summary>
        /// <param name="source">where included templates come from; null means no templates</param>
        /// <returns>the JSON document of <c>stencilor names --format json</c></returns>
        public string Names(TemplateSource source = null)
        {
            source = source ?? TemplateSource.Empty;
            int status = Native.stencilor_names(handle, source.Handle, out TextHandle json);
            return Analysed(source, status, json);
        }

        private static string Analysed(TemplateSource source, int status, TextHandle json)
        {
            source.KeepFunction();
            using (json)
            {
                Calls.ThrowKept(status);
                Native.Check(status);
                return Native.Text(Native.stencilor_text_data(json, out UIntPtr size), size);
            }
        }

        /// <summary>Calls a function with a context made from the values, unless they are one
        /// already.</summary>
        private static T With<T>(object values, bool positions, Func<Context, T> function)
        {
            if (values is Context given)
            {
                return function(given);
            }
            using (var made = new Context(values, positions))
            {
                return function(made);
            }
        }

        /// <summary>Frees the template. Renders of it must have ended.</summary>
        public void Dispose()
        {
            handle.Dispose();
        }
    }
}
