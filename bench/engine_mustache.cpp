#include "engines.h"

#include <kainjow/mustache.hpp>

#include <filesystem>
#include <fstream>
#include <optional>

namespace bench {

namespace {

using kainjow::mustache::data;
using kainjow::mustache::mustache;

constexpr const char* directory = "mustache";

std::string readFile(const std::string& path) {
    std::string text(std::filesystem::file_size(path), '\0');
    std::ifstream(path, std::ios::binary).read(text.data(), static_cast<long>(text.size()));
    return text;
}

/// Converts values. Partials are functions that return text, which the engine parses each time it
/// renders the partial.
struct converter {
    data operator()(const std::string& text) const { return data(text); }
    data operator()(bool isTrue) const { return data(isTrue); }
    data operator()(const object& members) const {
        data converted(data::type::object);
        for (const auto& [name, member] : members) {
            converted.set(name, std::visit(*this, member.held));
        }
        return converted;
    }
    data operator()(const list& elements) const {
        data converted(data::type::list);
        for (const value& element : elements) {
            converted.push_back(std::visit(*this, element.held));
        }
        return converted;
    }
    data operator()(const partial& included) const {
        if (when == parsing::everyCall) {
            return data(kainjow::mustache::partial(
                [path = directory + ("/" + included.path)] { return readFile(path); }));
        }
        return data(
            kainjow::mustache::partial([text = templates.at(included.path)] { return text; }));
    }

    const std::map<std::string, std::string>& templates;
    parsing when;
};

} // namespace

renderer mustacheRenderer(const workload& work, parsing when) {
    struct state {
        std::string text;
        kainjow::mustache::data context;
        std::optional<mustache> beforehand;
        std::string output;
    };
    const page own = translated(work.text, language::mustache, work.escaped);
    writeFiles(directory, own);
    auto shared =
        std::make_shared<state>(state{own.text, converter{own.included, when}(work.data), {}, {}});
    if (when == parsing::beforehand) {
        shared->beforehand.emplace(own.text);
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
