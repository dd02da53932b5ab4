#include <libStencilorAnalysis/check/ContextCheck.h>
#include <libStencilorAnalysis/text/ShownText.h>

#include <set>
#include <string>
#include <tuple>
#include <utility>

namespace kel::Stencilor::Analysis {

namespace {

/// Limits suggestions, because finding one takes longer than finding a problem.
constexpr std::size_t mostSuggestions = 1000;

const char* describeKind(const ContextBase& value) {
    if (dynamic_cast<const ContextString*>(&value) != nullptr) {
        return "a string";
    }
    if (dynamic_cast<const ContextBoolean*>(&value) != nullptr) {
        return "a boolean";
    }
    return dynamic_cast<const ContextIterable*>(&value) != nullptr ? "a list" : "a dictionary";
}

/// `kind` is the kind that the tag requires, such as `string`.
Finding describeMissing(const Occurrence& found, SyntaxRange name, const std::string& kind) {
    return {.rule = Rule::MissingName,
            .place = {found.file, name},
            .message = "no " + kind + " is named " + quote(found.file->slice(name)) + found.where};
}

Finding describeWrongKind(const Occurrence& found, SyntaxRange name, const std::string& kind) {
    return {.rule = Rule::WrongKind,
            .place = {found.file, name},
            .message = quote(found.file->slice(name)) + " is " + describeKind(*found.value) +
                       ", not a " + kind + (found.where.empty() ? "" : "," + found.where)};
}

Finding describeOtherLoop(const Occurrence& found, SyntaxRange name) {
    const OtherLoop& other = found.otherLoop;
    const std::string_view text = found.file->slice(name);
    return {.rule = Rule::OtherLoop,
            .place = {found.file, name},
            .message = quote(text) + " is found in element " + std::to_string(other.element + 1) +
                       " of " + quote(other.file->slice(other.tag->list)) +
                       (other.isInside
                            ? ", an inner loop; in the context, give the elements their own keys"
                            : ", an outer loop"),
            .notes = {{{other.file, other.tag->whole}, "found in this loop"}}};
}

Finding describeRejection(const Occurrence& found) {
    Finding finding = describeFault(*found.inclusion->file);
    finding.notes.push_back({{found.file, found.part->whole}, "included here"});
    return finding;
}

Finding describeEndlessness(const Occurrence& found) {
    return {.rule = Rule::IncludeCycle,
            .place = {found.file, found.part->name},
            .message = "includes appear to recurse without end"};
}

Finding describeEnd(const Occurrence& found) {
    return {.rule = Rule::Limit,
            .place = {found.file, found.part->whole},
            .message =
                "too many iterations of nested loops to look up every name; names from here on are "
                "not checked",
            .ownSeverity = Severity::Warning};
}

Finding describe(const Occurrence& found) {
    const SyntaxRange name = found.part->name;
    const SyntaxRange list = found.part->list;
    switch (found.problem) {
    case Problem::NoString:
        return describeMissing(found, name, "string");
    case Problem::NotString:
        return describeWrongKind(found, name, "string");
    case Problem::NoBoolean:
        return describeMissing(found, name, "boolean");
    case Problem::NotBoolean:
        return describeWrongKind(found, name, "boolean");
    case Problem::NoList:
        return describeMissing(found, list, "list");
    case Problem::NotList:
        return describeWrongKind(found, list, "list");
    case Problem::NoFile:
        return describeFailure({*found.file, *found.part, *found.inclusion});
    case Problem::RejectedFile:
        return describeRejection(found);
    case Problem::OtherLoop:
        return describeOtherLoop(found, found.part->kind == SyntaxElement::Kind::For ? list : name);
    case Problem::TooLong:
        return describeEnd(found);
    case Problem::TooDeep:
        break;
    }
    return describeEndlessness(found);
}

} // namespace

std::vector<Finding> findContextFaults(TemplateFiles& files, const TemplateFile& file,
                                       const ContextBase& context, ContextWalk::Extent extent,
                                       WalkLimits limits) {
    std::vector<Finding> findings;
    std::size_t suggestions = 0;
    std::set<std::tuple<const TemplateFile*, unsigned int, Rule>> known;
    ContextWalk walk(files, extent, [&](const Occurrence& found) {
        Finding finding = describe(found);
        const Place& place = finding.place;
        if (known.emplace(place.file, place.range.begin, finding.rule).second) {
            if (suggestions < mostSuggestions &&
                (finding.rule == Rule::MissingName || finding.rule == Rule::WrongKind)) {
                ContextWalk::Suggestion suggestion = walk.suggest(found);
                finding.message += suggestion.text;
                finding.replacement = std::move(suggestion.name);
                ++suggestions;
            }
            findings.push_back(std::move(finding));
        }
    });
    walk.setLimits(std::move(limits));
    walk.walk(file, context);
    return findings;
}

} // namespace kel::Stencilor::Analysis
