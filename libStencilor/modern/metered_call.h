#ifndef LIBSTENCILOR_MODERN_METERED_CALL_H
#define LIBSTENCILOR_MODERN_METERED_CALL_H

#include <libStencilor/context/context_access.h>
#include <libStencilor/modern/escaper.h>
#include <libStencilor/modern/piecewise_output.h>
#include <libStencilor/modern/render_state.h>
#include <libStencilor/render/messages.h>
#include <libStencilor/render/scopes.h>
#include <libStencilor/template/syntax_tree.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <typeinfo>

namespace kel::Stencilor::internal {

/// What renders a text: the state of the render, and where values and texts go.
struct render_tools {
    render_state& state;
    piecewise_output& text;
    escaper& escape;
};

/// How a `Template` renders one template: what is taken is counted and limited, values are escaped,
/// messages have a place, names are found by the keys of a table, and includes come from a source.
/// Ownership: borrows everything.
/// Copying: not possible, it represents one place in one template.
class metered_call {
  public:
    metered_call(const render_tools& tools, const parsed_template& in)
        : state_(tools.state), text_(tools.text), escape_(tools.escape), in_(in) {}
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
        if (!state_.hasRoomFor(text.size())) {
            endAtOutputLimit();
        }
        state_.countOutput(text.size());
        text_.text(text);
    }

    void appendValue(const ContextString& string) {
        const String& value = context_access::text(string);
        if (escape_.isNone() || isRaw(string)) {
            appendBytes(value.view());
        } else {
            appendBytes(escape_.escape(upToNul(value.view())));
        }
    }

    template <typename Record>
    const ContextBase* find(const scope_stack& scopes, const std::string&, const Record& node) {
        const name_use& use = useOf(node);
        if (!in_.names->keepsAllKeys(use)) {
            return findByAllKeys(scopes, use);
        }
        const auto keys = in_.names->keptKeys(use);
        return scopes.findFirst(searchOf(use), [this, keys](const ContextBase& scope) {
            const ContextBase* found = nullptr;
            for (auto key = keys.begin(); found == nullptr && key != keys.end(); ++key) {
                state_.countKey(in_, [this] { return place(); });
                found = findIn(scope, *key);
            }
            return found;
        });
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
        return in_.names->use(record_memory::numberOf(&node));
    }

    /// What is remembered for the keys of a name, as far as there is room.
    outer_search& searchOf(const name_use& use) {
        remembered& slot = remembered_[use.keys % remembered_.size()];
        if (slot.keys != use.keys) {
            slot = {use.keys, {}};
        }
        return slot.search;
    }

    static const ContextBase* findIn(const ContextBase& scope, const String& key) {
        const auto& children = context_access::children(scope);
        const auto found = children.find(key);
        return found == children.end() ? nullptr : found->second;
    }

    static bool isRaw(const ContextString& string) {
        return typeid(string) != typeid(ContextString) &&
               dynamic_cast<const ContextRawString*>(&string) != nullptr;
    }

    void appendBytes(std::string_view value) {
        if (!state_.hasRoomFor(value.size()) && !state_.hasRoomFor(upToNul(value).size())) {
            endAtOutputLimit();
        }
        state_.countOutput(text_.value(value));
    }

    node_place place() const;
    [[noreturn]] void endAtOutputLimit();
    const ContextBase* findByAllKeys(const scope_stack& scopes, const name_use& use);
    void addMessage(fault reason, const name_use& use);
    void renderIncluded(const Template& included, const name_use& use, scope_stack& scopes);

    render_state& state_;
    piecewise_output& text_;
    escaper& escape_;
    const parsed_template& in_;
    const content* node_ = nullptr; // the one that is rendered

    struct remembered {
        std::uint32_t keys = 0;
        outer_search search{};
    };
    std::array<remembered, 16> remembered_{};
};

} // namespace kel::Stencilor::internal

#endif
