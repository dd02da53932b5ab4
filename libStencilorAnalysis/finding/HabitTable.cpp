#include <libStencilorAnalysis/finding/HabitTable.h>

#include <algorithm>
#include <initializer_list>
#include <iterator>

namespace kel::Stencilor::Analysis {

bool isNamePart(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= '0' && byte <= '9') || byte == '_';
}

namespace {

using Expected = SyntaxExpectation;
using Tag = HabitTag;

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != text.npos;
}

/// True if `word` occurs in text, and is not part of a longer name.
bool hasWord(std::string_view text, std::string_view word) {
    for (std::size_t at = text.find(word); at != text.npos; at = text.find(word, at + 1)) {
        const std::size_t end = at + word.size();
        if ((at == 0 || !isNamePart(text[at - 1])) &&
            (end == text.size() || !isNamePart(text[end]))) {
            return true;
        }
    }
    return false;
}

bool hasAnyWord(std::string_view text, std::initializer_list<std::string_view> words) {
    return std::any_of(words.begin(), words.end(),
                       [text](std::string_view word) { return hasWord(text, word); });
}

bool containsAny(std::string_view text, std::initializer_list<std::string_view> parts) {
    return std::any_of(parts.begin(), parts.end(),
                       [text](std::string_view part) { return contains(text, part); });
}

/// True for a valid name.
bool isName(std::string_view text) {
    return (text.empty() || text.front() < '0' || text.front() > '9') &&
           std::all_of(text.begin(), text.end(),
                       [](char byte) { return isNamePart(byte) || byte == '.' || byte == '/'; });
}

bool isIf(const Tag& tag) {
    return tag.expected == Expected::IfName || tag.expected == Expected::IfEnd;
}

bool isFor(const Tag& tag) {
    return tag.expected == Expected::ForVariable || tag.expected == Expected::ForIn ||
           tag.expected == Expected::ForList || tag.expected == Expected::ForEnd;
}

bool isInclude(const Tag& tag) {
    return tag.expected == Expected::IncludeOpeningQuote || tag.expected == Expected::IncludePath ||
           tag.expected == Expected::IncludeClosingQuote || tag.expected == Expected::IncludeEnd;
}

bool isPath(const Tag& tag) {
    return tag.expected == Expected::IncludePath || tag.expected == Expected::IncludeClosingQuote;
}

bool isExpression(const Tag& tag) {
    return tag.isClosed && (tag.isSubstitution() || isIf(tag) || isFor(tag));
}

bool isAny(const Tag& tag, std::initializer_list<std::string_view> keywords) {
    return !tag.isSubstitution() &&
           std::find(keywords.begin(), keywords.end(), tag.keyword) != keywords.end();
}

/// True for a substitution that begins with `sign`.
bool begins(const Tag& tag, std::string_view sign) {
    return tag.isSubstitution() && tag.inside.starts_with(sign);
}

bool isQuoted(std::string_view text) {
    return (text.starts_with("'") || text.starts_with("\"")) &&
           text.find(text.front(), 1) >= text.size() - 1;
}

/// Spaces that look like U+0020, and quotation marks that look like ASCII ones.
constexpr std::string_view spaces[] = {"\u00A0", "\u2007", "\u202F", "\u3000"};
constexpr std::string_view quotes[] = {"\u201C", "\u201D", "\u201E"};

template <typename Parts>
bool startsWithAny(std::string_view text, const Parts& parts) {
    return std::any_of(std::begin(parts), std::end(parts),
                       [text](std::string_view part) { return text.starts_with(part); });
}

struct Habit {
    int group;
    bool (*matches)(const Tag& tag);
    const char* note;
};

constexpr const char* conditionNote =
    "a condition is one name: have the context provide a boolean for the whole condition";
constexpr const char* inheritanceNote =
    "there is no inheritance: put each part in a file of its own, and write {% include \"file\" %}";
constexpr const char* macroNote =
    "there are no macros: put the text in a file of its own, and write {% include \"file\" %}";
