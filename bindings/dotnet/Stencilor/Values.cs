using System;
using System.Collections;
using System.Collections.Generic;
using System.Globalization;
using System.Linq;
using System.Reflection;

namespace Stencilor
{
    /// <summary>A string that is never escaped: for text known to be safe where it is inserted.</summary>
    public sealed class Raw
    {
        /// <summary>Marks a string as safe.</summary>
        public Raw(string text)
        {
            Text = text ?? throw new ArgumentNullException(nameof(text));
        }

        /// <summary>The text.</summary>
        public string Text { get; }

        /// <summary>The text.</summary>
        public override string ToString()
        {
            return Text;
        }
    }

    /// <summary>Converts objects to values of the library.</summary>
    internal sealed class ValueMaker
    {
        private const int Deepest = 512;

        // The path of the current value: "items", "[3]", ".Price".
        private readonly List<string> path = new List<string>();

        internal static ValueHandle MakeRoot(object values)
        {
            if (values == null)
            {
                throw new ArgumentNullException(nameof(values));
            }
            var maker = new ValueMaker();
            IEnumerable<KeyValuePair<string, object>> members = maker.MembersOf(values);
            if (members == null)
            {
                throw new ArgumentException("The values are a " + values.GetType() +
                                            ", not a dictionary or an object with properties.");
            }
            return maker.MakeDictionary(members);
        }

        private ValueHandle Make(object value)
        {
            ValueHandle made = MakeScalar(value);
            if (made != null)
            {
                return made;
            }
            if (path.Count >= Deepest)
            {
                throw Refusal("nests deeper than " + Deepest + " levels");
            }
            IEnumerable<KeyValuePair<string, object>> members = MembersOf(value);
            if (members != null)
            {
                return MakeDictionary(members);
            }
            if (value is IEnumerable items)
            {
                return MakeList(items);
            }
            throw Refusal(value.GetType() + " cannot be converted to a template value");
        }

        /// <summary>Converts an object that is neither a list nor a dictionary; returns null for
        /// those.</summary>
        private ValueHandle MakeScalar(object value)
        {
            if (value is string || value is char || value is ulong || value is decimal)
            {
                return MakeText(Convert.ToString(value, CultureInfo.InvariantCulture));
            }
            if (value is double || value is float)
            {
                return MakeNumber(value);
            }
            ValueHandle made;
            int status;
            if (value == null)
            {
                status = Native.stencilor_value_null(out made);
            }
            else if (value is bool)
            {
                status = Native.stencilor_value_boolean((bool)value ? 1 : 0, out made);
            }
            else if (value is Raw)
            {
                byte[] text = Native.Bytes(((Raw)value).Text);
                status = Native.stencilor_value_raw_text(text, Native.Size(text), out made);
            }
            else if (value is byte[])
            {
                var text = (byte[])value;
                status = Native.stencilor_value_text(text, Native.Size(text), out made);
            }
            else if (value is int || value is long || value is uint || value is short || value is ushort ||
                     value is byte || value is sbyte)
            {
                status = Native.stencilor_value_integer(
                    Convert.ToInt64(value, CultureInfo.InvariantCulture), out made);
            }
            else
            {
                return null;
            }
            Native.Check(status);
            return made;
        }

        private static ValueHandle MakeText(string text)
        {
            byte[] bytes = Native.Bytes(text);
            Native.Check(Native.stencilor_value_text(bytes, Native.Size(bytes), out ValueHandle made));
            return made;
        }

        private ValueHandle MakeNumber(object value)
        {
            double number = Convert.ToDouble(value, CultureInfo.InvariantCulture);
            if (double.IsNaN(number) || double.IsInfinity(number))
            {
                throw Refusal(number.ToString(CultureInfo.InvariantCulture) + " is not a finite number");
            }
            if (value is float)
            {
                // The shortest digits of a float differ from those of the equal double.
                number = double.Parse(((float)value).ToString("R", CultureInfo.InvariantCulture),
                                      CultureInfo.InvariantCulture);
            }
            Native.Check(Native.stencilor_value_double(number, out ValueHandle made));
            return made;
        }

        private ValueHandle MakeList(IEnumerable items)
        {
            Native.Check(Native.stencilor_value_list(out ValueHandle list));
            return Filled(list, () =>
            {
                int index = 0;
                foreach (object item in items)
                {
                    path.Add("[" + index++ + "]");
                    using (ValueHandle made = Make(item))
                    {
                        Native.Check(Native.stencilor_value_add(list, made));
                    }
                    path.RemoveAt(path.Count - 1);
                }
            });
        }

        private ValueHandle MakeDictionary(IEnumerable<KeyValuePair<string, object>> members)
        {
            Native.Check(Native.stencilor_value_dictionary(out ValueHandle dictionary));
            return Filled(dictionary, () =>
            {
                foreach (KeyValuePair<string, object> member in members)
                {
                    path.Add((path.Count == 0 ? "" : ".") + member.Key);
                    if (member.Key == "$boolean" && !(member.Value is bool))
                    {
                        throw Refusal("must be true or false");
                    }
                    byte[] key = Native.Bytes(member.Key);
                    using (ValueHandle made = Make(member.Value))
                    {
                        Native.Check(Native.stencilor_value_set(dictionary, key, Native.Size(key), made));
                    }
                    path.RemoveAt(path.Count - 1);
                }
            });
        }

