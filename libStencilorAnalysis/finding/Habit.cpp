#include <libStencilorAnalysis/finding/Habit.h>
#include <libStencilorAnalysis/text/ShownText.h>
#include <libStencilorAnalysis/text/Suggestion.h>

#include <algorithm>
#include <iterator>

namespace kel::Stencilor::Analysis {

namespace {

using Expected = SyntaxExpectation;

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != text.npos;
}

bool isNamePart(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= '0' && byte <= '9') || byte == '_';
}

/// True if `word` occurs in a text, with nothing around it that could be part of a name.
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

/// True for what the language takes for a name.
bool isName(std::string_view text) {
    return (text.empty() || text.front() < '0' || text.front() > '9') &&
           std::all_of(text.begin(), text.end(),
                       [](char byte) { return isNamePart(byte) || byte == '.' || byte == '/'; });
}

/// A tag at fault.
struct Tag {
    Expected expected;
    std::string_view text;    ///< all of it
    std::string_view inside;  ///< what is between its pairs, without spaces and signs around it
    std::string_view rest;    ///< what of `inside` follows what could be read
    std::string keyword;      ///< its first word in small letters
    std::string_view written; ///< that word as it is written
    bool isClosed;            ///< by its pair

    bool isSubstitution() const { return text.starts_with("{{"); }
    bool isIf() const { return expected == Expected::IfName || expected == Expected::IfEnd; }
    bool isFor() const {
        return expected == Expected::ForVariable || expected == Expected::ForIn ||
               expected == Expected::ForList || expected == Expected::ForEnd;
    }
    bool isInclude() const {
        return expected == Expected::IncludeOpeningQuote || expected == Expected::IncludePath ||
               expected == Expected::IncludeClosingQuote || expected == Expected::IncludeEnd;
    }
    bool isPath() const {
        return expected == Expected::IncludePath || expected == Expected::IncludeClosingQuote;
    }
    bool isKeyword() const {
        return expected == Expected::Keyword || expected == Expected::KeywordInIf ||
               expected == Expected::KeywordInElse || expected == Expected::KeywordInFor;
    }
    bool isExpression() const { return isClosed && (isSubstitution() || isIf() || isFor()); }
    bool isAny(std::initializer_list<std::string_view> keywords) const {
        return !isSubstitution() &&
               std::find(keywords.begin(), keywords.end(), keyword) != keywords.end();
    }
    /// What a substitution begins with.
    bool begins(std::string_view sign) const {
        return isSubstitution() && inside.starts_with(sign);
    }
};

/// The first of each group that matches is the note.
struct Habit {
    int group;
    bool (*matches)(const Tag& tag);
    const char* note;
};

/// In a condition these need a value of its own.
constexpr const char* conditionNote =
    "a condition is one name; have the context provide a boolean for the whole condition";

