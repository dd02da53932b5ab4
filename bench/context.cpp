#include "context.h"

#include <string>
#include <utility>

namespace bench {

namespace {

using namespace kel::Stencilor;

struct context_maker {
    ContextBase* operator()(const std::string& text) const {
        return ContextFactory::buildString(text);
    }
    ContextBase* operator()(bool isTrue) const { return ContextFactory::buildBoolean(isTrue); }
    ContextBase* operator()(const object& members) const { return toContext(members).release(); }
    ContextBase* operator()(const list& elements) const {
        auto iterable = std::make_unique<ContextIterable>();
        for (const value& element : elements) {
            iterable->add(std::visit(*this, element.held));
        }
        return iterable.release();
    }
    ContextBase* operator()(const partial&) const { return nullptr; }
};

struct value_maker {
    Value operator()(const std::string& text) const { return Value(text); }
    Value operator()(bool isTrue) const { return Value(isTrue); }
    Value operator()(const object& members) const { return toValue(members); }
    Value operator()(const list& elements) const {
        return Value::list(elements,
                           [this](const value& each) { return std::visit(*this, each.held); });
    }
    Value operator()(const partial&) const { return Value(nullptr); }
};

bool isData(const value& member) {
    return !std::holds_alternative<partial>(member.held);
}

} // namespace

std::unique_ptr<ContextDictionary> toContext(const object& from) {
    auto dictionary = std::make_unique<ContextDictionary>();
    for (const auto& [name, member] : from) {
        if (isData(member)) {
            dictionary->insert(name, std::visit(context_maker(), member.held));
        }
    }
    return dictionary;
}

Value toValue(const object& from) {
    Value dictionary;
    for (const auto& [name, member] : from) {
        if (isData(member)) {
            dictionary.set(name, std::visit(value_maker(), member.held));
        }
    }
    return dictionary;
}

} // namespace bench
