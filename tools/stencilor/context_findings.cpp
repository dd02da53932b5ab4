#include <tools/stencilor/context_findings.h>
#include <tools/stencilor/shown_text.h>

#include <set>
#include <string>
#include <tuple>

namespace stencilor {

namespace {

using namespace kel::Stencilor;

const char* kindOf(const ContextBase& value) {
    if (dynamic_cast<const ContextString*>(&value) != nullptr) {
        return "a string";
    }
    if (dynamic_cast<const ContextBoolean*>(&value) != nullptr) {
        return "a boolean";
    }
    return dynamic_cast<const ContextIterable*>(&value) != nullptr ? "a list" : "a dictionary";
}

Finding describeMissing(const Occurrence& found, SyntaxRange name, const char* kind) {
    return {.rule = Rule::MissingName,
            .place = {found.file, name},
            .message = std::string("no ") + kind + " is named " + quote(found.file->textOf(name)) +
                       found.where};
}

Finding describeKind(const Occurrence& found, SyntaxRange name, const char* kind) {
    return {.rule = Rule::WrongKind,
            .place = {found.file, name},
            .message = quote(found.file->textOf(name)) + " is " + kindOf(*found.value) + ", not " +
                       kind + (found.where.empty() ? "" : "," + found.where)};
}

Finding describe(const Occurrence& found) {
    const SyntaxRange name = found.part->name;
    const SyntaxRange list = found.part->list;
    switch (found.problem) {
    case Problem::NoString:
        return describeMissing(found, name, "string");
    case Problem::NotString:
        return describeKind(found, name, "a string");
    case Problem::NoBoolean:
        return describeMissing(found, name, "boolean");
    case Problem::NotBoolean:
        return describeKind(found, name, "a boolean");
    case Problem::NoList:
        return describeMissing(found, list, "list");
    case Problem::NotList:
        return describeKind(found, list, "a list");
    case Problem::NoFile:
        return describeInclusion(Rule::MissingInclude, *found.file, *found.part);
    case Problem::UnreadableFile:
        return describeInclusion(Rule::UnreadableInclude, *found.file, *found.part);
    case Problem::TooDeep:
        return {.rule = Rule::IncludeCycle,
                .place = {found.file, name},
                .message = "the inclusions around this one seem to have no end"};
    case Problem::RejectedFile:
        break;
    }
    Finding finding = describeFault(*found.rejected);
    finding.notes.push_back({{found.file, found.part->whole}, "included here"});
    return finding;
}

} // namespace

Finding describeInclusion(Rule rule, const TemplateFile& file, const SyntaxElement& part) {
    return {.rule = rule,
            .place = {&file, part.name},
            .message = "included file " + quote(file.textOf(part.name)) +
                       (rule == Rule::MissingInclude ? " does not exist" : " cannot be read")};
}

std::vector<Finding> findContextFaults(TemplateFiles& files, const TemplateFile& file,
                                       const ContextBase& context, ContextWalk::Extent extent) {
    std::vector<Finding> findings;
    std::set<std::tuple<const TemplateFile*, unsigned int, Rule>> told;
    ContextWalk walk(files, extent, [&](const Occurrence& found) {
        Finding finding = describe(found);
        const Place& place = finding.place;
        if (told.emplace(place.file, place.range.begin, finding.rule).second) {
            findings.push_back(std::move(finding));
        }
    });
    walk.walk(file, context);
    return findings;
}

} // namespace stencilor
