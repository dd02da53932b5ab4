#ifndef LIBSTENCILOR_RENDER_CLASSIC_CALL_H
#define LIBSTENCILOR_RENDER_CLASSIC_CALL_H

#include <libStencilor/context/context_access.h>
#include <libStencilor/render/messages.h>
#include <libStencilor/render/output.h>
#include <libStencilor/render/scopes.h>
#include <libStencilor/template/syntax_tree.h>

#include <boost/container/small_vector.hpp>

#include <string>

namespace kel::Stencilor::internal {

/// The way `buildOutput` renders one template: messages are text, names are looked up with the
/// prefixes in force, files are read each time, and nothing is counted.
/// Ownership: borrows the nodes, and the output and messages that it appends to.
/// Copying: not possible, because it represents one position in one template.
class classic_call {
  public:
    /// `errors` receives the messages; null drops them.
    classic_call(output& text, text_sink* errors) : text_(text), errors_(errors) {}
    classic_call(const classic_call&) = delete;
    classic_call& operator=(const classic_call&) = delete;

    void beginNode(const content&) {}
    void beginIteration(const for_expr&) {}

    void appendText(const std::string& text) { text_.text(text); }
    void appendValue(const ContextString& string) { text_.value(context_access::text(string)); }

    template <typename Record>
    const ContextBase* find(const scope_stack& scopes, const std::string& name, const Record&) {
        return lookup_.findInScopes(scopes, name, prefixes_);
    }

    template <typename Record>
    void report(fault reason, const std::string& name, const Record&) {
        if (errors_ != nullptr) {
            append(messageOf(reason), name);
        }
    }

    void enterLoop(const std::string& variable) { outer_.push_back(prefixes_.enter(variable)); }
    void leaveLoop() {
        prefixes_.leave(outer_.back());
        outer_.pop_back();
    }

    /// Call this between top-level nodes, before rendered ones are destroyed.
    void forgetNames() noexcept { lookup_.forgetNames(); }

    /// Renders the template in a file with the scopes of the including one. The file is read each
    /// time. Faults inside it produce no messages. A file that includes itself exhausts the stack.
    void include(const include_expr& node, scope_stack& scopes);

  private:
    void append(const message& text, const std::string& name);

    output& text_;
    text_sink* errors_;
    prefix_stack prefixes_;
    boost::container::small_vector<prefix_stack::position, 4> outer_; // one for each open loop
    name_lookup lookup_;
};

} // namespace kel::Stencilor::internal

#endif
