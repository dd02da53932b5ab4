#include "context.h"

#include <string>

namespace bench {

namespace {

using namespace kel::Stencilor;

struct converter {
    ContextBase* operator()(const std::string& text) const {
        return ContextFactory::buildString(text);
    }
    ContextBase* operator()(bool truth) const { return ContextFactory::buildBoolean(truth); }
    ContextBase* operator()(const object& members) const { return toContext(members).release(); }
    ContextBase* operator()(const list& elements) const {
        auto iterable = std::make_unique<ContextIterable>();
        for (const value& element : elements) {
            iterable->add(std::visit(*this, element.held));
        }
        return iterable.release();
    }
};

} // namespace

std::unique_ptr<ContextDictionary> toContext(const object& from) {
    auto dictionary = std::make_unique<ContextDictionary>();
    for (const auto& [name, member] : from) {
        dictionary->insert(name, std::visit(converter(), member.held));
    }
    return dictionary;
}

} // namespace bench
