using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Threading;
using Stencilor;

internal static class TemplateTest
{
    private static readonly Dictionary<string, string> texts = new Dictionary<string, string>
    {
        { "page", "Dear {{ name }}{% include \"dir/end\" %}" }, { "dir/end", "!" }, { "bad", "{{ name" },
    };

    private static void WithEachSource(Action<TemplateSource> action)
    {
        string folder = Path.Combine(Path.GetTempPath(), Guid.NewGuid().ToString());
        foreach (KeyValuePair<string, string> pair in texts)
        {
            string file = Path.Combine(folder, pair.Key);
            Directory.CreateDirectory(Path.GetDirectoryName(file));
            File.WriteAllText(file, pair.Value);
        }
        try
        {
            using (TemplateSource files = TemplateSource.FromFolder(folder))
            using (TemplateSource memory = TemplateSource.FromTexts(texts))
            using (TemplateSource function = TemplateSource.FromFunction(
                       path => texts.TryGetValue(path, out string text) ? text : null))
            {
                action(files);
                action(memory);
                action(function);
            }
        }
        finally
        {
            Directory.Delete(folder, true);
        }
    }

    public static void SourcesFindTemplates()
    {
        WithEachSource(source =>
        {
            var options = new RenderOptions { Source = source };
            using (Template page = source.GetTemplate("page"))
            {
                Check.Equal("page", page.Name);
                Check.Equal("Dear Zoë!", page.Render(new { name = "Zoë" }, options));
                Check.Contains("\"name\"", page.Names(source));
            }
            Check.Equal("gone", Check.Throws<TemplateNotFoundException>(
                () => source.GetTemplate("gone"), "There is no template \"gone\".").Path);
            Check.Throws<TemplateSyntaxException>(() => source.GetTemplate("bad"), "bad:1:8: ");
        });
        Check.Throws<DirectoryNotFoundException>(() => TemplateSource.FromFolder("/gone/nowhere"), "/gone/nowhere");
    }

    public static void MalformedTemplatesThrowErrorsWithLocations()
    {
        TemplateSyntaxException exception = Check.Throws<TemplateSyntaxException>(
            () => new Template("é\né {{ name", "page.html"), "page.html:2:10: ");
        Check.Equal(2, exception.Line);
        Check.Equal(10, exception.Column);
        Check.Equal("page.html", exception.Fault.Place.TemplateName);
        Check.Contains("expected \"}}\"", exception.Fault.Text);
    }

    public static void Escapes()
    {
        using (var template = new Template("{{ v }}"))
        {
            var values = new { v = "<\"'" };
            Check.Equal("<\"'", template.Render(values));
            Check.Equal("&lt;&quot;&#39;", template.Render(values, new RenderOptions { Escape = Escape.Html }));
            Check.Equal("\\u003c\\\"'", template.Render(values, new RenderOptions { Escape = Escape.Json }));
            Check.Throws<ArgumentOutOfRangeException>(
                () => template.Render(values, new RenderOptions { Escape = (Escape)9 }));
        }
    }

    public static void ResultsHaveMessagesWithLocations()
    {
        using (TemplateSource source = TemplateSource.FromTexts(
                   new Dictionary<string, string> { { "part", "\n{{ gone }}" } }))
        using (var page = new Template("{{ a }}{% include \"part\" %}", "page"))
        {
            RenderResult result = page.RenderResult(new { a = new int[0] }, new RenderOptions { Source = source });
            Check.Equal("\n", result.Text);
            Check.Equal(RenderStatus.Complete, result.Status);
            Check.Equal(2, result.Messages.Count);
            Check.Equal(MessageKind.ValueNotText, result.Messages[0].Kind);
            Message second = result.Messages[1];
            Check.Equal("part:2:4: there is no value named \"gone\"", second.ToString());
            Check.Equal("page:1:20", second.IncludedFrom.Single().ToString());
            Check.Equal(4ul, result.Usage.Steps);
            Check.Equal(11ul, result.Usage.TemplateBytes);
            Check.Equal(1ul, result.Usage.OutputBytes);
            Check.Equal(1ul, result.Usage.IncludeDepth);
            Check.Equal(2ul, result.Usage.Messages);
        }
    }

