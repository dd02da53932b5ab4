#ifndef LIBSTENCILORC_HANDLES_H
#define LIBSTENCILORC_HANDLES_H

#include <libStencilor/Template.h>
#include <libStencilorC/stencilor.h>
#include <libStencilorJson/JsonText.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The types that the handles of the interface point to.

struct stencilor_error {
    int status;
    std::string text;
    std::size_t offset = 0;
    std::size_t line = 0;
    std::size_t column = 0;
};

struct stencilor_text {
    std::string text;
};

struct stencilor_value {
    kel::Stencilor::Value value;
};

struct stencilor_context {
    kel::Stencilor::Context context;
};

/// A message, held by a result or a template. Its text is created on first use, on whichever thread
/// that is: few hosts read every string.
struct stencilor_message {
    explicit stencilor_message(const kel::Stencilor::RenderMessage& source) : message(&source) {}
    stencilor_message(stencilor_message&& other) noexcept
        : message(other.message), text(other.text.exchange(nullptr)) {}
    stencilor_message& operator=(stencilor_message&&) = delete;
    ~stencilor_message() { delete text.load(); }

    const kel::Stencilor::RenderMessage* message;
    mutable std::atomic<const kel::String*> text = nullptr;
};

struct stencilor_template {
    kel::Stencilor::Template parsed;
    std::optional<kel::Stencilor::RenderMessage> rejection{};
    std::optional<stencilor_message> fault{}; // of the member above
};

struct stencilor_source {
    std::shared_ptr<kel::Stencilor::TemplateSource> source;
    kel::Stencilor::MemoryTemplates* memory = nullptr; // the same source, if it is in memory
};

struct stencilor_request {
    const kel::String& path;
    std::uint64_t maxSize;
    std::optional<kel::Stencilor::Template>& found;
    kel::Stencilor::TemplateSource::Answer answer = kel::Stencilor::TemplateSource::Answer::Missing;
    int failure = STENCILOR_OK;
};

struct stencilor_output {
    std::string& text;
    int failure = STENCILOR_OK;
};

namespace kel::Stencilor::internal {

/// A source without templates.
class no_templates final : public TemplateSource {
  public:
    Answer find(const String&, std::uint64_t, std::optional<Template>&) override {
        return Answer::Missing;
    }
};

} // namespace kel::Stencilor::internal

struct stencilor_options {
    stencilor_options() { options.source = &none; }
    stencilor_options(const stencilor_options&) = delete;
    stencilor_options& operator=(const stencilor_options&) = delete;

    kel::Stencilor::RenderOptions options{};
    kel::Stencilor::internal::no_templates none{};
    std::shared_ptr<kel::Stencilor::TemplateSource> source{}; // null if it is `none`
    stencilor_poll_function poll = nullptr;
    void* pollPayload = nullptr;
};

struct stencilor_result {
    /// Renders in place: moving a result, or clearing its memory before, would take a good part of
    /// rendering a small page.
    template <typename Render>
    explicit stencilor_result(Render render) : rendered(render()) {}

    kel::Stencilor::RenderResult rendered;
    int stopCode = 0;
    std::vector<stencilor_message> messages{}; // of the member above
};

#endif