const Habit habits[] = {
    // Signs at the pairs. What is inside may be another habit.
    {0,
     [](const Tag& t) {
         return t.text.starts_with("{%-") || t.text.starts_with("{{-") || t.text.ends_with("-%}") ||
                t.text.ends_with("-}}") || t.text.starts_with("{%+") || t.text.starts_with("{{~") ||
                t.text.ends_with("~}}");
     },
     "tags do not trim what is around them; leave out the sign, and the line breaks that are not "
     "wanted"},

    // Substitutions that begin with a sign.
    {1, [](const Tag& t) { return t.text.starts_with("{{{") || t.begins("&"); },
     "write {{ x }}: there is one kind of substitution, and the host decides what is escaped"},
    {1, [](const Tag& t) { return t.begins(">"); }, "write {% include \"x\" %} to include a file"},
    {1, [](const Tag& t) { return t.begins("!"); }, "there are no comments"},
    {1, [](const Tag& t) { return t.begins("#each"); },
     "write {% for x in list %}...{% endfor %} for a list"},
    {1, [](const Tag& t) { return t.begins("#unless") || t.begins("^"); },
     "write {% if x %}{% else %}...{% endif %} for what is shown if x is false"},
    {1, [](const Tag& t) { return t.begins("#if"); }, "write {% if x %}...{% endif %}"},
    {1, [](const Tag& t) { return t.begins("#") || t.begins("/"); },
     "write {% for x in list %}...{% endfor %} for a list, {% if x %}...{% endif %} for a boolean"},
    {1, [](const Tag& t) { return t.begins("@"); },
     "with positions (--positions) elements have a member index: {% for x in list %}{{ x.index "
     "}}{% endfor %}"},
    {1, [](const Tag& t) { return t.begins(".."); },
     "names of the blocks around are found without ../: write the name alone"},
    {1, [](const Tag& t) { return t.begins("."); },
     "write {{ name }} without a dot; an element that is a text is {{ x.value }} in {% for x in "
     "list %}"},
    {1, [](const Tag& t) { return t.begins("="); }, "the pairs that open and close tags are fixed"},

    // Keywords.
    {1,
     [](const Tag& t) {
         return t.isAny({"elif", "elsif", "elseif"}) ||
                (t.keyword == "else" && hasWord(t.inside, "if"));
     },
     "there is no elif: write {% else %}{% if x %}...{% endif %}{% endif %}"},
    {1, [](const Tag& t) { return t.isAny({"end"}); },
     "a block is closed by the end of its own kind: {% endif %} or {% endfor %}"},
    {1, [](const Tag& t) { return t.isAny({"else"}) && t.expected == Expected::KeywordInFor; },
     "a loop has no else; have the context provide a boolean that says whether the list is empty"},
    {1,
     [](const Tag& t) {
         return t.isAny({"raw", "verbatim", "noparse", "literal"});
     },
     "there is no raw text: have the context provide a value with the braces, and substitute it"},
    {1,
     [](const Tag& t) {
         return t.isAny({"set", "assign", "let", "capture", "var", "increment"});
     },
     "templates set no values: have the context provide the value"},
    {1,
     [](const Tag& t) {
         return t.isAny({"macro", "call", "import", "from", "function"});
     },
     "there are no macros: write the text in a file of its own, and {% include \"file\" %}"},
    {1,
     [](const Tag& t) {
         return t.isAny({"block", "extends", "layout", "section", "yield"});
     },
     "there is no inheritance: write the parts in files of their own, and {% include \"file\" %}"},
    {1,
     [](const Tag& t) {
         return t.isAny({"render", "partial", "embed", "component", "use"});
     },
     "write {% include \"file\" %} to include a file"},
    {1, [](const Tag& t) { return t.isAny({"unless"}); },
     "there is no unless: write {% if x %}{% else %}...{% endif %}"},
    {1,
     [](const Tag& t) {
         return t.isAny({"foreach", "each", "while", "loop"});
     },
     "the only loop is {% for x in list %}...{% endfor %}"},
    {1,
     [](const Tag& t) {
         return t.isAny({"switch", "case", "when", "match"});
     },
     "write an {% if x %}...{% endif %} for each case, with a boolean of its own"},
    {1, [](const Tag& t) { return t.isAny({"comment"}) || t.inside.starts_with("#"); },
     "there are no comments"},
    {1,
     [](const Tag& t) {
         return t.isAny({"break", "continue"});
     },
     "a loop always visits the whole list; have the context provide the list that is meant"},
    {1, [](const Tag& t) { return t.isAny({"with"}); },
     "templates set no values: write the whole name, or have the context provide the value"},
    {1,
     [](const Tag& t) {
         return t.isAny({"filter", "autoescape", "spaceless", "apply"});
     },
     "nothing processes the text of a block; the host decides what is escaped"},
    {1, [](const Tag& t) { return t.isKeyword() && t.keyword != t.written; },
     "keywords are written in small letters"},

    // Paths.
    {1, [](const Tag& t) { return t.isInclude() && contains(t.inside, "'"); },
     "write the path in double quotes"},
    {1, [](const Tag& t) { return t.isPath() && t.rest.starts_with("."); },
     "write the path from the folder that includes are looked up in, without ./ and ../"},
    {1, [](const Tag& t) { return t.isPath() && t.rest.starts_with("/"); },
     "a path is relative to the folder that includes are looked up in; leave out the first slash"},
    {1, [](const Tag& t) { return t.isPath() && !t.rest.empty(); },
     "a path has letters, digits, '_', '.' and '/', and begins with a letter or '_'; rename the "
     "file"},
    {1, [](const Tag& t) { return t.expected == Expected::IncludeOpeningQuote; },
     "write the path itself in double quotes: {% include \"file\" %}"},
    {1, [](const Tag& t) { return t.expected == Expected::IncludeEnd; },
     "an include is a path and nothing else; the file sees all names around the tag"},

    // Expressions, wherever they are.
    {1, [](const Tag& t) { return t.expected == Expected::ForIn && t.rest.starts_with(","); },
     "a loop has one variable: have the context provide a list of objects with key and value, and "
     "write "
     "{% for x in list %}{{ x.key }}: {{ x.value }}{% endfor %}"},
    {1, [](const Tag& t) { return t.expected == Expected::IfName && t.rest.starts_with("("); },
     conditionNote},
    {1, [](const Tag& t) { return t.isExpression() && hasWord(t.inside, "is"); },
     "there are no tests like \"is defined\": have the context provide a boolean for it, true or "
     "false"},
    {1,
     [](const Tag& t) {
         return t.isIf() && (contains(t.inside, "==") || contains(t.inside, "!=") ||
                             contains(t.inside, "<") || contains(t.inside, ">"));
     },
     "there are no comparisons: have the context provide a boolean for the result, and write {% if "
     "name "
     "%}"},
    {1,
     [](const Tag& t) {
         return t.isIf() && (hasWord(t.inside, "and") || hasWord(t.inside, "or") ||
                             contains(t.inside, "&&") || contains(t.inside, "||"));
     },
     "there is no and, no or: write one {% if %} in another, or have the context provide a boolean "
     "for "
     "both"},
    {1,
     [](const Tag& t) { return t.isIf() && (hasWord(t.inside, "not") || contains(t.inside, "!")); },
     "there is no not: write {% if x %}{% else %}...{% endif %}"},
    {1,
     [](const Tag& t) {
         return t.isSubstitution() && (hasWord(t.inside, "if") || contains(t.inside, "?"));
     },
     "write {% if x %}...{% else %}...{% endif %} for one of two texts"},
    {1, [](const Tag& t) { return t.isExpression() && contains(t.inside, "|"); },
     "there are no filters: have the context provide the value as it is to be shown"},
    {1, [](const Tag& t) { return t.isFor() && t.rest.starts_with("("); },
     "a loop walks a list of the context, which is named: {% for x in list %}"},
    {1, [](const Tag& t) { return t.isExpression() && contains(t.inside, "("); },
     "nothing can be called: have the context provide the result"},
    {1, [](const Tag& t) { return t.isExpression() && contains(t.inside, "["); },
     "nothing is indexed: loop over a list with {% for x in list %}, and write members with a dot: "
     "{{ "
     "x.name }}"},
    {1, [](const Tag& t) { return t.isFor() && !t.rest.empty(); },
     "write {% for x in list %}: one variable, and the name of a list"},
    {1,
     [](const Tag& t) {
         return t.isSubstitution() && (t.rest.starts_with("'") || t.rest.starts_with("\"")) &&
                t.rest.size() == t.inside.size();
     },
     "a tag holds the name of a value; a text is written as it is, without a tag"},
    {1, [](const Tag& t) { return contains(t.text, "\n"); }, "a tag is on one line"},
    {1,
     [](const Tag& t) {
         return !t.isClosed && !t.rest.empty() && !t.rest.starts_with("}") &&
                (t.isSubstitution() || t.isKeyword());
     },
     "where text needs these two characters, have the context provide a value with them"},
    {1, [](const Tag& t) { return t.isIf() && t.isClosed && !t.rest.empty(); }, conditionNote},
    {1, [](const Tag& t) { return t.isSubstitution() && contains(t.inside, "-"); },
     "a name has letters, digits, '_', '.' and '/', and begins with a letter or '_'"},
    {1, [](const Tag& t) { return t.isSubstitution() && t.isClosed && !isName(t.inside); },
     "a substitution is one name; have the context provide the value as it is to be shown"},
};

