#include "bound.h"
#include "context.h"

#include <libKel/Buffer.h>
#include <libKel/FileSystem.h>
#include <libKel/String.h>
#include <libStencilor/context/context_access.h>
#include <libStencilor/host/trace.h>
#include <libStencilor/render/text_sink.h>
#include <libStencilor/template/parse_template.h>
#include <libStencilor/template/syntax_tree.h>

#include <boost/variant/get.hpp>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>

namespace bench {

namespace {

using namespace kel::Stencilor;
using namespace kel::Stencilor::internal;

/// A template that was parsed beforehand.
std::shared_ptr<const syntax_tree> parsed(const std::string& text) {
    auto tree = std::make_shared<syntax_tree>();
    if (!parseTemplate(text, tree->nodes)) {
        throw std::runtime_error("not a template: " + text);
    }
    return tree;
}

/// A tree as parsing makes it, for the time of one call.
struct tree_of_call {
    explicit tree_of_call(const syntax_tree& from) { tree.nodes = from.nodes; }
    syntax_tree tree;
};

/// What stands under `key`, where it is a `Kind`, as it always is here.
template <typename Kind>
const Kind& valueOf(const ContextBase& scope, const kel::String& key) {
    const auto& children = context_access::children(scope);
    const auto found = children.find(key);
    if (found == children.end() || typeid(*found->second) != typeid(Kind)) {
        throw std::runtime_error("the context is another one");
    }
    return static_cast<const Kind&>(*found->second);
}

/// The steps that nodes take which are rendered, without finding out which.
class steps {
  public:
    void text(std::string_view bytes) {
        const trace_scope trace(trace_points::visitString);
        sink_.append(bytes);
    }

    void replace(const ContextBase& scope, const kel::String& key) {
        const trace_scope trace(trace_points::visitReplace);
        const kel::String& value = context_access::text(valueOf<ContextString>(scope, key));
        sink_.appendUpToNul(value.getUTF8String().c_str());
    }

    template <typename Branch>
    void conditional(const ContextBase& scope, const kel::String& key, const Branch& branch) {
        const trace_scope trace(trace_points::visitIf);
        const bool truth = context_access::truth(valueOf<ContextBoolean>(scope, key));
        const trace_scope apply(trace_points::applyVisitor);
        branch(truth);
    }

    template <typename Body>
    void loop(const ContextBase& scope, const kel::String& key, const Body& body) {
        const trace_scope trace(trace_points::visitFor);
        for (const ContextBase* element :
             context_access::elements(valueOf<ContextIterable>(scope, key))) {
            const trace_scope apply(trace_points::applyVisitor);
            body(*element);
        }
    }

    template <typename Body>
    void include(const std::string& path, const syntax_tree& parsedBefore, const Body& body) {
        const trace_scope trace(trace_points::visitInclude);
        kel::Buffer<unsigned char> file;
        if (!kel::FileSystem::exists(kel::String(path.c_str())) ||
            !kel::FileSystem::loadFile(kel::String(path.c_str()), file, nullptr)) {
            throw std::runtime_error("cannot read " + path);
        }
        const kel::String text(reinterpret_cast<const char*>(file.data),
                               static_cast<unsigned int>(file.size));
        sink_.append(included(text, parsedBefore, body).getUTF8String().c_str());
    }

    /// The end of a node of the top level.
    void node() {
        const std::string_view output = sink_.view();
        decoded_.UTF8Decode(output.data(), static_cast<unsigned int>(output.size()), false);
        sink_.clear();
        rendered_ += decoded_;
        errors_ += kel::String(messages_.c_str());
    }

    kel::String take() { return std::move(rendered_); }

  private:
    template <typename Body>
    kel::String included(const kel::String& text, const syntax_tree& parsedBefore,
                         const Body& body) {
        const trace_scope trace(trace_points::renderIncluded);
        const kel::CString bytes = text.getLowerByteString();
        const tree_of_call tree(parsedBefore);
        steps inner;
        const trace_scope apply(trace_points::applyVisitor);
        body(inner);
        return kel::String(inner.sink_.c_str());
    }

    text_sink sink_;
    kel::String decoded_;
    kel::String rendered_;
    std::string messages_; // none
    kel::String errors_;
};

void greeting(const ContextBase& root, steps& made) {
    made.text("Hello, ");
    made.node();
    made.replace(root, "name");
    made.node();
    made.text("! You have ");
    made.node();
    made.replace(root, "count");
    made.node();
    made.text(" new messages.");
    made.node();
}

/// The row of a page, and the names in it, as a template looks them up once it has met them.
struct row {
    kel::String url = "url";
    kel::String name = "name";
    kel::String fresh = "new";
    kel::String description = "description";

