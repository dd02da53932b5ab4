#include <libKel/Buffer.h>
#include <libKel/FileSystem.h>
#include <libStencilor/render/classic_call.h>
#include <libStencilor/render/content_visit.h>
#include <libStencilor/template/parse_template.h>

namespace kel::Stencilor::internal {

namespace {

/// The bytes of a file, followed by a NUL. They are in `file` if it has room for one more byte,
/// which is nearly always the case, and otherwise in `copy`.
template <typename Text>
std::string_view terminated(Buffer<unsigned char>& file, Text& copy) {
    const std::string_view bytes(reinterpret_cast<const char*>(file.data), file.size);
    if (file.size == file.capacity) {
        copy = Text(bytes);
        return copy.view();
    }
    file.data[file.size] = 0;
    return bytes;
}

/// Parses and renders an included template. A malformed template renders as nothing; messages are
/// dropped.
template <byte_text Text>
void renderIncluded(Buffer<unsigned char>& file, scope_stack& scopes, joined_output<Text>& text) {
    Text copy;
    const std::string_view source = terminated(file, copy);
    const trace_scope trace(trace_points::renderIncluded);
    syntax_tree tree;
    if (!parseTemplate(source.data(), tree.nodes)) {
        return;
    }
    text.beginIncluded(Text::isUtf8(source));
    classic_call call(text, nullptr);
    applyVisitor(tree.nodes, scopes, call);
}

/// The same with the conversions of another base library, each of which may change the text. The
/// messages are appended to `errors`.
template <typename Text>
Text convertIncluded(const Text& source, scope_stack& scopes, Text& errors) {
    const trace_scope trace(trace_points::renderIncluded);
    syntax_tree tree;
    if (!parseTemplate(source, tree.nodes)) {
        errors += Text(notParsed);
        return Text();
    }
    converted_output<Text> text(false);
    text_sink messages;
    classic_call call(text, &messages);
    applyVisitor(tree.nodes, scopes, call);
    errors += Text(messages.c_str());
    return text.takeIncluded();
}

template <typename Text>
void renderIncluded(Buffer<unsigned char>& file, scope_stack& scopes,
                    converted_output<Text>& text) {
    // The low 32 bits of the size; no base library loads more.
    const Text source(reinterpret_cast<const char*>(file.data),
                      static_cast<unsigned int>(file.size));
    Text dropped;
    text.text(convertIncluded(source, scopes, dropped).getUTF8String().c_str());
}

} // namespace

void classic_call::include(const include_expr& node, scope_stack& scopes) {
    if (!FileSystem::exists(String(node.path.c_str()))) {
        report(fault::fileNotFound, node.path, node);
        return;
    }
    Buffer<unsigned char> file;
    if (!FileSystem::loadFile(String(node.path.c_str()), file, nullptr)) {
        report(fault::fileNotLoaded, node.path, node);
        return;
    }
    renderIncluded(file, scopes, text_);
}

void classic_call::append(const message& text, const std::string& name) {
    errors_->append(text.before);
    errors_->append(name);
    errors_->append(text.after);
}

} // namespace kel::Stencilor::internal
