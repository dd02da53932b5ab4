#include <libKel/String.h>
#include <libStencilor/Syntax.h>
#include <libStencilorAnalysis/finding/Habit.h>
#include <libStencilorAnalysis/finding/HabitTable.h>
#include <libStencilorAnalysis/text/ShownText.h>
#include <libStencilorAnalysis/text/Suggestion.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace kel::Stencilor::Analysis {

namespace {

using Expected = SyntaxExpectation;

using Expected = SyntaxExpectation;

constexpr std::string_view keywords[] = {"include", "endfor", "endif", "else", "for", "if"};

std::string_view trim(std::string_view text, std::string_view signs) {
    const std::size_t begin = std::min(text.find_first_not_of(signs), text.size());
    const std::size_t end = text.find_last_not_of(signs);
    return end == text.npos ? std::string_view() : text.substr(begin, end + 1 - begin);
}

/// A tag with spaces in place of the markers that trim whitespace in other engines.
std::string withoutTrimSigns(std::string_view tag) {
    std::string text(tag);
    const auto isSign = [](char byte) { return byte == '-' || byte == '+' || byte == '~'; };
    if (text.size() > 2 && isSign(text[2])) {
        text[2] = ' ';
    }
    if (text.size() > 5 && text.ends_with('}') && isSign(text[text.size() - 3])) {
        text[text.size() - 3] = ' ';
    }
    return text;
}

/// The fault of a tag: what was expected, and the position in the tag.
struct Fault {
    Expected expected;
    std::size_t offset;
};

/// The fault of a tag, ignoring its trim signs.
/// @param found the fault with the signs
/// @param plain the tag without them
std::optional<Fault> findOther(const TagFault& found, const std::string& plain) {
    const SyntaxFault fault = findSyntaxFault(String(plain));
    if (!fault.isPresent() || fault.offset >= plain.size()) {
        return std::nullopt;
    }
    // On its own, the tag is outside all blocks.
    const bool isKeyword =
        fault.expected == Expected::Keyword && expectsKeyword(found.fault.expected);
    return Fault{isKeyword ? found.fault.expected : fault.expected, fault.offset};
}

std::string withoutQuoted(std::string_view text) {
    std::string code;
    char quotation = 0;
    for (const char byte : text) {
        const bool isMark = quotation == 0 ? byte == '"' || byte == '\'' : byte == quotation;
        code += quotation == 0 || isMark ? byte : ' ';
        quotation = !isMark ? quotation : quotation == 0 ? byte : 0;
    }
    return code;
}

HabitTag describeTag(std::string_view text, const Fault& fault) {
    HabitTag tag{};
    tag.expected = fault.expected;
    tag.text = text;
    tag.isClosed = text.ends_with(tag.isSubstitution() ? "}}" : "%}");
    const std::size_t size = text.size();
    const std::size_t opened = std::min<std::size_t>(size, 2);
    const std::size_t end = size - (tag.isClosed && size >= 4 ? 2 : 0);
    tag.inside = trim(text.substr(opened, end - opened), " \t\r\n-+~{}");
    tag.code = withoutQuoted(tag.inside);
    tag.keyword = keywordOf(text);
    tag.written = tag.inside.substr(0, tag.keyword.size());
    tag.rest = fault.offset < end ? trim(text.substr(fault.offset, end - fault.offset), " \t\r\n")
                                  : std::string_view();
    return tag;
}

/// The keyword that a longer word begins with.
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

/// A tag with a space at an offset.
std::string splitAt(const TemplateFile& file, SyntaxRange tag, unsigned int offset) {
    return std::string(file.slice({tag.begin, offset})) + " " +
           std::string(file.slice({offset, tag.end}));
}

/// The word that the inside of a tag begins with.
std::string_view firstWord(std::string_view inside) {
    const auto end = std::find_if_not(inside.begin(), inside.end(), isNamePart);
    return inside.substr(0, static_cast<std::size_t>(end - inside.begin()));
}

/// The first comment of other engines that begins in text; `${#` is a shell's.
std::size_t findComment(std::string_view text) {
    std::size_t at = text.find("{#");
    while (at != text.npos && at > 0 && text[at - 1] == '$') {
        at = text.find("{#", at + 2);
    }
    return at;
}

/// What an unknown keyword may mean.
std::vector<std::string> explainKeyword(const HabitTag& tag) {
    const std::string_view word = firstWord(tag.inside);
    const std::string_view keyword = tag.isSubstitution() ? "" : findRunTogether(word);
    if (!keyword.empty()) {
        return {noteRunTogether(keyword, word.substr(keyword.size()))};
    }
    const std::vector<std::string> words(std::begin(keywords), std::end(keywords));
    const KnownWords known(words);
    if (!expectsKeyword(tag.expected) || tag.keyword.empty() ||
        std::find(words.begin(), words.end(), tag.keyword) != words.end()) {
        return {};
    }
    if (const std::string_view near = known.findNearest(tag.keyword); !near.empty()) {
        return {"did you mean " + quote(near) + "?"};
    }
    return {"there is no " + quote(word) +
            " tag, and none can be added: have the context provide the text, and write {{ name }}"};
}

} // namespace

