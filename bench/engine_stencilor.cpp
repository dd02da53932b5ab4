#include "engines.h"

#include <libStencilor/Stencilor.h>

namespace bench {

namespace {

using namespace kel::Stencilor;

ContextBase* toContext(const value& from);

std::unique_ptr<ContextDictionary> toDictionary(const object& from) {
    auto dictionary = std::make_unique<ContextDictionary>();
    for (const auto& [name, member] : from) {
        dictionary->insert(name, toContext(member));
    }
    return dictionary;
}

struct converter {
    ContextBase* operator()(const std::string& text) const {
        return ContextFactory::buildString(text);
    }
    ContextBase* operator()(bool truth) const { return ContextFactory::buildBoolean(truth); }
    ContextBase* operator()(const object& members) const { return toDictionary(members).release(); }
    ContextBase* operator()(const list& elements) const {
        auto iterable = std::make_unique<ContextIterable>();
        for (const value& element : elements) {
            iterable->add(toContext(element));
        }
        return iterable.release();
    }
};

ContextBase* toContext(const value& from) {
    return std::visit(converter(), from.held);
}

} // namespace

renderer stencilorRenderer(const std::string& templateText, const object& data) {
    struct state {
        kel::String text;
        std::unique_ptr<ContextDictionary> context;
        kel::String output;
    };
    auto shared = std::make_shared<state>(state{templateText, toDictionary(data), {}});
    return {[shared] {
                kel::String errors;
                shared->output = buildOutput(shared->text, *shared->context, errors);
                return std::size_t{shared->output.size()};
            },
            [shared] { return shared->output.str(); }};
}

std::function<std::size_t()> stencilorForThreads(const std::string& templateText,
                                                 const object& data) {
    struct state {
        kel::String text;
        std::unique_ptr<ContextDictionary> context;
    };
    const auto shared = std::make_shared<const state>(state{templateText, toDictionary(data)});
    return [shared] {
        kel::String errors;
        return std::size_t{buildOutput(shared->text, *shared->context, errors).size()};
    };
}

} // namespace bench
