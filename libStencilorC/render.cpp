#include <libStencilorC/result.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

using namespace kel::Stencilor;
using namespace kel::Stencilor::internal;

namespace {

/// Creates a handle, even for a template that is not well formed.
int makeTemplate(Template parsed, stencilor_template*& made) {
    auto handle = std::make_unique<stencilor_template>(stencilor_template{std::move(parsed)});
    const bool isWellFormed = handle->parsed.isWellFormed();
    if (!isWellFormed) {
        // Rendering reports why.
        handle->rejection = std::move(handle->parsed.render(Context(Value())).messages.at(0));
        handle->fault.emplace(*handle->rejection);
    }
    made = handle.release();
    return isWellFormed ? STENCILOR_OK : STENCILOR_REJECTED;
}

Template findTemplate(TemplateSource& source, const kel::String& path) {
    std::optional<Template> found;
    const TemplateSource::Answer answer = source.find(path, UINT64_MAX, found);
    failUnlessOk(answer == TemplateSource::Answer::Found     ? STENCILOR_OK
                 : answer == TemplateSource::Answer::Missing ? STENCILOR_NOT_FOUND
                                                             : STENCILOR_UNREADABLE);
    return *found;
}

} // namespace

int stencilor_template_parse(const char* text, size_t size, const char* name, size_t nameSize,
                             stencilor_template** parsed) {
    return guarded([&] {
        stencilor_template*& made = placeOf(parsed);
        return makeTemplate(Template(given(text, size), given(name, nameSize)), made);
    });
}

int stencilor_source_find(stencilor_source* source, const char* path, size_t pathSize,
                          stencilor_template** parsed) {
    return guarded([&] {
        stencilor_template*& made = placeOf(parsed);
        return makeTemplate(findTemplate(*given(source).source, given(path, pathSize)), made);
    });
}

const char* stencilor_template_name(const stencilor_template* parsed, size_t* size) {
    return returned(parsed == nullptr ? "" : parsed->parsed.name().view(), size);
}

const char* stencilor_template_text(const stencilor_template* parsed, size_t* size) {
    return returned(parsed == nullptr ? "" : parsed->parsed.text().view(), size);
}

const stencilor_message* stencilor_template_fault(const stencilor_template* parsed) {
    return parsed == nullptr || !parsed->fault ? nullptr : &*parsed->fault;
}

int stencilor_template_render(const stencilor_template* parsed, const stencilor_context* context,
                              const stencilor_options* options, stencilor_result** result) {
    return renderToResult(options, result, [&](const RenderOptions& how) {
        return given(parsed).parsed.render(given(context).context, how);
    });
}

int stencilor_template_render_to(const stencilor_template* parsed, const stencilor_context* context,
                                 stencilor_write_function write, void* payload,
                                 const stencilor_options* options, stencilor_result** result) {
    return renderToResult(options, result, [&](const RenderOptions& how) {
        given(write);
        const auto pass = [write, payload](std::string_view piece) {
            stopUnlessZero(write(payload, piece.data(), piece.size()));
        };
        return given(parsed).parsed.renderTo(given(context).context, pass, how);
    });
}

int stencilor_render_path(const char* path, size_t pathSize, const stencilor_context* context,
                          const stencilor_options* options, stencilor_result** result) {
    return renderToResult(options, result, [&](const RenderOptions& how) {
        return renderFile(given(path, pathSize), given(context).context, how);
    });
}

void stencilor_template_free(stencilor_template* parsed) {
    delete parsed;
}
