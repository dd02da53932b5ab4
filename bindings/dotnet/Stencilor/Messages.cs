using System;
using System.Collections.Generic;

namespace Stencilor
{
    /// <summary>How a render ended. Later versions may add values.</summary>
    public enum RenderStatus
    {
        /// <summary>The text is complete.</summary>
        Complete = 0,
        /// <summary>The step limit was reached.</summary>
        StepLimit = 5,
        /// <summary>The output size limit was reached.</summary>
        OutputLimit = 6,
        /// <summary>The template size limit was reached.</summary>
        TemplateLimit = 7,
        /// <summary>The include depth limit was reached.</summary>
        DepthLimit = 8
    }

    /// <summary>What a message is about. Later versions may add values.</summary>
    public enum MessageKind
    {
        /// <summary>A substitution's name is not in scope.</summary>
        ValueNotFound = 1,
        /// <summary>It is in scope, but not a string.</summary>
        ValueNotText = 2,
        /// <summary>A condition's name is not in scope.</summary>
        BooleanNotFound = 3,
        /// <summary>It is in scope, but not a boolean.</summary>
        NotBoolean = 4,
        /// <summary>The name of a loop's list is not in scope.</summary>
        ListNotFound = 5,
        /// <summary>It is in scope, but not a list.</summary>
        NotList = 6,
        /// <summary>There is no template at the path.</summary>
        TemplateNotFound = 7,
        /// <summary>There is one, but it cannot be read.</summary>
        TemplateUnreadable = 8,
        /// <summary>The template is not well formed.</summary>
        TemplateRejected = 9,
        /// <summary>Ended the render, as do the following.</summary>
        StepLimit = 10,
        /// <summary>See <see cref="RenderStatus.OutputLimit"/>.</summary>
        OutputLimit = 11,
        /// <summary>See <see cref="RenderStatus.TemplateLimit"/>.</summary>
        TemplateLimit = 12,
        /// <summary>See <see cref="RenderStatus.DepthLimit"/>.</summary>
        DepthLimit = 13
    }

    /// <summary>A location in a template. Lines and columns start at 1; columns count code
    /// points.</summary>
    public struct Place
    {
        internal Place(string templateName, UIntPtr line, UIntPtr column)
        {
            TemplateName = templateName;
            Line = checked((int)line);
            Column = checked((int)column);
        }

        /// <summary>The name of the template.</summary>
        public string TemplateName { get; }
        /// <summary>The line.</summary>
        public int Line { get; }
        /// <summary>The column.</summary>
        public int Column { get; }

        /// <summary>The location as TEMPLATE:LINE:COLUMN.</summary>
        public override string ToString()
        {
            return (TemplateName.Length == 0 ? "<template>" : TemplateName) + ":" + Line + ":" + Column;
        }
    }

    /// <summary>Something that could not be rendered, or the reason that a render ended.</summary>
    public sealed class Message
    {
        internal Message(IntPtr message)
        {
            Kind = (MessageKind)Native.stencilor_message_kind(message);
            Text = Native.Text(Native.stencilor_message_text(message, out UIntPtr size), size);
            Name = Native.Text(Native.stencilor_message_name(message, out size), size);
            Place = new Place(
                Native.Text(Native.stencilor_message_template_name(message, out size), size),
                Native.stencilor_message_line(message), Native.stencilor_message_column(message));
            var sites = new Place[(int)Native.stencilor_message_include_count(message)];
            for (int index = 0; index < sites.Length; ++index)
            {
                var at = (UIntPtr)index;
                sites[index] = new Place(
                    Native.Text(Native.stencilor_message_include_template_name(message, at, out size), size),
                    Native.stencilor_message_include_line(message, at),
                    Native.stencilor_message_include_column(message, at));
            }
            IncludedFrom = sites;
        }

