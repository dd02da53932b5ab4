#include "engines.h"

#include <kainjow/mustache.hpp>

#include <optional>

namespace bench {

namespace {

using kainjow::mustache::data;
using kainjow::mustache::mustache;

data toData(const value& from);

data toObject(const object& from) {
    data converted(data::type::object);
    for (const auto& [name, member] : from) {
        converted.set(name, toData(member));
    }
    return converted;
}

struct converter {
    data operator()(const std::string& text) const { return data(text); }
    data operator()(bool truth) const { return data(truth); }
    data operator()(const object& members) const { return toObject(members); }
    data operator()(const list& elements) const {
        data converted(data::type::list);
        for (const value& element : elements) {
            converted.push_back(toData(element));
        }
        return converted;
    }
};

data toData(const value& from) {
    return std::visit(converter(), from.held);
}

} // namespace

renderer mustacheRenderer(const std::string& templateText, const object& data, parsing when) {
    struct state {
        std::string text;
        kainjow::mustache::data context;
        std::optional<mustache> beforehand;
        std::string output;
    };
    auto shared = std::make_shared<state>(state{templateText, toObject(data), {}, {}});
    if (when == parsing::beforehand) {
        shared->beforehand.emplace(templateText);
    }
    return {[shared] {
                shared->output = shared->beforehand
                                     ? shared->beforehand->render(shared->context)
                                     : mustache(shared->text).render(shared->context);
                return shared->output.size();
            },
            [shared] { return shared->output; }};
}

} // namespace bench
