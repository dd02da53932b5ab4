#include <libKel/String.h>
#include <libStencilorAnalysis/editor/Names.h>
#include <libStencilorAnalysis/editor/TagFix.h>
#include <libStencilorAnalysis/text/Suggestion.h>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <vector>

namespace kel::Stencilor::Analysis {

namespace {

std::string_view trim(std::string_view text, std::string_view bytes = " \t\r\n") {
    const std::size_t begin = std::min(text.find_first_not_of(bytes), text.size());
    const std::size_t end = text.find_last_not_of(bytes);
    return end == text.npos ? std::string_view() : text.substr(begin, end + 1 - begin);
}

/// The inside of a tag, without its delimiters and signs next to them.
struct Inside {
    bool isSubstitution;
    std::string_view text;
};

std::optional<Inside> insideOf(std::string_view tag) {
    const bool isSubstitution = tag.starts_with("{{");
    if (tag.size() < 4 || !tag.ends_with(isSubstitution ? "}}" : "%}")) {
        return std::nullopt;
    }
    std::string_view text = tag.substr(2, tag.size() - 4);
    if (isSubstitution && text.starts_with('{') && text.ends_with('}')) {
        text = text.substr(1, text.size() - 2);
    }
    const auto isSign = [](char byte) { return byte == '-' || byte == '+' || byte == '~'; };
    if (!text.empty() && isSign(text.front())) {
        text.remove_prefix(1);
    }
    if (!text.empty() && isSign(text.back())) {
        text.remove_suffix(1);
    }
    return Inside{isSubstitution, trim(text)};
}

std::string makeTag(const std::string& inside) {
    return "{% " + inside + " %}";
}

/// Converts a path in any quotation marks, or in none, to `"path"`.
std::string makePath(std::string_view text) {
    std::string_view path = trim(text, " \t'\"");
    while (path.starts_with("./") || path.starts_with("/")) {
        path.remove_prefix(path.find('/') + 1);
    }
    return "include \"" + std::string(path) + "\"";
}

std::string fixSubstitution(std::string_view inside) {
    if (inside.starts_with('>')) {
        return makeTag(makePath(inside.substr(1)));
    }
    if (inside.starts_with('&')) {
        inside = trim(inside.substr(1));
    }
    while (inside.starts_with("../")) {
        inside.remove_prefix(3);
    }
    if (inside.starts_with('.')) {
        inside.remove_prefix(1);
    }
    return "{{ " + std::string(inside) + " }}";
}

/// The keyword that a word probably means.
std::string keywordFor(const std::string& word, const TemplateFile& file, SyntaxRange block) {
    if (word == "foreach" || word == "each") {
        return "for";
    }
    if (word == "render" || word == "partial" || word == "embed") {
        return "include";
    }
    if (word == "end" && !block.isEmpty()) {
        return keywordOf(file.slice(block)) == "for" ? "endfor" : "endif";
    }
    static const std::vector<std::string> keywords = {"if",    "for",    "else",
                                                      "endif", "endfor", "include"};
    static const KnownWords known(keywords);
    const std::string_view nearest = known.findNearest(word);
    return nearest.empty() ? word : std::string(nearest);
}

std::string fixKeyword(std::string_view inside, const TemplateFile& file, SyntaxRange block) {
    const std::string word = keywordOf(inside);
    const std::string keyword = keywordFor(word, file, block);
    const std::string_view rest = trim(inside.substr(std::min(word.size(), inside.size())));
    if (keyword == "include") {
        return makeTag(makePath(rest));
    }
    return makeTag(keyword + (rest.empty() ? "" : " ") + std::string(rest));
}

/// True if text is a single valid tag.
bool isTag(const std::string& text) {
    struct Count final : SyntaxVisitor {
        std::size_t tags = 0;
        void visit(const SyntaxElement&) override { ++tags; }
    };
    struct Around {
        const char* before;
        const char* after;
        std::size_t parts;
    };
    constexpr Around places[] = {
        {"", "", 1},           {"", "{% endif %}", 2},      {"", "{% endfor %}", 2},
        {"{% if a %}", "", 2}, {"{% for a in a %}", "", 2}, {"{% if a %}", "{% endif %}", 3}};
    return text.starts_with('{') &&
           std::any_of(std::begin(places), std::end(places), [&text](const Around& place) {
               Count count;
               const std::string whole = place.before + text + place.after;
               return !readSyntax(String(whole), count).isPresent() && count.tags == place.parts;
           });
}

} // namespace

std::optional<std::string> fixTag(const TemplateFile& file, const TagFault& fault) {
    const std::string_view tag = file.slice(fault.tag);
    const auto inside = insideOf(tag);
    if (!inside) {
        return std::nullopt;
    }
    std::string fixed = inside->isSubstitution ? fixSubstitution(inside->text)
                                               : fixKeyword(inside->text, file, fault.fault.block);
    return fixed != tag && isTag(fixed) ? std::optional(std::move(fixed)) : std::nullopt;
}

} // namespace kel::Stencilor::Analysis
