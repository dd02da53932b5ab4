#ifndef LIBSTENCILOR_MODERN_METERED_CALL_H
#define LIBSTENCILOR_MODERN_METERED_CALL_H

#include <libStencilor/context/context_access.h>
#include <libStencilor/modern/escaper.h>
#include <libStencilor/modern/piecewise_output.h>
#include <libStencilor/modern/render_state.h>
#include <libStencilor/render/messages.h>
#include <libStencilor/render/scopes.h>
#include <libStencilor/template/syntax_tree.h>

#include <string>
#include <string_view>
#include <typeinfo>

namespace kel::Stencilor::internal {

/// The means to render text: the state of the render, the escape, and the output.
struct render_tools {
    render_state& state;
    piecewise_output& text;
    escaper& escape;
};

/// The way a `Template` renders one template: resources are counted and limited, values are
/// escaped, messages have locations, names are looked up by the keys of a table, and includes come
/// from a source.
/// Ownership: borrows everything.
/// Copying: not possible, because it represents one position in one template.
class metered_call {
  public:
    metered_call(const render_tools& tools, const parsed_template& in)
        : state_(tools.state), text_(tools.text), escape_(tools.escape), in_(in),
          plain_(tools.escape.isNone()), html_(tools.escape.isHtml()), names_(*in.names) {}
    metered_call(const metered_call&) = delete;
    metered_call& operator=(const metered_call&) = delete;

    void beginNode(const content& node) {
        node_ = &node;
        state_.step(in_, [this] { return place(); });
    }

    void beginIteration(const for_expr& loop) {
        state_.step(in_, [this, &loop] { return placeOf(useOf(loop)); });
    }

    void appendText(const std::string& text) {
        if (!text_.text(text)) {
            endAtOutputLimit();
        }
    }

    void appendValue(const ContextString& string) {
        const String& value = context_access::text(string);
        if (plain_ || isRaw(string)) {
            appendBytes(value.view());
        } else if (!html_ || !appendPlainHtml(value.view())) {
            appendBytes(escape_.escape(upToNul(value.view())));
        }
    }

    template <typename Record>
    const ContextBase* find(const scope_stack& scopes, const std::string&, const Record& node) {
        const name_use& use = useOf(node);
        const String* const key = names_.firstKey(use);
        if (key != nullptr) {
            const ContextBase* found = scopes.guessInnermost(*key, state_.guessOf(use));
            if (found != nullptr) {
                state_.countKey(in_, [this] { return place(); });
                return found;
            }
        }
        return search(scopes, use);
    }

    template <typename Record>
    void report(fault reason, const std::string&, const Record& node) {
        if (state_.wantsMessage()) {
            addMessage(reason, useOf(node));
        }
    }

    void enterLoop(const std::string&) {}
    void leaveLoop() {}

    void include(const include_expr& node, scope_stack& scopes);

  private:
    template <typename Record>
    const name_use& useOf(const Record& node) const {
        return names_.use(record_memory::numberOf(&node));
    }

    static bool isRaw(const ContextString& string) {
        return typeid(string) != typeid(ContextString) &&
               dynamic_cast<const ContextRawString*>(&string) != nullptr;
    }

    bool appendPlainHtml(std::string_view value) {
        return text_.writeIfRoom(escaper::mostHtml(value.size()), [value](char* out) {
            return escaper::writePlainHtml(value, out);
        });
    }

    void appendBytes(std::string_view value) {
        if (!text_.value(value)) {
            endAtOutputLimit();
        }
    }

    node_place place() const;
    [[noreturn]] void endAtOutputLimit();
    const ContextBase* search(const scope_stack& scopes, const name_use& use);
    const ContextBase* findByAllKeys(const scope_stack& scopes, const name_use& use);
    void addMessage(fault reason, const name_use& use);
    void renderIncluded(const Template& included, const name_use& use, scope_stack& scopes);

    render_state& state_;
    piecewise_output& text_;
    escaper& escape_;
    const parsed_template& in_;
    const bool plain_; // whether values are not escaped
    const bool html_;  // whether they are escaped for HTML
    const name_table& names_;
    const content* node_ = nullptr; // the current node
};

} // namespace kel::Stencilor::internal

#endif
