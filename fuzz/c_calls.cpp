#include "../tests/support/oracles/ObviousUtf8.h"
#include "target.h"

#include <libStencilorC/stencilor.h>

#include <algorithm>
#include <array>
#include <string_view>

// Any sequence of calls through C, with handles that are null, in use, moved from, and freed in any
// order: each call returns a status, and every string is valid UTF-8.

namespace {

/// Reads the input: bytes that make choices, and strings, each preceded by its size.
class Input {
  public:
    explicit Input(std::string_view bytes) : rest_(bytes) {}

    bool isAtEnd() const { return rest_.empty(); }

    unsigned int byte() {
        const unsigned int taken = rest_.empty() ? 0 : static_cast<unsigned char>(rest_.front());
        rest_.remove_prefix(rest_.empty() ? 0 : 1);
        return taken;
    }

    std::string_view text() {
        const std::string_view taken = rest_.substr(0, byte());
        rest_.remove_prefix(taken.size());
        return taken;
    }

  private:
    std::string_view rest_;
};

constexpr std::size_t slots = 3;

/// A few handles of one kind, freed at the end.
template <typename T, void (*freeHandle)(T*)>
class Handles {
  public:
    Handles() = default;
    Handles(const Handles&) = delete;
    Handles& operator=(const Handles&) = delete;
    ~Handles() { std::for_each(handles_.begin(), handles_.end(), freeHandle); }

    /// One of the handles, often null.
    T* any(Input& input) { return at(input); }

    /// A place where a call can store a handle.
    T** place(Input& input) {
        T*& handle = at(input);
        freeHandle(handle);
        handle = nullptr;
        return &handle;
    }

  private:
    T*& at(Input& input) { return handles_[input.byte() % slots]; }

    std::array<T*, slots> handles_{};
};

void check(int status) {
    fuzz::require(status >= STENCILOR_OK && status < STENCILOR_INTERNAL_ERROR,
                  "a call ends with a status");
}

void checkText(const char* text, std::size_t size) {
    const std::string_view view(text, size);
    fuzz::require(text[size] == '\0', "a NUL follows a text");
    fuzz::require(view == support::obviouslyRepairedUtf8(view), "a text is valid UTF-8");
}

/// The answers of callbacks; each byte of the input decides one.
struct Callbacks {
    Input* input;
    stencilor_template* parsed = nullptr;

    static Callbacks& of(void* payload) { return *static_cast<Callbacks*>(payload); }
    int code() { return input->byte() % 16 == 1 ? 7 : 0; }

    static int write(void* payload, const char*, std::size_t size) {
        fuzz::require(size > 0, "no piece is empty");
        return of(payload).code();
    }
    static int escape(void* payload, const char* text, std::size_t size, stencilor_output* output) {
        check(stencilor_output_append(output, text, size));
        return of(payload).code();
    }
    static int poll(void* payload) { return of(payload).code(); }
    static int find(void* payload, const char*, std::size_t, stencilor_request* request) {
        Input& input = *of(payload).input;
        const std::string_view text = input.text();
        switch (input.byte() % 4) {
        case 0:
            check(stencilor_request_set_text(request, text.data(), text.size()));
            break;
        case 1:
            check(stencilor_request_set_template(request, of(payload).parsed));
            break;
        case 2:
            check(stencilor_request_set_unreadable(request));
            break;
        default:
            break;
        }
        return of(payload).code();
    }
};

class Calls {
  public:
    explicit Calls(std::string_view bytes) : input_(bytes) {}

    void run() {
        while (!input_.isAtEnd()) {
            call(input_.byte() % 32);
        }
    }

  private:
    void call(unsigned int number) {
        if (number < 10) {
            callOfValues(number);
        } else if (number < 18) {
            callOfSettings(number);
        } else if (number < 26) {
            callOfRenders(number);
        } else {
            callOfTexts(number);
        }
    }

    void callOfValues(unsigned int number) {
        const std::string_view text = input_.text();
        stencilor_value* const value = values_.any(input_);
        const double real = static_cast<double>(input_.byte()) / 7;
        switch (number) {
        case 0:
            return check(stencilor_value_list(values_.place(input_)));
        case 1:
            return check(stencilor_value_dictionary(values_.place(input_)));
        case 2:
            return check(stencilor_value_parse_json(text.data(), text.size(), values_.place(input_),
                                                    errors_.place(input_)));
        case 3:
            return check(stencilor_value_add(value, values_.any(input_)));
        case 4:
            return check(stencilor_value_set(value, text.data(), text.size(), values_.any(input_)));
        case 5:
            return check(stencilor_value_add_text(value, text.data(), text.size()));
        case 6:
            return check(stencilor_value_set_raw_text(value, text.data(), text.size(), text.data(),
                                                      text.size()));
        case 7:
            return check(stencilor_value_set_double(value, text.data(), text.size(), real));
        case 8:
            return copyValue(value);
        default:
            return check(stencilor_context_create(value, static_cast<int>(input_.byte() % 5),
                                                  contexts_.place(input_), errors_.place(input_)));
        }
    }

    /// Doubling without end would exhaust memory.
    void copyValue(const stencilor_value* value) {
        if (++copies_ <= 8) {
            stencilor_value* copy = nullptr;
            check(stencilor_value_copy(value, &copy));
            *values_.place(input_) = copy;
        }
    }

