#include <tools/stencilor/files.h>
#include <tools/stencilor/json_output.h>
#include <tools/stencilor/template_survey.h>
#include <tools/stencilor/tree.h>

#include <string>

namespace stencilor {

namespace {

using Kind = SyntaxElement::Kind;

std::string describeNode(const TemplateFile& file, const SyntaxElement& part) {
    const std::string name(file.textOf(part.name));
    switch (part.kind) {
    case Kind::Text:
        return "text " + printJsonString(file.textOf(part.whole));
    case Kind::Substitution:
        return "substitution " + name;
    case Kind::If:
        return "if " + name;
    case Kind::Else:
        return "else";
    case Kind::For:
        return "for " + name + " in " + std::string(file.textOf(part.list));
    case Kind::Include:
        return "include " + printJsonString(name);
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

/// An `else` stands below its `if`, as deep as that.
std::string describeTree(const TemplateFile& file) {
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

} // namespace

ExitStatus tree(const TreeOptions& options) {
    TemplateFiles files;
    const TemplateFile& file = files.open(options.templateFile, {});
    if (file.fault().isPresent()) {
        printFindings({describeFault(file)});
        return exitRejected;
    }
    writeOutput(options.outputFile, describeTree(file));
    return exitClean;
}

} // namespace stencilor
