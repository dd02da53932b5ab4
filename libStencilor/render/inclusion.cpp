#include <libKel/Buffer.h>
#include <libKel/FileSystem.h>
#include <libKel/String.h>
#include <libStencilor/host/trace.h>
#include <libStencilor/render/content_visit.h>
#include <libStencilor/render/inclusion.h>
#include <libStencilor/template/parse_template.h>

namespace kel::Stencilor::internal {

namespace {

/// Parses and renders an included template. The messages are appended to `errors`.
String renderIncluded(const String& text, scope_stack& scopes, String& errors) {
    const trace_scope trace(trace_points::renderIncluded);
    syntax_tree tree;
    if (!parseTemplate(text, tree.nodes)) {
        errors += String(messages::notParsed);
        return String();
    }
    render_result result;
    applyVisitor(tree.nodes, nullptr, scopes, result);
    errors += String(result.errors.c_str());
    return String(result.output.c_str());
}

/// The same with the messages dropped.
String renderIncluded(const String& text, scope_stack& scopes) {
    String dropped;
    return renderIncluded(text, scopes, dropped);
}

} // namespace

void includeFile(const std::string& path, scope_stack& scopes, render_result& result) {
    if (!FileSystem::exists(String(path.c_str()))) {
        result.report(messages::fileNotFound, path);
        return;
    }
    Buffer<unsigned char> file;
    if (!FileSystem::loadFile(String(path.c_str()), file, nullptr)) {
        result.report(messages::fileNotLoaded, path);
        return;
    }
    const String text(reinterpret_cast<const char*>(file.data),
                      static_cast<unsigned int>(file.size));
    result.output.append(renderIncluded(text, scopes).getUTF8String().c_str());
}

} // namespace kel::Stencilor::internal
