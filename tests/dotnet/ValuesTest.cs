using System;
using System.Collections;
using System.Collections.Generic;
using System.Dynamic;
using System.Linq;
using Stencilor;

internal static class ValuesTest
{
    private sealed class Tea
    {
        public string Name { get; set; }
        public object Price { get; set; }
        public string this[int index] { get { return "not asked"; } }
        public string Hidden { set { } }
    }

    private sealed class Failing
    {
        public string Name { get { throw new InvalidOperationException("own"); } }
    }

    private static string Render(string text, object values, RenderOptions options = null)
    {
        using (var template = new Template(text))
        {
            return template.Render(values, options);
        }
    }

    public static void TextsAndNumbersBecomeTexts()
    {
        var cases = new Dictionary<object, string>
        {
            { "Zoë 日本 \U0001f375", "Zoë 日本 \U0001f375" },
            { "lone \ud83d", "lone \ufffd" },
            { "before\0after", "before" },
            { 'x', "x" },
            { new byte[] { 0x5a, 0xc3, 0xab, 0xff }, "Zë\ufffd" },
            { 0, "0" },
            { sbyte.MinValue, "-128" },
            { byte.MaxValue, "255" },
            { short.MinValue, "-32768" },
            { ushort.MaxValue, "65535" },
            { uint.MaxValue, "4294967295" },
            { long.MinValue, "-9223372036854775808" },
            { ulong.MaxValue, "18446744073709551615" },
            { 4.0, "4" },
            { 0.1 + 0.2, "0.30000000000000004" },
            { 1e21, "1e+21" },
            { 1e-7, "1e-7" },
            { 0.1f, "0.1" },
            { 4.50m, "4.50" },
        };
        foreach (KeyValuePair<object, string> pair in cases)
        {
            Check.Equal(pair.Value, Render("{{ v }}", new { v = pair.Key }));
        }
    }

    public static void NumbersDoNotDependOnTheCulture()
    {
        System.Globalization.CultureInfo before = System.Threading.Thread.CurrentThread.CurrentCulture;
        System.Threading.Thread.CurrentThread.CurrentCulture = new System.Globalization.CultureInfo("de-DE");
        Check.Equal("1.5 2.5 0.1", Render("{{ a }} {{ b }} {{ c }}", new { a = 1.5, b = 2.5m, c = 0.1f }));
        System.Threading.Thread.CurrentThread.CurrentCulture = before;
    }

    public static void DictionariesAndObjectsHaveMembers()
    {
        IDictionary<string, object> expando = new ExpandoObject();
        expando["Name"] = "Tea";
        expando["Price"] = 4.5;
        var cases = new object[]
        {
            new { Name = "Tea", Price = 4.5 },
            new Tea { Name = "Tea", Price = 4.5 },
            new Dictionary<string, object> { { "Name", "Tea" }, { "Price", 4.5 } },
            new SortedList { { "Name", "Tea" }, { "Price", 4.5 } },
            new Dictionary<string, string> { { "Name", "Tea" }, { "Price", "4.5" } },
            new Dictionary<string, string> { { "Name", "Tea" }, { "Price", "4.5" } }.Where(pair => true),
            expando,
        };
        foreach (object each in cases)
        {
            Check.Equal("Tea 4.5", Render("{{ Name }} {{ Price }}", each));
            Check.Equal("Tea 4.5", Render("{{ v.Name }} {{ v.Price }}", new { v = each }));
        }
    }

    public static void EnumerablesBecomeLists()
    {
        var cases = new object[]
        {
            new object[] { 1, "b", true },
            new ArrayList { 1, "b", true },
            new[] { "1", "b", null },
            Enumerable.Range(0, 3).Select(i => i == 0 ? "1" : i == 1 ? "b" : null),
        };
        foreach (object each in cases)
        {
            Check.Equal("[1][b][]", Render("{% for e in v %}[{{ e.value }}]{% endfor %}", new { v = each }));
        }
    }

    public static void BooleansAreTestedAndNullIsMissing()
    {
        const string text = "{% if yes %}yes{% endif %}{% if no %}{% else %}no{% endif %}{{ none }}{{ nullable }}";
        using (var template = new Template(text))
        {
            RenderResult result = template.RenderResult(
                new { yes = true, no = false, none = (string)null, nullable = (int?)3 });
            Check.Equal("yesno3", result.Text);
            Check.Equal("none", result.Messages.Single().Name);
        }
    }

    public static void RawTextsAreNotEscaped()
    {
        Check.Equal("&lt;i&gt;<b>", Render("{{ a }}{{ b }}", new { a = "<i>", b = new Raw("<b>") },
                                           new RenderOptions { Escape = Escape.Html }));
    }

    public static void OtherValuesAreRejectedWithTheirPath()
    {
        var endless = new ArrayList();
        endless.Add(endless);
        var cases = new Dictionary<string, object>
        {
            { "a: System.DateTime cannot be", new { a = DateTime.Now } },
            { "a: System.DayOfWeek cannot be", new { a = DayOfWeek.Friday } },
            { "items[2].Price: System.Uri cannot be", new { items = new object[] { 1, 2, new Tea { Price = new Uri("http://x") } } } },
            { "a.b: NaN is not a finite number", new { a = new { b = double.NaN } } },
            { "a[0]: Infinity is not a finite number", new { a = new[] { float.PositiveInfinity } } },
            { "a: has a key of type System.Int32", new { a = new Hashtable { { 1, 2 } } } },
            { "a.$boolean: must be true or false", new { a = new Hashtable { { "$boolean", 1 } } } },
            { "nests deeper than 512 levels", new { a = endless } },
            { "The values are a System.String", "text" },
            { "The values are a System.Int32[]", new int[0] },
        };
        foreach (KeyValuePair<string, object> pair in cases)
        {
            Check.Throws<ArgumentException>(() => new Context(pair.Value), pair.Key);
        }
        Check.Throws<ArgumentNullException>(() => new Context(null));
        Check.Throws<InvalidOperationException>(() => new Context(new Failing()), "own");
    }

    public static void AContextIsRenderedManyTimes()
    {
        using (var context = new Context(new { v = new[] { "a", "b" } }, positions: true))
        {
            for (int count = 0; count < 2; ++count)
            {
                Check.Equal("1a2b", Render("{% for e in v %}{{ e.index }}{{ e.value }}{% endfor %}", context));
            }
        }
    }

    public static void DottedNamesThatTakeTooMuchMemoryAreRejected()
    {
        object deep = Enumerable.Range(0, 50).ToDictionary(number => number.ToString(), number => "");
        for (int level = 0; level < 100; ++level)
        {
            deep = new Dictionary<string, object> { { new string('x', 4000), deep } };
        }
        Check.Throws<ArgumentException>(() => new Context(deep), "512 MiB");
    }
}