constexpr const char* translationNote =
    "there is no translation: have the context provide the text, or write a template for each "
    "language";
constexpr const char* loopNote =
    "a loop has one variable and the name of a list: {% for x in list %}";
constexpr const char* bracesNote =
    "to output these two characters, have the context provide a value that contains them";

// In each group, the first row that matches provides the note.
const Habit habits[] = {
    // Characters that look like others.
    {0, [](const Tag& t) { return startsWithAny(t.rest, spaces); },
     "this character looks like a space, but is not one; only spaces and tabs may be between "
     "the parts of a tag"},
    {0, [](const Tag& t) { return startsWithAny(t.rest, quotes); },
     "write straight quotation marks"},

    // Substitutions that begin with a sign.
    {0, [](const Tag& t) { return t.text.starts_with("{{{") || begins(t, "&"); },
     "write {{ x }}: there is one kind of substitution, and the host decides how values are "
     "escaped"},
    {0, [](const Tag& t) { return begins(t, ">"); }, "write {% include \"x\" %} to include a file"},
    {0, [](const Tag& t) { return begins(t, "!"); }, "there are no comments: remove this one"},
    {0, [](const Tag& t) { return begins(t, "#each"); },
     "write {% for x in list %}...{% endfor %} for a list"},
    {0, [](const Tag& t) { return begins(t, "#unless") || begins(t, "^"); },
     "write {% if x %}{% else %}...{% endif %} for what to show when x is false"},
    {0, [](const Tag& t) { return begins(t, "#if"); }, "write {% if x %}...{% endif %}"},
    {0, [](const Tag& t) { return begins(t, "#") || begins(t, "/"); },
     "write {% for x in list %}...{% endfor %} for a list, {% if x %}...{% endif %} for a boolean"},
    {0, [](const Tag& t) { return begins(t, "@"); },
     "with --positions, list elements have an index: {% for x in list %}{{ x.index }}{% endfor %}"},
    {0, [](const Tag& t) { return begins(t, ".."); },
     "names of outer blocks are found without ../: write the name alone"},
    {0, [](const Tag& t) { return begins(t, "."); },
     "write {{ name }} without a dot; in {% for x in list %}, an element that is a string is "
     "{{ x.value }}"},
    {0, [](const Tag& t) { return begins(t, "="); }, "the delimiters of tags cannot be changed"},

    // Keywords.
    {0,
     [](const Tag& t) {
         return isAny(t, {"elif", "elsif", "elseif"}) ||
                (t.keyword == "else" && hasWord(t.code, "if"));
     },
     "there is no elif: write {% else %}{% if x %}...{% endif %}{% endif %}"},
    {0, [](const Tag& t) { return isAny(t, {"end"}); },
     "close each block with its own tag: {% endif %} or {% endfor %}"},
    {0,
     [](const Tag& t) {
         return isAny(t, {"else", "empty"}) && t.expected == Expected::KeywordInFor;
     },
     "a loop has no else: have the context provide a boolean that says whether the list is empty"},
    {0,
     [](const Tag& t) {
         return isAny(t, {"raw", "verbatim", "noparse", "literal"});
     },
     "there are no raw blocks: have the context provide a value that contains the braces"},
    {0,
     [](const Tag& t) {
         return isAny(t, {"set", "assign", "let", "capture", "var", "increment", "do"});
     },
     "templates cannot set values: have the context provide the value"},
    {0,
     [](const Tag& t) {
         return isAny(t, {"macro", "call", "import", "from", "function"}) || begins(t, "caller(");
     },
     macroNote},
    {0,
     [](const Tag& t) {
         return isAny(t, {"block", "extends", "layout", "section", "yield"}) || begins(t, "super(");
     },
     inheritanceNote},
    {0,
     [](const Tag& t) {
         return isAny(t, {"trans", "pluralize", "blocktrans", "blocktranslate", "translate"}) ||
                begins(t, "_(") || begins(t, "gettext(") || begins(t, "ngettext(");
     },
     translationNote},
    {0,
     [](const Tag& t) {
         return isAny(t, {"render", "partial", "embed", "component", "use"});
     },
     "write {% include \"file\" %} to include a file"},
    {0, [](const Tag& t) { return isAny(t, {"unless"}); },
     "there is no unless: write {% if x %}{% else %}...{% endif %}"},
    {0,
     [](const Tag& t) {
         return isAny(t, {"foreach", "each", "while", "loop"});
     },
     "the only loop is {% for x in list %}...{% endfor %}"},
    {0,
     [](const Tag& t) {
         return isAny(t, {"switch", "case", "when", "match"});
     },
     "write {% if x %}...{% endif %} for each case, with a boolean for each"},
    {0, [](const Tag& t) { return isAny(t, {"comment"}) || t.inside.starts_with("#"); },
     "there are no comments: remove this one"},
    {0,
     [](const Tag& t) {
         return isAny(t, {"break", "continue"});
     },
     "a loop visits the whole list: have the context provide a list of what to show"},
    {0, [](const Tag& t) { return isAny(t, {"with"}); },
     "templates cannot set values: write the whole name, or have the context provide the value"},
    {0,
     [](const Tag& t) {
         return isAny(t, {"filter", "autoescape", "spaceless", "apply"});
     },
     "a block cannot change its text; the host decides how values are escaped"},
    {0, [](const Tag& t) { return expectsKeyword(t.expected) && t.keyword != t.written; },
     "keywords are in lower case"},

    // Paths.
    {0,
     [](const Tag& t) {
         return isInclude(t) && containsAny(t.code, {"~", "+", "|", "("});
     },
     "a path cannot be computed: write it out, in double quotes"},
    {0, [](const Tag& t) { return isInclude(t) && contains(t.inside, "'"); },
     "write the path in double quotes"},
    {0, [](const Tag& t) { return isPath(t) && t.rest.starts_with("."); },
     "write the path from the folder where includes are looked up, without ./ and ../"},
    {0, [](const Tag& t) { return isPath(t) && t.rest.starts_with("/"); },
     "a path is relative to the folder where includes are looked up: remove the first slash"},
    {0, [](const Tag& t) { return isPath(t) && !t.rest.empty(); },
     "a path consists of letters, digits, '_', '.' and '/', and begins with a letter or '_'; "
     "rename the file"},
    {0, [](const Tag& t) { return t.expected == Expected::IncludeOpeningQuote; },
     "write the path itself, in double quotes: {% include \"file\" %}"},
    {0, [](const Tag& t) { return t.expected == Expected::IncludeEnd; },
     "an include takes only a path; the file sees the same values as this place"},

    // Expressions.
    {0, [](const Tag& t) { return t.expected == Expected::ForIn && t.rest.starts_with(","); },
     "a loop has one variable: have the context provide a list of objects with key and value, and "
     "write {% for x in list %}{{ x.key }}: {{ x.value }}{% endfor %}"},
    {0, [](const Tag& t) { return t.expected == Expected::IfName && t.rest.starts_with("("); },
     conditionNote},
    {0, [](const Tag& t) { return isFor(t) && hasWord(t.rest, "if"); },
     "a loop visits the whole list: have the context provide a list of what to show"},
    {0, [](const Tag& t) { return isExpression(t) && hasWord(t.code, "is"); },
     "there are no tests such as \"is defined\": have the context always provide a boolean for it"},
    {0,
     [](const Tag& t) {
         return isIf(t) && (containsAny(t.code, {"==", "!=", "<", ">"}) || hasWord(t.code, "in"));
     },
     "there are no comparisons: have the context provide the result as a boolean"},
    {0,
     [](const Tag& t) {
         return isIf(t) && (hasAnyWord(t.code, {"and", "or"}) || containsAny(t.code, {"&&", "||"}));
     },
     "there is no \"and\" or \"or\": nest one {% if %} in another, or have the context provide a "
     "boolean for both"},
    {0, [](const Tag& t) { return isIf(t) && (hasWord(t.code, "not") || contains(t.code, "!")); },
     "there is no \"not\": write {% if x %}{% else %}...{% endif %}"},
    {0,
     [](const Tag& t) {
         return t.isSubstitution() &&
                (hasAnyWord(t.code, {"if", "or", "and"}) || contains(t.code, "?"));
     },
     "write {% if x %}...{% else %}...{% endif %} to choose between two pieces of text"},
    {0, [](const Tag& t) { return isExpression(t) && contains(t.code, "|"); },
     "there are no filters: have the context provide the value as it should appear"},
    {0, [](const Tag& t) { return isFor(t) && t.rest.starts_with("("); },
     "a loop needs a list that the context provides: {% for x in list %}"},
    {0,
     [](const Tag& t) {
         return (isExpression(t) && contains(t.code, "(")) ||
                (t.expected == Expected::SubstitutionEnd && t.rest.starts_with("("));
     },
     "templates cannot call functions: have the context provide the result"},
    {0, [](const Tag& t) { return isExpression(t) && contains(t.code, "["); },
     "there is no indexing: loop over a list with {% for x in list %}, and write members with a "
     "dot: {{ x.name }}"},
    {0, [](const Tag& t) { return isFor(t) && !t.rest.empty(); }, loopNote},
    {0,
     [](const Tag& t) {
         return t.isSubstitution() && isQuoted(t.rest) && containsAny(t.rest, {"{{", "{%"});
     },
     bracesNote},
    {0,
     [](const Tag& t) {
         return t.isSubstitution() && isQuoted(t.rest) && t.rest.size() == t.inside.size();
     },
     "a tag contains the name of a value; write text as it is, without a tag"},
    {0, [](const Tag& t) { return t.isClosed && contains(t.text, "\n"); },
     "a tag cannot span lines"},
    {0, [](const Tag& t) { return t.endsLine && t.inside.empty() && t.rest.empty(); },
     "a tag cannot span lines; to output these two characters, have the context provide a value "
     "that contains them"},
    {0,
     [](const Tag& t) {
         return !t.isClosed && !t.rest.empty() && !t.rest.starts_with("}") &&
                (t.isSubstitution() || expectsKeyword(t.expected));
     },
     bracesNote},
    {0, [](const Tag& t) { return isIf(t) && t.isClosed && !t.rest.empty(); }, conditionNote},
    {0,
     [](const Tag& t) {
         return t.isSubstitution() && t.isClosed &&
                containsAny(t.code, {"+", "*", "%", "~", " - ", " / ", "//"});
     },
     "there are no operators: write {{ a }}{{ b }} to join strings, and have the context provide "
     "what is calculated"},
    {0, [](const Tag& t) { return t.isSubstitution() && contains(t.code, "-"); },
     "a name consists of letters, digits, '_', '.' and '/', and begins with a letter or '_'"},
    {0, [](const Tag& t) { return t.isSubstitution() && t.isClosed && !isName(t.inside); },
     "a substitution is one name: have the context provide the value as it should appear"},

    // What other engines provide inside a loop.
    {1,
     [](const Tag& t) {
         return t.isClosed && containsAny(t.code, {"loop."}) &&
                hasAnyWord(t.code, {"loop", "forloop"});
     },
     "there is no loop object: with --positions, elements have index (from 1), first and last, as "
     "in \"x.index\""},
};

} // namespace

bool expectsKeyword(SyntaxExpectation expected) {
    return expected == Expected::Keyword || expected == Expected::KeywordInIf ||
           expected == Expected::KeywordInElse || expected == Expected::KeywordInFor;
}

std::vector<std::string> matchHabits(const HabitTag& tag) {
    std::vector<std::string> notes;
    int group = -1;
    for (const Habit& habit : habits) {
        if (habit.group > group && habit.matches(tag)) {
            notes.emplace_back(habit.note);
            group = habit.group;
        }
    }
    return notes;
}

} // namespace kel::Stencilor::Analysis
