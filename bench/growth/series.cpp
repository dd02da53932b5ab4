#include "series.h"

#include <fstream>
#include <utility>

namespace bench {

namespace {

using namespace kel::Stencilor;

std::string repeated(const std::string& text, std::size_t count) {
    std::string all;
    all.reserve(text.size() * count);
    for (; count > 0; --count) {
        all += text;
    }
    return all;
}

std::unique_ptr<ContextDictionary> names() {
    auto context = std::make_unique<ContextDictionary>();
    context->insert("a", ContextFactory::buildString("value"));
    context->insert("yes", ContextFactory::buildBoolean(true));
    return context;
}

sample templateBytes(std::size_t size) {
    return {repeated("text, ", size / 6), names()};
}

sample tags(std::size_t count) {
    return {repeated("{{ a }}\n", count), names()};
}

sample rows(std::size_t count) {
    auto context = names();
    auto* const list = ContextFactory::buildIterable();
    context->insert("rows", list);
    for (; count > 0; --count) {
        auto* const row = ContextFactory::buildDictionary();
        row->insert("cell", ContextFactory::buildString("value"));
        list->add(row);
    }
    return {"{% for row in rows %}{{ row.cell }}\n{% endfor %}", std::move(context)};
}

sample nesting(std::size_t depth) {
    return {repeated("{% if yes %}", depth) + "{{ a }}" + repeated("{% endif %}", depth), names()};
}

/// Ten thousand names are looked up, regardless of the width.
sample width(std::size_t entries) {
    auto context = names();
    for (std::size_t number = 0; number < entries; ++number) {
        context->insert("entry" + std::to_string(number), ContextFactory::buildBoolean(false));
    }
    return {repeated("{{ a }}", 10000), std::move(context)};
}

sample messages(std::size_t count) {
    return {repeated("{{ missing }}", count), names()};
}

sample includes(std::size_t count) {
    constexpr const char* path = "bench_growth.txt";
    std::ofstream(path, std::ios::binary) << "{{ a }}\n";
    return {repeated(std::string("{% include \"") + path + "\" %}", count), names()};
}

} // namespace

std::vector<series> allSeries() {
    return {{"template_bytes", 10000, templateBytes},
            {"tags", 1000, tags},
            {"rows", 1000, rows},
            {"nesting", 1000, nesting},
            {"width", 100, width},
            {"messages", 1000, messages},
            {"includes", 100, includes}};
}

} // namespace bench
