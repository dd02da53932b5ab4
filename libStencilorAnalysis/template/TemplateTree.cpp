#include <libStencilorAnalysis/template/TemplateTree.h>
#include <libStencilorAnalysis/text/JsonText.h>

namespace kel::Stencilor::Analysis {

namespace {

using Kind = SyntaxElement::Kind;

std::string describeNode(const TemplateFile& file, const SyntaxElement& part) {
    const std::string name(file.slice(part.name));
    switch (part.kind) {
    case Kind::Text:
        return "text " + jsonString(file.slice(part.whole));
    case Kind::Substitution:
        return "substitution " + name;
    case Kind::If:
        return "if " + name;
    case Kind::Else:
        return "else";
    case Kind::For:
        return "for " + name + " in " + std::string(file.slice(part.list));
    case Kind::Include:
        return "include " + jsonString(name);
    case Kind::EndIf:
    case Kind::EndFor:
        break;
    }
    return "";
}

constexpr std::size_t deepestIndentation = 40;

/// Lines would become ever longer.
std::string indentation(std::size_t depth) {
    if (depth < deepestIndentation) {
        return std::string(depth * 2, ' ');
    }
    return "(" + std::to_string(depth) + " deep) ";
}

} // namespace

std::string formatTree(const TemplateFile& file) {
    std::string text;
    std::size_t depth = 0;
    for (const SyntaxElement& part : file.parts()) {
        if (part.kind == Kind::EndIf || part.kind == Kind::EndFor || part.kind == Kind::Else) {
            --depth;
        }
        const std::string node = describeNode(file, part);
        if (!node.empty()) {
            const Position position = file.positionOf(part.whole.begin);
            text += indentation(depth) + std::to_string(position.line) + ":" +
                    std::to_string(position.column) + " " + node + "\n";
        }
        if (part.kind == Kind::If || part.kind == Kind::For || part.kind == Kind::Else) {
            ++depth;
        }
    }
    return text;
}

} // namespace kel::Stencilor::Analysis
