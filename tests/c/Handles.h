#ifndef TESTS_C_HANDLES_H
#define TESTS_C_HANDLES_H

#include "../support/Test.h"

#include <libStencilorC/stencilor.h>

// Handles that free themselves, and calls that must succeed.

namespace support {

template <auto freeHandle>
struct Free {
    template <typename T>
    void operator()(T* handle) const {
        freeHandle(handle);
    }
};

using ErrorHandle = std::unique_ptr<stencilor_error, Free<stencilor_error_free>>;
using TextHandle = std::unique_ptr<stencilor_text, Free<stencilor_text_free>>;
using ValueHandle = std::unique_ptr<stencilor_value, Free<stencilor_value_free>>;
using ContextHandle = std::unique_ptr<stencilor_context, Free<stencilor_context_free>>;
using TemplateHandle = std::unique_ptr<stencilor_template, Free<stencilor_template_free>>;
using SourceHandle = std::unique_ptr<stencilor_source, Free<stencilor_source_free>>;
using OptionsHandle = std::unique_ptr<stencilor_options, Free<stencilor_options_free>>;
using ResultHandle = std::unique_ptr<stencilor_result, Free<stencilor_result_free>>;

/// Lets a function store the handle that it creates: `f(..., out(handle))`.
template <typename Handle>
class Out {
  public:
    explicit Out(Handle& handle) : handle_(handle) {}
    Out(const Out&) = delete;
    Out& operator=(const Out&) = delete;
    ~Out() { handle_.reset(made_); }
    operator typename Handle::element_type **() { return &made_; }

  private:
    Handle& handle_;
    typename Handle::element_type* made_ = nullptr;
};

template <typename Handle>
Out<Handle> out(Handle& handle) {
    return Out<Handle>(handle);
}

inline TemplateHandle parse(std::string_view text, std::string_view name = "page") {
    TemplateHandle made;
    stencilor_template_parse(text.data(), text.size(), name.data(), name.size(), out(made));
    EXPECT_NE(made, nullptr);
    return made;
}

inline ValueHandle valueOf(std::string_view json) {
    ValueHandle made;
    EXPECT_EQ(stencilor_value_parse_json(json.data(), json.size(), out(made), nullptr),
              STENCILOR_OK);
    return made;
}

inline ContextHandle contextOf(const stencilor_value* value, int flags = 0) {
    ContextHandle made;
    EXPECT_EQ(stencilor_context_create(value, flags, out(made), nullptr), STENCILOR_OK);
    return made;
}

inline ContextHandle contextOf(std::string_view json, int flags = 0) {
    return contextOf(valueOf(json).get(), flags);
}

inline OptionsHandle makeOptions() {
    OptionsHandle made;
    EXPECT_EQ(stencilor_options_create(out(made)), STENCILOR_OK);
    return made;
}

inline SourceHandle makeMemory() {
    SourceHandle made;
    EXPECT_EQ(stencilor_source_memory(out(made)), STENCILOR_OK);
    return made;
}

inline void add(const SourceHandle& source, std::string_view path, std::string_view text) {
    EXPECT_EQ(
        stencilor_source_add(source.get(), path.data(), path.size(), text.data(), text.size()),
        STENCILOR_OK);
}

inline ResultHandle render(const TemplateHandle& parsed, const ContextHandle& context,
                           const stencilor_options* options = nullptr) {
    ResultHandle made;
    const int status = stencilor_template_render(parsed.get(), context.get(), options, out(made));
    EXPECT_EQ(status, stencilor_result_status(made.get()));
    return made;
}

/// The text that a function returns for a handle; a NUL must follow it.
template <typename Function, typename... Arguments>
std::string textOf(Function function, Arguments... arguments) {
    std::size_t size = SIZE_MAX;
    const char* const text = function(arguments..., &size);
    EXPECT_EQ(text[size], '\0');
    EXPECT_EQ(function(arguments..., nullptr), text);
    return std::string(text, size);
}

inline std::string textOf(const ResultHandle& result) {
    return textOf(stencilor_result_text, result.get());
}

inline std::string textOf(const TextHandle& text) {
    return textOf(stencilor_text_data, text.get());
}

inline std::string textOf(const stencilor_message* message) {
    return textOf(stencilor_message_text, message);
}

} // namespace support

#endif