        private static ValueHandle Filled(ValueHandle made, Action fill)
        {
            try
            {
                fill();
                return made;
            }
            catch
            {
                made.Dispose();
                throw;
            }
        }

        /// <summary>Returns the members of a dictionary or an object; null for anything else.</summary>
        private IEnumerable<KeyValuePair<string, object>> MembersOf(object value)
        {
            if (value is IEnumerable<KeyValuePair<string, object>> members)
            {
                return members;
            }
            if (value is IDictionary dictionary)
            {
                return EntriesOf(dictionary);
            }
            Type type = value.GetType();
            if (type.GetInterfaces().Any(IsPairs))
            {
                return PairsOf((IEnumerable)value);
            }
            return value is IEnumerable || IsOfSystem(type) || type.IsEnum ? null : PropertiesOf(value, type);
        }

        private IEnumerable<KeyValuePair<string, object>> EntriesOf(IDictionary dictionary)
        {
            IDictionaryEnumerator entries = dictionary.GetEnumerator();
            while (entries.MoveNext())
            {
                string key = entries.Key as string ??
                             throw Refusal("has a key of type " + entries.Key.GetType() +
                                           "; keys must be strings");
                yield return new KeyValuePair<string, object>(key, entries.Value);
            }
        }

        /// <summary>Whether a type is a sequence of pairs with string keys.</summary>
        private static bool IsPairs(Type type)
        {
            if (!type.IsGenericType || type.GetGenericTypeDefinition() != typeof(IEnumerable<>))
            {
                return false;
            }
            Type item = type.GetGenericArguments()[0];
            return item.IsGenericType && item.GetGenericTypeDefinition() == typeof(KeyValuePair<,>) &&
                   item.GetGenericArguments()[0] == typeof(string);
        }

        private static IEnumerable<KeyValuePair<string, object>> PairsOf(IEnumerable pairs)
        {
            foreach (object pair in pairs)
            {
                Type type = pair.GetType();
                yield return new KeyValuePair<string, object>(
                    (string)type.GetProperty("Key").GetValue(pair, null),
                    type.GetProperty("Value").GetValue(pair, null));
            }
        }

        /// <summary>Whether a type belongs to the system: its properties mean nothing to a template, and some
        /// of them lead to endless further objects.</summary>
        private static bool IsOfSystem(Type type)
        {
            string space = type.Namespace;
            return typeof(Delegate).IsAssignableFrom(type) ||
                   space != null && (space == "System" || space.StartsWith("System.", StringComparison.Ordinal) ||
                                     space.StartsWith("Microsoft.", StringComparison.Ordinal));
        }

        private static IEnumerable<KeyValuePair<string, object>> PropertiesOf(object value, Type type)
        {
            foreach (PropertyInfo property in type.GetProperties(BindingFlags.Public | BindingFlags.Instance))
            {
                if (property.GetIndexParameters().Length == 0 && property.GetGetMethod() != null)
                {
                    yield return new KeyValuePair<string, object>(property.Name, ValueOf(property, value));
                }
            }
        }

        private static object ValueOf(PropertyInfo property, object value)
        {
            try
            {
                return property.GetValue(value, null);
            }
            catch (TargetInvocationException exception)
            {
                Calls.Rethrow(exception.InnerException);
                throw;
            }
        }

        private ArgumentException Refusal(string reason)
        {
            string shown = string.Concat(path.Take(20)) + (path.Count > 20 ? "..." : "");
            return new ArgumentException(shown + ": " + reason);
        }
    }

    /// <summary>The values of a render, converted once to be rendered many times. It never changes, and
    /// threads may share it.</summary>
    public sealed class Context : IDisposable
    {
        /// <summary>Converts values, which are copied.</summary>
        /// <param name="values">a dictionary, or an object with properties</param>
        /// <param name="positions">adds <c>index</c> (from 1), <c>first</c> and <c>last</c> to list
        /// elements</param>
        /// <exception cref="ArgumentException">a value cannot be one of a template; names its path</exception>
        public Context(object values, bool positions = false)
        {
            using (ValueHandle root = ValueMaker.MakeRoot(values))
            {
                int status = Native.stencilor_context_create(root, positions ? 1 : 0, out ContextHandle made,
                                                             out ErrorHandle error);
                Handle = made;
                using (error)
                {
                    if (status != Native.Ok && !error.IsInvalid)
                    {
                        throw new ArgumentException(
                            Native.Text(Native.stencilor_error_text(error, out UIntPtr size), size));
                    }
                }
                Native.Check(status);
            }
        }

        internal ContextHandle Handle { get; }

        /// <summary>Frees the values.</summary>
        public void Dispose()
        {
            Handle.Dispose();
        }
    }
}
