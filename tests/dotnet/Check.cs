using System;
using System.Linq;
using System.Reflection;

/// <summary>Runs the tests: the public static methods of the classes whose names end in "Test".</summary>
internal static class Check
{
    private static int failures;

    internal static void Equal(object expected, object actual, string name = "")
    {
        if (!Equals(expected, actual))
        {
            Fail(name + ": expected " + expected + ", was " + actual);
        }
    }

    internal static void Contains(string part, string text)
    {
        if (!text.Contains(part))
        {
            Fail("expected " + part + " in " + text);
        }
    }

    internal static T Throws<T>(Action action, string message = "") where T : Exception
    {
        try
        {
            action();
        }
        catch (T exception)
        {
            Contains(message, exception.Message);
            return exception;
        }
        Fail("expected " + typeof(T).Name + " for " + message);
        return null;
    }

    private static void Fail(string text)
    {
        ++failures;
        Console.WriteLine("  " + text);
    }

    private static int Main()
    {
        int count = 0;
        foreach (Type type in Assembly.GetExecutingAssembly().GetTypes().Where(t => t.Name.EndsWith("Test")))
        {
            foreach (MethodInfo test in type.GetMethods(BindingFlags.Public | BindingFlags.Static))
            {
                int before = failures;
                try
                {
                    test.Invoke(null, null);
                }
                catch (TargetInvocationException exception)
                {
                    string[] lines = exception.InnerException.ToString().Split('\n');
                    Fail(string.Join("\n", lines.Take(5)));
                }
                ++count;
                if (failures > before)
                {
                    Console.WriteLine("FAILED " + type.Name + "." + test.Name);
                }
            }
        }
        Console.WriteLine(count + " tests, " + failures + " failures");
        return failures == 0 && count > 0 ? 0 : 1;
    }
}