constexpr std::string_view keywords[] = {"include", "endfor", "endif", "else", "for", "if"};

std::string_view trim(std::string_view text, std::string_view signs) {
    const std::size_t begin = std::min(text.find_first_not_of(signs), text.size());
    const std::size_t end = text.find_last_not_of(signs);
    return end == text.npos ? std::string_view() : text.substr(begin, end + 1 - begin);
}

Tag describeTag(const TemplateFile& file, const TagFault& found) {
    Tag tag{};
    tag.expected = found.fault.expected;
    tag.text = file.slice(found.tag);
    const bool substitution = tag.text.starts_with("{{");
    const std::string_view closer = substitution ? "}}" : "%}";
    tag.isClosed = tag.text.ends_with(closer);
    const std::size_t size = tag.text.size();
    const std::size_t opened = std::min<std::size_t>(size, 2);
    const std::string_view between =
        tag.text.substr(opened, size - opened - (tag.isClosed && size >= 4 ? 2 : 0));
    const std::string_view signs = " \t\r\n-+~{}";
    tag.inside = trim(between, signs);
    tag.keyword = keywordOf(tag.text);
    tag.written = tag.inside.substr(0, tag.keyword.size());
    const std::size_t offset = found.fault.offset - found.tag.begin;
    const std::size_t end =
        static_cast<std::size_t>(between.data() - tag.text.data()) + between.size();
    tag.rest =
        offset < end ? trim(tag.text.substr(offset, end - offset), " \t\r\n") : std::string_view();
    return tag;
}

/// The keyword that a word begins with, if it goes on after it.
std::string_view findRunTogether(std::string_view word) {
    const auto found =
        std::find_if(std::begin(keywords), std::end(keywords), [word](std::string_view keyword) {
            return word.size() > keyword.size() && word.starts_with(keyword);
        });
    return found == std::end(keywords) ? std::string_view() : *found;
}

