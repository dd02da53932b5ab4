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

/// The maximum indentation, so that lines do not keep growing.
std::string indentationAt(std::size_t depth) {
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

void writeNode(JsonWriter& json, const TemplateFile& file, const SyntaxElement& part,
               std::size_t depth) {
    const Position position = file.positionOf(part.whole.begin);
    json.beginObject();
    json.member("line", position.line);
    json.member("column", position.column);
    json.member("depth", depth);
    switch (part.kind) {
    case Kind::Text:
        json.member("kind", "text");
        json.member("text", file.slice(part.whole));
        break;
    case Kind::Substitution:
        json.member("kind", "substitution");
        json.member("name", file.slice(part.name));
        break;
    case Kind::If:
        json.member("kind", "if");
        json.member("name", file.slice(part.name));
        break;
    case Kind::For:
        json.member("kind", "for");
        json.member("variable", file.slice(part.name));
        json.member("list", file.slice(part.list));
        break;
    case Kind::Include:
        json.member("kind", "include");
        json.member("path", file.slice(part.name));
        break;
    default:
        json.member("kind", "else");
        break;
    }
    json.endObject();
}

} // namespace

std::string formatTree(const TemplateFile& file) {
    std::string text;
    visitNodes(file, [&](const SyntaxElement& part, std::size_t depth) {
        const Position position = file.positionOf(part.whole.begin);
        text += indentationAt(depth) + std::to_string(position.line) + ":" +
                std::to_string(position.column) + " " + describeNode(file, part) + "\n";
    });
    return text;
}

std::string formatTreeJson(const std::vector<const TemplateFile*>& files) {
    JsonWriter json;
    json.beginObject();
    json.name("files");
    json.beginArray();
    for (const TemplateFile* file : files) {
        json.beginObject();
        json.member("file", file->name());
        json.name("nodes");
        json.beginArray();
        visitNodes(*file, [&](const SyntaxElement& part, std::size_t depth) {
            writeNode(json, *file, part, depth);
        });
        json.endArray();
        json.endObject();
    }
    json.endArray();
    json.endObject();
    return json.take();
}

} // namespace kel::Stencilor::Analysis
