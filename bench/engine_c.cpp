#include "engines.h"

#include <libStencilorC/stencilor.hpp>

namespace bench {

namespace {

stencilor::Value toCValue(const value& from);

stencilor::Value toCValue(const object& from) {
    stencilor::Value made;
    for (const auto& [key, member] : from) {
        if (!std::holds_alternative<partial>(member.held)) {
            made.set(key, toCValue(member));
        }
    }
    return made;
}

stencilor::Value toCValue(const value& from) {
    if (const auto* const text = std::get_if<std::string>(&from.held)) {
        return *text;
    }
    if (const auto* const held = std::get_if<bool>(&from.held)) {
        return *held;
    }
    if (const auto* const members = std::get_if<object>(&from.held)) {
        return toCValue(*members);
    }
    auto made = stencilor::Value::list();
    for (const value& item : std::get<list>(from.held)) {
        made.add(toCValue(item));
    }
    return made;
}

/// The state that a host keeps between renders.
struct handles {
    explicit handles(const workload& work)
        : handles(work, translated(work.text, language::stencilor, work.escaped)) {}

    handles(const workload& work, const page& from)
        : parsed(from.text), context(toCValue(work.data)) {
        auto source = stencilor::Source::memory();
        for (const auto& [path, text] : from.included) {
            source.add(path, text);
        }
        options.setSource(source);
        options.setEscape(work.escaped ? STENCILOR_ESCAPE_HTML : STENCILOR_ESCAPE_NONE);
    }
    handles(const handles&) = delete;
    handles& operator=(const handles&) = delete;
    ~handles() { stencilor_result_free(result); }

    std::size_t render() {
        stencilor_result_free(result);
        stencilor_template_render(parsed.get(), context.get(), options.get(), &result);
        return text().size();
    }

    std::string_view text() const {
        std::size_t size = 0;
        const char* const bytes = stencilor_result_text(result, &size);
        return {bytes, size};
    }

    stencilor::Template parsed;
    stencilor::Context context;
    stencilor::Options options;
    stencilor_result* result = nullptr;
};

} // namespace

renderer cRenderer(const workload& work) {
    const auto shared = std::make_shared<handles>(work);
    return {[shared] { return shared->render(); },
            [shared] { return std::string(shared->text()); }};
}

} // namespace bench
