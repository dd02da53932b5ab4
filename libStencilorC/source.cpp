#include <libStencilorC/border.h>
#include <libStencilorC/handles.h>

#include <memory>
#include <stdexcept>
#include <utility>

using namespace kel::Stencilor;
using namespace kel::Stencilor::internal;

namespace {

using Answer = TemplateSource::Answer;

/// The templates that a callback finds.
class CallbackTemplates final : public TemplateSource {
  public:
    CallbackTemplates(stencilor_find_function callback, void* payload)
        : find_(callback), payload_(payload) {}

    Answer find(const kel::String& path, std::uint64_t maxBytes,
                std::optional<Template>& found) override {
        stencilor_request request{path, maxBytes, found};
        const int code = find_(payload_, path.view().data(), path.size(), &request);
        failUnlessOk(request.failure);
        stopUnlessZero(code);
        return request.answer;
    }

  private:
    stencilor_find_function find_;
    void* payload_;
};

/// Answers with a template parsed from text of `size` bytes. If that fails, so does the render.
template <typename Make>
int answer(stencilor_request* request, Make make) noexcept {
    const int status = guarded([&] {
        const auto [size, makeTemplate] = make();
        const bool fits = size <= given(request).maxSize;
        if (fits) {
            request->found.emplace(makeTemplate());
        }
        request->answer = fits ? Answer::Found : Answer::TooLarge;
    });
    if (request != nullptr && status != STENCILOR_OK) {
        request->failure = status;
    }
    return status;
}

#ifdef STENCILOR_C_FOLDERS

std::shared_ptr<TemplateSource> openFolder(const kel::String& path) {
    try {
        return std::make_shared<FileTemplates>(path);
    } catch (const std::invalid_argument&) {
        throw call_failure{STENCILOR_NOT_FOUND};
    }
}

#else

std::shared_ptr<TemplateSource> openFolder(const kel::String&) {
    throw call_failure{STENCILOR_UNSUPPORTED};
}

#endif

} // namespace

int stencilor_source_memory(stencilor_source** source) {
    return guarded([&] {
        stencilor_source*& made = placeOf(source);
        auto memory = std::make_shared<MemoryTemplates>();
        MemoryTemplates* const templates = memory.get();
        made = new stencilor_source{std::move(memory), templates};
    });
}

int stencilor_source_add(stencilor_source* source, const char* path, size_t pathSize,
                         const char* text, size_t size) {
    return guarded([&] {
        MemoryTemplates* const memory = given(source).memory;
        failUnlessOk(memory == nullptr ? STENCILOR_WRONG_KIND : STENCILOR_OK);
        memory->add(given(path, pathSize), given(text, size));
    });
}

int stencilor_source_folder(const char* path, size_t size, stencilor_source** source) {
    return guarded([&] {
        stencilor_source*& made = placeOf(source);
        made = new stencilor_source{openFolder(given(path, size))};
    });
}

int stencilor_source_callback(stencilor_find_function find, void* payload,
                              stencilor_source** source) {
    return guarded([&] {
        stencilor_source*& made = placeOf(source);
        given(find);
        made = new stencilor_source{std::make_shared<CallbackTemplates>(find, payload)};
    });
}

void stencilor_source_free(stencilor_source* source) {
    delete source;
}

uint64_t stencilor_request_max_size(const stencilor_request* request) {
    return request == nullptr ? 0 : request->maxSize;
}

int stencilor_request_set_text(stencilor_request* request, const char* text, size_t size) {
    return answer(request, [&] {
        const std::string_view passed = given(text, size);
        return std::pair(passed.size(), [=] { return Template(passed, request->path); });
    });
}

int stencilor_request_set_template(stencilor_request* request, const stencilor_template* parsed) {
    return answer(request, [&] {
        const Template& passed = given(parsed).parsed;
        return std::pair(std::size_t(passed.text().size()), [&passed] { return passed; });
    });
}

int stencilor_request_set_unreadable(stencilor_request* request) {
    return guarded([&] { given(request).answer = Answer::Unreadable; });
}