        /// <summary>What the message is about.</summary>
        public MessageKind Kind { get; }
        /// <summary>The message in English, without its location.</summary>
        public string Text { get; }
        /// <summary>The name or path in the tag; empty if there is none.</summary>
        public string Name { get; }
        /// <summary>The location.</summary>
        public Place Place { get; }
        /// <summary>The include tags that led to the location, innermost first.</summary>
        public IReadOnlyList<Place> IncludedFrom { get; }

        /// <summary>The location and the message.</summary>
        public override string ToString()
        {
            return Place + ": " + Text;
        }
    }

    /// <summary>What a render used.</summary>
    public sealed class Usage
    {
        internal Usage(ResultHandle result)
        {
            Steps = Native.stencilor_result_usage(result, 0);
            OutputBytes = Native.stencilor_result_usage(result, 1);
            TemplateBytes = Native.stencilor_result_usage(result, 2);
            IncludeDepth = Native.stencilor_result_usage(result, 3);
            Messages = Native.stencilor_result_usage(result, 4);
        }

        /// <summary>Nodes visited, iterations, and every 64 names looked up.</summary>
        public ulong Steps { get; }
        /// <summary>The bytes of the text as UTF-8.</summary>
        public ulong OutputBytes { get; }
        /// <summary>The bytes of included templates, each path counted once.</summary>
        public ulong TemplateBytes { get; }
        /// <summary>The deepest nesting of includes.</summary>
        public ulong IncludeDepth { get; }
        /// <summary>The messages, including those that were not kept.</summary>
        public ulong Messages { get; }
    }

    /// <summary>What a render produced.</summary>
    public sealed class RenderResult
    {
        internal RenderResult(int status, ResultHandle result)
        {
            Status = (RenderStatus)status;
            Text = Native.Text(Native.stencilor_result_text(result, out UIntPtr size), size);
            var messages = new Message[checked((int)Native.stencilor_result_message_count(result))];
            for (int index = 0; index < messages.Length; ++index)
            {
                messages[index] = new Message(Native.stencilor_result_message(result, (UIntPtr)index));
            }
            Messages = messages;
            Usage = new Usage(result);
            GC.KeepAlive(result);
        }

        /// <summary>How the render ended.</summary>
        public RenderStatus Status { get; }
        /// <summary>The text; empty unless the render is complete.</summary>
        public string Text { get; }
        /// <summary>What could not be rendered, in the order of the text.</summary>
        public IReadOnlyList<Message> Messages { get; }
        /// <summary>What the render used.</summary>
        public Usage Usage { get; }
    }

    /// <summary>The base of all exceptions caused by templates.</summary>
    public class TemplateException : Exception
    {
        internal TemplateException(string message) : base(message) { }
    }

    /// <summary>A template is not well formed.</summary>
    public sealed class TemplateSyntaxException : TemplateException
    {
        internal TemplateSyntaxException(Message fault) : base(fault.ToString())
        {
            Fault = fault;
        }

        /// <summary>What is wrong.</summary>
        public Message Fault { get; }
        /// <summary>The line of the fault, from 1.</summary>
        public int Line { get { return Fault.Place.Line; } }
        /// <summary>The column of the fault in code points, from 1.</summary>
        public int Column { get { return Fault.Place.Column; } }
    }

    /// <summary>A source has no template at a path, or cannot read it.</summary>
    public sealed class TemplateNotFoundException : TemplateException
    {
        internal TemplateNotFoundException(string path, bool exists)
            : base(exists ? "The template \"" + path + "\" cannot be read."
                          : "There is no template \"" + path + "\".")
        {
            Path = path;
        }

        /// <summary>The path.</summary>
        public string Path { get; }
    }

    /// <summary>A render reached a limit, or a strict render produced messages.</summary>
    public sealed class RenderException : TemplateException
    {
        internal RenderException(RenderResult result) : base(string.Join("\n", result.Messages))
        {
            Result = result;
        }

        /// <summary>What the render produced.</summary>
        public RenderResult Result { get; }
        /// <summary>How the render ended: complete if it was strict and has messages.</summary>
        public RenderStatus Status { get { return Result.Status; } }
    }
}
