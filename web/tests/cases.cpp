// Writes random templates with values and what this build renders from them, one JSON document per
// line, for comparison with the npm package.

#include "../../tests/support/oracles/RandomValue.h"

#include <libStencilor/Template.h>
#include <libStencilorJson/Json.h>

#include <cstdlib>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

using namespace kel::Stencilor;
using support::Random;
using Json = nlohmann::json;

namespace {

const std::vector<std::string> paths = {"a", "parts/b", "c"};

/// JavaScript cannot pass malformed UTF-8.
std::string repaired(const std::string& bytes) {
    kel::String text;
    text.UTF8Decode(bytes.data(), static_cast<unsigned int>(bytes.size()), false);
    return text.str();
}

struct JsonMaker {
    using Made = Json;

    static Json dictionary() { return Json::object(); }
    static Json list() { return Json::array(); }
    static Json boolean(bool isTrue) { return isTrue; }

    static Json scalar(Random& random, const std::string& text) {
        const auto integer = static_cast<std::int64_t>(random.below(1u << 30));
        switch (random.below(6)) {
        case 0:
            return nullptr;
        case 1:
            return integer - (1 << 29);
        case 2:
            return static_cast<double>(integer) / (random.oneIn(2) ? 1e3 : 1e13);
        default:
            return repaired(text);
        }
    }

    static void set(Json& dictionary, const std::string& key, Json member) {
        dictionary[key] = std::move(member);
    }
    static void add(Json& list, Json item) { list.push_back(std::move(item)); }
};

Json describe(const RenderResult& result) {
    Json messages = Json::array();
    for (const RenderMessage& message : result.messages) {
        Json sites = Json::array();
        for (const IncludeSite& site : message.includedFrom) {
            sites.push_back({site.templateName.str(), site.line, site.column});
        }
        messages.push_back({message.text().str(), message.name.str(), message.templateName.str(),
                            message.line, message.column, std::move(sites)});
    }
    const RenderUsage& usage = result.usage;
    return {{"isComplete", result.status == RenderStatus::Complete},
            {"text", result.text.str()},
            {"messages", std::move(messages)},
            {"usage",
             {usage.steps, usage.outputBytes, usage.templateBytes, usage.includeDepth,
              usage.messages}}};
}

Json makeCase(std::uint64_t seed) {
    Random random(seed);
    MemoryTemplates source;
    Json templates = Json::object();
    for (const std::string& path : paths) {
        if (!random.oneIn(5)) {
            templates[path] = repaired(randomTemplate(random, 6, paths));
            source.add(path, templates[path].get<std::string>());
        }
    }
    const std::string text = repaired(randomTemplate(random, 30, paths));
    const Json values = support::RandomValue<JsonMaker>(random).dictionary(3);
    const bool positions = random.oneIn(4);
    const std::size_t escape = random.below(3);
    const Escape escapes[] = {Escape::none(), Escape::html(), Escape::json()};
    const char* const names[] = {"none", "html", "json"};
    const RenderLimits limits{.steps = 1 + random.below(5000), .includeDepth = 8};
    const Context context(valueFromJson(values), {.positions = positions});
    const RenderResult result =
        Template(text, "page")
            .render(context, {.escape = escapes[escape], .source = &source, .limits = limits});
    return {{"text", text},           {"templates", templates},    {"values", values},
            {"positions", positions}, {"escape", names[escape]},   {"steps", limits.steps},
            {"seed", seed},           {"result", describe(result)}};
}

} // namespace

int main(int count, char** arguments) {
    const std::uint64_t cases = count > 1 ? std::strtoull(arguments[1], nullptr, 10) : 1;
    for (std::uint64_t seed = 1; seed <= cases; ++seed) {
        std::cout << makeCase(seed).dump() << '\n';
    }
}