std::string explainFault(const TemplateFile& file, const TagFault& found) {
    const SyntaxFault& fault = found.fault;
    const HabitTag tag =
        describeTag(file.slice(found.tag), {fault.expected, fault.offset - found.tag.begin});
    const bool inName = fault.expected == Expected::SubstitutionEnd ||
                        fault.expected == Expected::IfEnd || fault.expected == Expected::ForEnd;
    const bool inPath =
        fault.expected == Expected::IncludePath || fault.expected == Expected::IncludeClosingQuote;
    const std::string_view at = std::string_view(file.text()).substr(fault.offset);
    const char next = at.empty() ? '\n' : at.front();
    if (inPath && next != '"' && next != '\n' && next != '%' && !tag.rest.empty()) {
        const char before = file.text()[fault.offset - 1];
        const std::string character = showFirst(at).text;
        return fault.expected == Expected::IncludePath
                   ? "a path cannot begin with '" + character + "'"
               : before == ' ' || before == '\t' ? "a path cannot contain spaces or tabs"
                                                 : "'" + character + "' is not allowed in a path";
    }
    if (inName && next == '-' && tag.rest.size() > 1) {
        return "'-' is not allowed in a name";
    }
    return std::string("expected ") + describe(fault.expected);
}

std::vector<std::string> findHabits(const TemplateFile& file, const TagFault& found) {
    if (found.tag.isEmpty()) {
        return {}; // an unclosed block
    }
    std::vector<std::string> notes;
    const std::string_view written = file.slice(found.tag);
    const std::string plain = withoutTrimSigns(written);
    std::optional<Fault> fault = Fault{found.fault.expected, found.fault.offset - found.tag.begin};
    if (plain != written) {
        notes.emplace_back("tags do not trim whitespace: remove the sign, and any line breaks that "
                           "you do not want");
        fault = findOther(found, plain);
    }
    if (!fault) {
        return notes;
    }
    HabitTag tag = describeTag(plain, *fault);
    tag.endsLine = !tag.isClosed && file.text().compare(found.tag.end, 1, "\n") == 0;
    std::vector<std::string> habits = matchHabits(tag);
    if (habits.empty()) {
        habits = explainKeyword(tag);
    }
    std::move(habits.begin(), habits.end(), std::back_inserter(notes));
    return notes;
}

void findWellFormedHabits(const TemplateFile& file, std::vector<Finding>& findings) {
    const auto add = [&](SyntaxRange range, std::string message) {
        findings.push_back(
            {.rule = Rule::Habit, .place = {&file, range}, .message = std::move(message)});
    };
    const std::size_t lastEnd = file.text().rfind("#}");
    for (std::size_t i = 0; i < file.parts().size(); ++i) {
        const SyntaxElement& part = file.parts()[i];
        const std::string_view text = file.slice(part.whole);
        const SyntaxRange name = part.name;
        if (part.kind == SyntaxElement::Kind::Text) {
            const std::size_t comment = findComment(text);
            const std::size_t begin = part.whole.begin + comment;
            if (comment != text.npos && lastEnd != file.text().npos && begin < lastEnd) {
                const auto place = static_cast<unsigned int>(begin);
                add({place, place + 2},
                    "there are no comments: this is text, and appears in the output");
            }
        } else if (!name.isEmpty() && part.kind != SyntaxElement::Kind::Substitution &&
                   isNamePart(file.text()[name.begin - 1])) {
            const auto word = trim(text.substr(2, name.begin - part.whole.begin - 2), " \t");
            add(part.whole, noteRunTogether(word, file.slice(name)));
            findings.back().replacement = splitAt(file, part.whole, name.begin);
        } else if (part.kind == SyntaxElement::Kind::For && !part.list.isEmpty() &&
                   isNamePart(file.text()[part.list.begin - 1])) {
            add(part.whole, noteRunTogether("in", file.slice(part.list)));
            findings.back().replacement = splitAt(file, part.whole, part.list.begin);
        } else if (part.kind != SyntaxElement::Kind::Include &&
                   (file.slice(name).starts_with("loop.") ||
                    file.slice(name).starts_with("forloop.")) &&
                   file.loopAround(i) != TemplateFile::none &&
                   file.slice(file.parts()[file.loopAround(i)].name) != "loop") {
            const std::string_view variable = file.slice(file.parts()[file.loopAround(i)].name);
            add(name, "there is no loop object: with --positions, elements have index (from 1), "
                      "first and last, as in " +
                          quote(variable.empty() ? "x.index" : shorten(variable) + ".index"));
        }
    }
}

} // namespace kel::Stencilor::Analysis
