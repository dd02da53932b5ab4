#include <libStencilorAnalysis/template/TemplateTree.h>
#include <libStencilorAnalysis/text/JsonText.h>

#include <nlohmann/json.hpp>

#include <utility>

namespace kel::Stencilor::Analysis {

namespace {

using Json = nlohmann::ordered_json;
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

/// The maximum indentation, so that lines do not become ever longer.
std::string indentation(std::size_t depth) {
    if (depth < deepestIndentation) {
        return std::string(depth * 2, ' ');
    }
    return "(" + std::to_string(depth) + " deep) ";
}

/// Calls `visit` with each node and its depth.
template <typename Visit>
void visitNodes(const TemplateFile& file, const Visit& visit) {
    std::size_t depth = 0;
    for (const SyntaxElement& part : file.parts()) {
        if (part.kind == Kind::EndIf || part.kind == Kind::EndFor || part.kind == Kind::Else) {
            --depth;
        }
        if (part.kind != Kind::EndIf && part.kind != Kind::EndFor) {
            visit(part, depth);
        }
        if (part.kind == Kind::If || part.kind == Kind::For || part.kind == Kind::Else) {
            ++depth;
        }
    }
}

Json nodeJson(const TemplateFile& file, const SyntaxElement& part, std::size_t depth) {
    const Position position = file.positionOf(part.whole.begin);
    Json node = {{"line", position.line}, {"column", position.column}, {"depth", depth}};
    switch (part.kind) {
    case Kind::Text:
        node.update({{"kind", "text"}, {"text", file.slice(part.whole)}});
        break;
    case Kind::Substitution:
        node.update({{"kind", "substitution"}, {"name", file.slice(part.name)}});
        break;
    case Kind::If:
        node.update({{"kind", "if"}, {"name", file.slice(part.name)}});
        break;
    case Kind::For:
        node.update({{"kind", "for"},
                     {"variable", file.slice(part.name)},
                     {"list", file.slice(part.list)}});
        break;
    case Kind::Include:
        node.update({{"kind", "include"}, {"path", file.slice(part.name)}});
        break;
    default:
        node["kind"] = "else";
        break;
    }
    return node;
}

} // namespace

std::string formatTree(const TemplateFile& file) {
    std::string text;
    visitNodes(file, [&](const SyntaxElement& part, std::size_t depth) {
        const Position position = file.positionOf(part.whole.begin);
        text += indentation(depth) + std::to_string(position.line) + ":" +
                std::to_string(position.column) + " " + describeNode(file, part) + "\n";
    });
    return text;
}

std::string formatTreeJson(const std::vector<const TemplateFile*>& files) {
    Json list = Json::array();
    for (const TemplateFile* file : files) {
        Json nodes = Json::array();
        visitNodes(*file, [&](const SyntaxElement& part, std::size_t depth) {
            nodes.push_back(nodeJson(*file, part, depth));
        });
        list.push_back({{"file", file->name()}, {"nodes", std::move(nodes)}});
    }
    return jsonDocument({{"files", std::move(list)}});
}

} // namespace kel::Stencilor::Analysis