    public static void LimitsEndARender()
    {
        var cases = new Dictionary<RenderStatus, Limits>
        {
            { RenderStatus.StepLimit, new Limits { Steps = 1 } },
            { RenderStatus.OutputLimit, new Limits { OutputBytes = 4 } },
            { RenderStatus.TemplateLimit, new Limits { TemplateBytes = 4 } },
            { RenderStatus.DepthLimit, new Limits { IncludeDepth = 1 } },
        };
        using (TemplateSource source = TemplateSource.FromTexts(new Dictionary<string, string>
               { { "a", "text {% include \"b\" %}" }, { "b", "more" } }))
        using (var page = new Template("{% include \"a\" %}", "page"))
        {
            Check.Equal("text more", page.Render(new { }, new RenderOptions { Source = source }));
            foreach (KeyValuePair<RenderStatus, Limits> pair in cases)
            {
                var options = new RenderOptions { Source = source, Limits = pair.Value };
                RenderException exception = Check.Throws<RenderException>(() => page.Render(new { }, options), ":1:");
                Check.Equal(pair.Key, exception.Status);
                Check.Equal("", exception.Result.Text);
            }
        }
    }

    public static void StrictRendersThrowTheirMessages()
    {
        using (var page = new Template("{{ a }}{{ b }}", "page"))
        {
            var strict = new RenderOptions { Strict = true };
            Check.Equal("12", page.Render(new { a = 1, b = 2 }, strict));
            Check.Equal("", page.Render(new { }));
            RenderException exception = Check.Throws<RenderException>(() => page.Render(new { }, strict), "page:1:11: ");
            Check.Equal(RenderStatus.Complete, exception.Status);
            Check.Equal(2, exception.Result.Messages.Count);
        }
    }

    private static string Fail(string path)
    {
        throw new InvalidOperationException("own");
    }

    public static void WhatAFunctionThrowsReachesTheCaller()
    {
        using (TemplateSource source = TemplateSource.FromFunction(Fail))
        using (var page = new Template("{% include \"part\" %}"))
        {
            foreach (Action action in new Action[]
                     {
                         () => page.Render(new { }, new RenderOptions { Source = source }),
                         () => page.Check(null, source),
                         () => page.Check(new { }, source),
                         () => page.Names(source),
                         () => source.GetTemplate("x"),
                     })
            {
                Check.Contains("Fail", Check.Throws<InvalidOperationException>(action, "own").StackTrace);
            }
            Check.Equal("", page.Render(new { }));
        }
    }

    public static void FunctionsMayRender()
    {
        using (var inner = new Template("made of {{ v }}"))
        using (TemplateSource source = TemplateSource.FromFunction(path => inner.Render(new { v = path })))
        using (var page = new Template("{% include \"part\" %}"))
        {
            Check.Equal("made of part", page.Render(new { }, new RenderOptions { Source = source }));
        }
    }

    public static void TheCheckSuggestsNames()
    {
        using (var page = new Template("{{ titel }}", "page"))
        {
            Check.Contains("did you mean \\\"title\\\"?", page.Check(new { title = "T" }));
            Check.Equal(false, page.Check().Contains("titel"));
        }
    }

    public static void ThreadsShareTemplatesAndSources()
    {
        using (TemplateSource source = TemplateSource.FromFunction(path => "{{ v }}"))
        using (var page = new Template("{% for e in list %}{% include \"part\" %}{% endfor %}"))
        {
            int right = 0;
            var threads = Enumerable.Range(0, 8).Select(number => new Thread(() =>
            {
                for (int turn = 0; turn < 50; ++turn)
                {
                    var values = new { list = Enumerable.Repeat(new { v = number }, 100) };
                    string text = page.Render(values, new RenderOptions { Source = source });
                    Interlocked.Add(ref right, text == new string((char)('0' + number), 100) ? 1 : 0);
                }
            })).ToList();
            threads.ForEach(thread => thread.Start());
            threads.ForEach(thread => thread.Join());
            Check.Equal(400, right);
        }
    }

    public static void UndisposedObjectsAreFreed()
    {
        for (int count = 0; count < 2000; ++count)
        {
            var page = new Template(new string('x', 100000));
            var context = new Context(new { v = new string('x', 100000) });
            TemplateSource source = TemplateSource.FromFunction(path => "text");
            page.RenderResult(context, new RenderOptions { Source = source });
        }
        GC.Collect();
        GC.WaitForPendingFinalizers();
        using (var process = System.Diagnostics.Process.GetCurrentProcess())
        {
            Check.Equal(true, process.WorkingSet64 < 300000000, "memory of " + process.WorkingSet64);
        }
    }

    public static void DisposedObjectsAreRejected()
    {
        var page = new Template("x");
        page.Dispose();
        page.Dispose();
        Check.Throws<ObjectDisposedException>(() => page.Render(new { }));
    }
}