    void callOfSettings(unsigned int number) {
        const std::string_view text = input_.text();
        stencilor_options* const options = options_.any(input_);
        stencilor_source* const source = sources_.any(input_);
        switch (number) {
        case 10:
            return createOptions(options_.place(input_));
        case 11:
            return check(stencilor_options_set_escape(options, static_cast<int>(text.size() % 4)));
        case 12:
            return check(
                stencilor_options_set_escape_function(options, Callbacks::escape, &callbacks_));
        case 13:
            return check(stencilor_options_set_limit(options, static_cast<int>(input_.byte() % 6),
                                                     input_.byte() + 1));
        case 14:
            return check(stencilor_options_set_poll(options, Callbacks::poll, &callbacks_));
        case 15:
            return check(stencilor_options_set_source(options, source));
        case 16:
            return check(input_.byte() % 2 == 0
                             ? stencilor_source_memory(sources_.place(input_))
                             : stencilor_source_callback(Callbacks::find, &callbacks_,
                                                         sources_.place(input_)));
        default:
            return check(stencilor_source_add(source, "a", 1, text.data(), text.size()));
        }
    }

    /// Without a limit, templates that include themselves twice would never end.
    static void createOptions(stencilor_options** options) {
        check(stencilor_options_create(options));
        check(stencilor_options_set_limit(*options, STENCILOR_LIMIT_STEPS, 2'000));
    }

    void callOfRenders(unsigned int number) {
        const std::string_view text = input_.text();
        stencilor_template* const parsed = templates_.any(input_);
        const stencilor_context* const context = contexts_.any(input_);
        const stencilor_options* const options = options_.any(input_);
        stencilor_source* const source = sources_.any(input_);
        // The callbacks use it during the call, so it must not be freed meanwhile.
        callbacks_.parsed = parsed;
        switch (number) {
        case 18:
        case 19:
            return parse(text);
        case 20:
            return check(
                stencilor_template_render(parsed, context, options, results_.place(input_)));
        case 21:
            return check(stencilor_template_render_to(
                parsed, context, Callbacks::write, &callbacks_, options, results_.place(input_)));
        case 22:
            return check(stencilor_render_path(text.data(), text.size(), context, options,
                                               results_.place(input_)));
        case 23:
            return check(stencilor_check(parsed, source, context, texts_.place(input_)));
        case 24:
            return check(stencilor_names(parsed, source, texts_.place(input_)));
        default:
            return readAll();
        }
    }

    void callOfTexts(unsigned int number) {
        const std::string_view text = input_.text();
        stencilor_value* const value = values_.any(input_);
        stencilor_template* const parsed = templates_.any(input_);
        stencilor_source* const source = sources_.any(input_);
        callbacks_.parsed = parsed;
        switch (number) {
        case 26:
            return parseContext(text);
        case 27:
            return find(source, text);
        case 28:
            return check(stencilor_tree(parsed, texts_.place(input_)));
        case 29:
            return escape(text);
        case 30:
            return checkWithinLimits(parsed);
        default:
            check(stencilor_value_add_raw_text(value, text.data(), text.size()));
            return check(stencilor_value_set_text(value, text.data(), text.size(), text.data(),
                                                  text.size()));
        }
    }

    void parseContext(std::string_view json) {
        const std::string_view mark = input_.text();
        const auto flags = static_cast<int>(input_.byte() % 5);
        stencilor_context** const made = contexts_.place(input_);
        check(stencilor_context_parse_json(json.data(), json.size(), flags, mark.data(),
                                           mark.size(), made, errors_.place(input_)));
    }

    void checkWithinLimits(const stencilor_template* parsed) {
        const stencilor_context* const context = contexts_.any(input_);
        const stencilor_options* const options = options_.any(input_);
        check(stencilor_check_limited(parsed, context, options, texts_.place(input_)));
    }

    /// The callback may use the template that is replaced.
    void find(stencilor_source* source, std::string_view path) {
        stencilor_template* found = nullptr;
        check(stencilor_source_find(source, path.data(), path.size(), &found));
        *templates_.place(input_) = found;
    }

    /// Malformed bytes are kept.
    void escape(std::string_view text) {
        stencilor_text* escaped = nullptr;
        std::size_t size = 0;
        check(stencilor_escape(static_cast<int>(input_.byte() % 4), text.data(), text.size(),
                               &escaped));
        const char* const bytes = stencilor_text_data(escaped, &size);
        fuzz::require(bytes[size] == '\0', "a NUL follows a text");
        fuzz::require(escaped == nullptr || size >= text.size(), "escaping only adds bytes");
        stencilor_text_free(escaped);
    }

    void parse(std::string_view text) {
        check(stencilor_template_parse(text.data(), text.size(), "a", 1, templates_.place(input_)));
    }

    void readAll() {
        std::size_t size = 0;
        const stencilor_result* const result = results_.any(input_);
        const char* const text = stencilor_result_text(result, &size);
        checkText(text, size);
        for (std::size_t i = 0; i < stencilor_result_message_count(result); ++i) {
            const stencilor_message* const message = stencilor_result_message(result, i);
            fuzz::require(stencilor_message_kind(message) != STENCILOR_MESSAGE_NONE,
                          "a message has a kind");
            stencilor_message_text(message, nullptr);
            stencilor_message_include_template_name(message, input_.byte(), nullptr);
        }
        const char* const json = stencilor_text_data(texts_.any(input_), &size);
        checkText(json, size);
        stencilor_error_text(errors_.any(input_), nullptr);
    }

    Input input_;
    Callbacks callbacks_{&input_};
    int copies_ = 0;
    Handles<stencilor_value, stencilor_value_free> values_;
    Handles<stencilor_error, stencilor_error_free> errors_;
    Handles<stencilor_context, stencilor_context_free> contexts_;
    Handles<stencilor_template, stencilor_template_free> templates_;
    Handles<stencilor_source, stencilor_source_free> sources_;
    Handles<stencilor_options, stencilor_options_free> options_;
    Handles<stencilor_result, stencilor_result_free> results_;
    Handles<stencilor_text, stencilor_text_free> texts_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Calls(fuzz::textOf(data, size)).run();
    return 0;
}