std::string noteRunTogether(std::string_view keyword, std::string_view rest) {
    return "this is read as " + quote(keyword) + " and " + quote(rest) +
           ", as if there were a space between them";
}

/// The word that the inside of a tag begins with.
std::string_view firstWord(std::string_view inside) {
    const auto end = std::find_if_not(inside.begin(), inside.end(), isNamePart);
    return inside.substr(0, static_cast<std::size_t>(end - inside.begin()));
}

} // namespace

std::string explainFault(const TemplateFile& file, const TagFault& found) {
    const Tag tag = describeTag(file, found);
    const bool inName = found.fault.expected == Expected::SubstitutionEnd ||
                        found.fault.expected == Expected::IfEnd ||
                        found.fault.expected == Expected::ForEnd;
    const std::string_view at = std::string_view(file.text()).substr(found.fault.offset);
    const char next = at.empty() ? '\n' : at.front();
    if (tag.isPath() && next != '"' && next != '\n' && next != '%' && !tag.rest.empty()) {
        const char before = file.text()[found.fault.offset - 1];
        const std::string character = showFirst(at).text;
        return found.fault.expected == Expected::IncludePath
                   ? "a path cannot begin with '" + character + "'"
               : before == ' ' || before == '\t' ? "a path cannot have spaces or tabs in it"
                                                 : "'" + character + "' is not allowed in a path";
    }
    if (inName && next == '-' && tag.rest.size() > 1) {
        return "'-' is not allowed in a name";
    }
    return std::string("expected ") + describe(found.fault.expected);
}

std::vector<std::string> findHabits(const TemplateFile& file, const TagFault& found) {
    const Tag tag = describeTag(file, found);
    std::vector<std::string> notes;
    if (found.tag.isEmpty()) {
        return notes; // a block that is not closed
    }
    const std::string_view word = firstWord(tag.inside);
    int group = -1;
    for (const Habit& habit : habits) {
        if (habit.group > group && habit.matches(tag)) {
            notes.emplace_back(habit.note);
            group = habit.group;
        }
    }
    if (group == 1) {
        return notes;
    }
    const std::string_view keyword = tag.isSubstitution() ? "" : findRunTogether(word);
    const std::vector<std::string> words(std::begin(keywords), std::end(keywords));
    const KnownWords known(words);
    if (!keyword.empty()) {
        notes.push_back(noteRunTogether(keyword, word.substr(keyword.size())));
    } else if (tag.isKeyword() && !known.findNearest(tag.keyword).empty()) {
        notes.push_back("did you mean " + quote(known.findNearest(tag.keyword)) + "?");
    } else if (tag.isKeyword() && !tag.keyword.empty() &&
               std::find(words.begin(), words.end(), tag.keyword) == words.end()) {
        notes.push_back("there is no " + quote(tag.keyword) +
                        " tag: only if, else, for, include, and the ends of blocks");
    }
    return notes;
}

void findWellFormedHabits(const TemplateFile& file, std::vector<Finding>& findings) {
    const auto add = [&](SyntaxRange range, std::string message) {
        findings.push_back(
            {.rule = Rule::Habit, .place = {&file, range}, .message = std::move(message)});
    };
    for (std::size_t i = 0; i < file.parts().size(); ++i) {
        const SyntaxElement& part = file.parts()[i];
        const std::string_view text = file.slice(part.whole);
        const SyntaxRange name = part.name;
        if (part.kind == SyntaxElement::Kind::Text) {
            const std::size_t comment = text.find("{#");
            if (comment != text.npos && contains(text.substr(comment), "#}")) {
                const auto begin = part.whole.begin + static_cast<unsigned int>(comment);
                add({begin, begin + 2}, "there are no comments: this is text, and is written");
            }
        } else if (!name.isEmpty() && part.kind != SyntaxElement::Kind::Substitution &&
                   isNamePart(file.text()[name.begin - 1])) {
            const auto word = trim(text.substr(2, name.begin - part.whole.begin - 2), " \t");
            add(part.whole, noteRunTogether(word, file.slice(name)));
        } else if (part.kind == SyntaxElement::Kind::For && !part.list.isEmpty() &&
                   isNamePart(file.text()[part.list.begin - 1])) {
            add(part.whole, noteRunTogether("in", file.slice(part.list)));
        } else if (part.kind != SyntaxElement::Kind::Include &&
                   file.slice(name).starts_with("loop.") &&
                   file.loopAround(i) != TemplateFile::none &&
                   file.slice(file.parts()[file.loopAround(i)].name) != "loop") {
            const std::string variable(file.slice(file.parts()[file.loopAround(i)].name));
            add(name, "there is no loop object: with positions (--positions) elements have index "
                      "(from 1), first and last, as in " +
                          quote(shorten(variable) + ".index"));
        }
    }
}

} // namespace kel::Stencilor::Analysis