    void operator()(steps& made, const ContextBase& item) const {
        made.text("  <li class=\"row\"><a href=\"");
        made.replace(item, url);
        made.text("\">");
        made.replace(item, name);
        made.text("</a>");
        made.conditional(item, fresh, [&made](bool truth) {
            if (truth) {
                made.text(" <b>new</b>");
            }
        });
        made.text(": ");
        made.replace(item, description);
        made.text("</li>\n");
    }
};

template <typename Body>
void page(const ContextBase& root, steps& made, const Body& body) {
    made.text("<html><head><title>");
    made.node();
    made.replace(root, "title");
    made.node();
    made.text("</title></head>\n<body><h1>");
    made.node();
    made.replace(root, "title");
    made.node();
    made.text("</h1>\n<p>");
    made.node();
    made.conditional(root, "admin",
                     [&made](bool truth) { made.text(truth ? "You may edit." : "You may look."); });
    made.node();
    made.text("</p>\n<ul>\n");
    made.node();
    made.loop(root, "items", [&made, &body](const ContextBase& item) { body(made, item); });
    made.node();
    made.text("</ul></body></html>\n");
    made.node();
}

void table(const ContextBase& root, steps& made) {
    const kel::String cells("cells");
    const kel::String value("v");
    made.text("<table>\n");
    made.node();
    made.loop(root, "rows", [&](const ContextBase& line) {
        made.text("<tr>");
        made.loop(line, cells, [&](const ContextBase& cell) {
            made.text("<td>");
            made.replace(cell, value);
            made.text("</td>");
        });
        made.text("</tr>\n");
    });
    made.node();
    made.text("</table>\n");
    made.node();
}

void tags(const ContextBase& root, steps& made, std::size_t lines) {
    for (std::size_t count = 0; count < lines; ++count) {
        made.replace(root, "a");
        made.node();
        made.text(" ");
        made.node();
        made.conditional(root, "b", [&made](bool truth) { made.text(truth ? "x" : "y"); });
        made.node();
        made.text("\n");
        made.node();
    }
}

/// Texts and names by turns. The texts come from the tree of this call, so that they are read from
/// where the engine reads them.
void prose(const ContextBase& root, steps& made, const content_list& nodes) {
    for (const content& node : nodes) {
        if (const auto* text = boost::get<std::string>(&node)) {
            made.text(*text);
        } else {
            made.replace(root, "name");
        }
        made.node();
    }
}

using walk = std::function<void(const ContextBase&, steps&, const content_list&)>;

std::string readFile(const std::string& path) {
    kel::Buffer<unsigned char> file;
    if (!kel::FileSystem::loadFile(path, file, nullptr)) {
        throw std::runtime_error("cannot read " + path);
    }
    return {reinterpret_cast<const char*>(file.data), file.size};
}

walk walkOf(const workload& work) {
    if (work.name == "W1") {
        return
            [](const ContextBase& root, steps& made, const content_list&) { greeting(root, made); };
    }
    if (work.name.starts_with("W2")) {
        return [](const ContextBase& root, steps& made, const content_list&) {
            page(root, made, row());
        };
    }
    if (work.name == "W3") {
        return [](const ContextBase& root, steps& made, const content_list&) { table(root, made); };
    }
    if (work.name == "W4") {
        return prose;
    }
    if (work.name == "W5") {
        const auto lines = std::count(work.stencilor.begin(), work.stencilor.end(), '\n');
        return [lines](const ContextBase& root, steps& made, const content_list&) {
            tags(root, made, static_cast<std::size_t>(lines));
        };
    }
    if (work.name == "W6") {
        const std::string& path = work.included;
        return [path, tree = parsed(readFile(path))](const ContextBase& root, steps& made,
                                                     const content_list&) {
            page(root, made, [&](steps& outer, const ContextBase& item) {
                outer.include(path, *tree, [&item](steps& inner) { row()(inner, item); });
            });
        };
    }
    return nullptr;
}

} // namespace

std::optional<renderer> boundRenderer(const workload& work) {
    struct state {
        walk render;
        std::shared_ptr<const syntax_tree> tree;
        std::unique_ptr<ContextDictionary> context;
        kel::String output;
    };
    const walk render = walkOf(work);
    if (render == nullptr) {
        return std::nullopt;
    }
    auto shared = std::make_shared<state>(
        state{render, parsed(work.stencilor), toContext(work.data), kel::String()});
    return renderer{[shared] {
                        const trace_scope trace(trace_points::buildOutput);
                        const tree_of_call tree(*shared->tree);
                        steps made;
                        shared->render(*shared->context, made, tree.tree.nodes);
                        shared->output = made.take();
                        return std::size_t{shared->output.size()};
                    },
                    [shared] { return shared->output.str(); }};
}

} // namespace bench
