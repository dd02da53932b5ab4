#ifndef LIBSTENCILORC_STENCILOR_HPP
#define LIBSTENCILORC_STENCILOR_HPP

/// @file
/// Templates for C++17 compilers that cannot link the C++ libraries: `stencilor.h` with objects
/// that free what they hold, and exceptions.
///
///     #include <libStencilorC/stencilor.hpp>
///     #include <iostream>
///
///     int main() {
///         const stencilor::Template page("Hello, {{ name }}!\n", "hello");
///         stencilor::Value values;
///         values.set("name", "<world>");
///         stencilor::Options options;
///         options.setEscape(STENCILOR_ESCAPE_HTML);
///         const stencilor::Result result = page.render(stencilor::Context(values), options);
///         std::cout << result.text(); // Hello, &lt;world&gt;!
///         for (const stencilor::Message message : result.messages()) {
///             std::cerr << message.line() << ": " << message.text() << '\n';
///         }
///     }
///
/// The thread rules of `stencilor.h` apply here, too. Strings are views into the object that
/// returns them. Exceptions of a callback reach the caller of the enclosing call. `Error` is thrown
/// for every status that does not come with a result. All objects can be moved; a moved-from object
/// may only be assigned to or destroyed. Values and messages can be copied.

#include <libStencilorC/stencilor.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

/// The C interface for C++17.
namespace stencilor {

/// A status other than `STENCILOR_OK`; for JSON, also where the text is wrong.
class Error : public std::runtime_error {
  public:
    /// Describes a status.
    explicit Error(int status)
        : std::runtime_error(stencilor_status_text(status)), status_(status) {}

    /// Describes an error.
    explicit Error(const stencilor_error& error)
        : std::runtime_error(stencilor_error_text(&error, nullptr)),
          status_(stencilor_error_status(&error)), offset_(stencilor_error_offset(&error)),
          line_(stencilor_error_line(&error)), column_(stencilor_error_column(&error)) {}

    int status() const noexcept { return status_; }         ///< a `stencilor_status`
    std::size_t offset() const noexcept { return offset_; } ///< as `stencilor_error_offset`
    std::size_t line() const noexcept { return line_; }     ///< as `stencilor_error_line`
    std::size_t column() const noexcept { return column_; } ///< as `stencilor_error_column`

  private:
    int status_;
    std::size_t offset_ = 0;
    std::size_t line_ = 0;
    std::size_t column_ = 0;
};

/// @cond
namespace internal {

struct Free {
    void operator()(stencilor_error* handle) const { stencilor_error_free(handle); }
    void operator()(stencilor_text* handle) const { stencilor_text_free(handle); }
    void operator()(stencilor_value* handle) const { stencilor_value_free(handle); }
    void operator()(stencilor_context* handle) const { stencilor_context_free(handle); }
    void operator()(stencilor_template* handle) const { stencilor_template_free(handle); }
    void operator()(stencilor_source* handle) const { stencilor_source_free(handle); }
    void operator()(stencilor_options* handle) const { stencilor_options_free(handle); }
    void operator()(stencilor_result* handle) const { stencilor_result_free(handle); }
};

template <typename T>
using Handle = std::unique_ptr<T, Free>;

/// The exception that a callback of this thread threw, until the enclosing call returns.
inline std::exception_ptr& thrown() {
    thread_local std::exception_ptr exception;
    return exception;
}

/// Calls the function of a callback, and returns what the callback must return.
template <typename Function>
int guard(Function function) noexcept {
    try {
        function();
        return 0;
    } catch (...) {
        thrown() = std::current_exception();
        return 1;
    }
}

/// Calls a function that stores a handle. Throws what a callback threw.
template <typename T, typename Function>
int call(Handle<T>& handle, Function function) {
    thrown() = nullptr; // left by a call that was not made from here
    T* made = nullptr;
    const int status = function(&made);
    handle.reset(made);
    if (thrown()) {
        std::rethrow_exception(std::exchange(thrown(), nullptr));
    }
    return status;
}

inline void check(int status, stencilor_error* error = nullptr) {
    const Handle<stencilor_error> owned(error);
    if (error != nullptr) {
        throw Error(*error);
    }
    if (status != STENCILOR_OK) {
        throw Error(status);
    }
}

/// Returns the handle that a function stores through its last argument.
template <typename T, typename... Parameters, typename... Arguments>
Handle<T> make(int (*function)(Parameters...), Arguments... arguments) {
    Handle<T> handle;
    check(call(handle, [&](T** made) { return function(arguments..., made); }));
    return handle;
}

template <typename T>
std::string_view text(const char* (*function)(const T*, std::size_t*), const T* handle) {
    std::size_t size = 0;
    const char* const data = function(handle, &size);
    return {data, size};
}

/// True for types whose values are booleans, numbers or characters of UTF-8.
template <typename T>
inline constexpr bool isScalar = std::is_arithmetic_v<T> && !std::is_same_v<T, wchar_t> &&
                                 !std::is_same_v<T, char16_t> && !std::is_same_v<T, char32_t>;

/// The number with the fewest digits that round to `number`: 0.1 for 0.1f.
inline double widen(float number) {
    char digits[32];
    int precision = 1;
    do {
        std::snprintf(digits, sizeof(digits), "%.*g", precision, static_cast<double>(number));
    } while (std::strtof(digits, nullptr) != number && ++precision <= 9);
    return std::strtod(digits, nullptr);
}

} // namespace internal
/// @endcond

/// Plain data: null, a boolean, a string, a list or a dictionary. Numbers are strings.
/// Copying: copies are deep and independent.
class Value {
  public:
    /// An empty dictionary.
    Value() : Value(internal::make<stencilor_value>(stencilor_value_dictionary)) {}

    /// Null.
    Value(std::nullptr_t) : Value(internal::make<stencilor_value>(stencilor_value_null)) {}

    /// A string.
    /// @{
    Value(std::string_view text)
        : Value(internal::make<stencilor_value>(stencilor_value_text, text.data(), text.size())) {}
    Value(const std::string& text) : Value(std::string_view(text)) {}
    Value(const char* text) : Value(std::string_view(text)) {}
    /// @}

    /// A boolean, or the text of a number.
    template <typename T, typename = std::enable_if_t<internal::isScalar<T>>>
    Value(T source) : Value(convert(source)) {}

    /// An empty list.
    static Value list() { return Value(internal::make<stencilor_value>(stencilor_value_list)); }

    /// A string that renders never escape.
    static Value raw(std::string_view text) {
        return Value(
            internal::make<stencilor_value>(stencilor_value_raw_text, text.data(), text.size()));
    }

    /// Parses JSON text.
    static Value fromJson(std::string_view json) {
        stencilor_value* made = nullptr;
        stencilor_error* error = nullptr;
        const int status = stencilor_value_parse_json(json.data(), json.size(), &made, &error);
        Value value((internal::Handle<stencilor_value>(made)));
        internal::check(status, error);
        return value;
    }

    /// Copies a value and everything that it holds.
    /// @{
    Value(const Value& other)
        : Value(internal::make<stencilor_value>(stencilor_value_copy, other.get())) {}
    Value& operator=(const Value& other) { return *this = Value(other); }
    /// @}

    /// Takes a value.
    /// @{
    Value(Value&& other) noexcept = default;
    Value& operator=(Value&& other) noexcept = default;
    /// @}

    ~Value() = default;

    /// The kind of the value, a `stencilor_kind`.
    int kind() const { return stencilor_value_kind(get()); }

    /// Appends an item to a list.
    Value& add(Value item) {
        internal::check(stencilor_value_add(get(), item.get()));
        return *this;
    }

    /// Sets a member of a dictionary.
    Value& set(std::string_view key, Value member) {
        internal::check(stencilor_value_set(get(), key.data(), key.size(), member.get()));
        return *this;
    }

    /// The handle; this object keeps owning it.
    stencilor_value* get() const { return handle_.get(); }

  private:
    explicit Value(internal::Handle<stencilor_value> handle) : handle_(std::move(handle)) {}

    static Value convert(bool is_true) {
        return Value(internal::make<stencilor_value>(stencilor_value_boolean, is_true ? 1 : 0));
    }

    template <typename T>
    static Value convert(T number) {
        if constexpr (std::is_same_v<T, float>) {
            return convert(internal::widen(number));
        } else if constexpr (std::is_floating_point_v<T>) {
            return Value(internal::make<stencilor_value>(stencilor_value_double,
                                                         static_cast<double>(number)));
        } else if constexpr (std::is_same_v<T, char>) {
            return Value(std::string_view(&number, 1));
        } else if constexpr (std::is_unsigned_v<T>) {
            return Value(std::to_string(number));
        } else {
            return Value(internal::make<stencilor_value>(stencilor_value_integer,
                                                         static_cast<std::int64_t>(number)));
        }
    }

    internal::Handle<stencilor_value> handle_;
};

/// The values that templates are rendered with. It never changes.
class Context {
  public:
    /// @param value a dictionary, which is copied
    /// @param flags a sum of `stencilor_context_flag`
    explicit Context(const Value& value, int flags = 0) {
        stencilor_context* made = nullptr;
        stencilor_error* error = nullptr;
        const int status = stencilor_context_create(value.get(), flags, &made, &error);
        handle_.reset(made);
        internal::check(status, error);
    }

    /// The handle; this object keeps owning it.
    stencilor_context* get() const { return handle_.get(); }

  private:
    internal::Handle<stencilor_context> handle_;
};

/// A message of a result or a template, and valid as long as its owner.
class Message {
  public:
    /// @param message the message to read
    explicit Message(const stencilor_message* message) : message_(message) {}

    /// A `stencilor_message_kind`.
    int kind() const { return stencilor_message_kind(message_); }
    /// The message in English, without its location.
    std::string_view text() const { return internal::text(stencilor_message_text, message_); }
    /// The name or path in the tag.
    std::string_view name() const { return internal::text(stencilor_message_name, message_); }
    /// The name of the template at the location.
    std::string_view templateName() const {
        return internal::text(stencilor_message_template_name, message_);
    }
    /// The line, from 1.
    std::size_t line() const { return stencilor_message_line(message_); }
    /// The column in code points, from 1.
    std::size_t column() const { return stencilor_message_column(message_); }
    /// The message, for functions without a wrapper, such as those for include tags.
    const stencilor_message* get() const { return message_; }

  private:
    const stencilor_message* message_;
};

/// What a render produced. It never changes.
class Result {
  public:
    /// @param handle the handle, which this object takes over
    explicit Result(stencilor_result* handle) : handle_(handle) {}

    /// How the render ended: a `stencilor_status` up to `STENCILOR_DEPTH_LIMIT`.
    int status() const { return stencilor_result_status(get()); }
    /// The text; empty unless the status is `STENCILOR_OK`.
    std::string_view text() const { return internal::text(stencilor_result_text, get()); }
    /// How much of a `stencilor_limit` the render used.
    std::uint64_t usage(int limit) const { return stencilor_result_usage(handle_.get(), limit); }

    /// The messages, in the order of the text.
    std::vector<Message> messages() const {
        std::vector<Message> all;
        for (std::size_t i = 0; i < stencilor_result_message_count(get()); ++i) {
            all.emplace_back(stencilor_result_message(get(), i));
        }
        return all;
    }

    /// The handle; this object keeps owning it.
    const stencilor_result* get() const { return handle_.get(); }

  private:
    internal::Handle<stencilor_result> handle_;
};

class Template;

/// A request for an included template.
class Request {
  public:
    /// @param request the request to answer
    explicit Request(stencilor_request* request) : request_(request) {}

    /// The maximum size of the template in bytes.
    std::uint64_t maxSize() const { return stencilor_request_max_size(request_); }
    /// Answers with the text of a template.
    void setText(std::string_view text) const {
        internal::check(stencilor_request_set_text(request_, text.data(), text.size()));
    }
    /// Answers with a parsed template.
    void setTemplate(const Template& parsed) const;
    /// Answers that the template exists but cannot be read.
    void setUnreadable() const { internal::check(stencilor_request_set_unreadable(request_)); }

  private:
    stencilor_request* request_;
};

/// Where included templates come from.
/// Copying: copies share the source.
class Source {
  public:
    /// Finds the template at a path; does not answer the request if there is none.
    using Find = std::function<void(std::string_view path, const Request& request)>;

    /// Templates in memory, for `add`.
    static Source memory() {
        return Source(internal::make<stencilor_source>(stencilor_source_memory), nullptr);
    }
    /// The files in a folder and its subfolders.
    static Source folder(std::string_view path) {
        return Source(
            internal::make<stencilor_source>(stencilor_source_folder, path.data(), path.size()),
            nullptr);
    }
    /// Templates that a function finds.
    static Source callback(Find find) {
        auto kept = std::make_shared<Find>(std::move(find));
        void* const payload = kept.get();
        return Source(internal::make<stencilor_source>(stencilor_source_callback, call, payload),
                      std::move(kept));
    }

    /// Adds a template to those in memory.
    void add(std::string_view path, std::string_view text) {
        internal::check(
            stencilor_source_add(get(), path.data(), path.size(), text.data(), text.size()));
    }

    /// The handle; this object keeps owning it.
    stencilor_source* get() const { return handle_.get(); }

  private:
    Source(internal::Handle<stencilor_source> handle, std::shared_ptr<Find> find)
        : find_(std::move(find)), handle_(std::move(handle)) {}

    static int call(void* payload, const char* path, std::size_t size, stencilor_request* request) {
        return internal::guard([&] {
            (*static_cast<Find*>(payload))(std::string_view(path, size), Request(request));
        });
    }

    std::shared_ptr<Find> find_;
    std::shared_ptr<stencilor_source> handle_;
};

/// How to render.
class Options {
  public:
    /// Returns what to render in place of a value.
    using Escape = std::function<std::string(std::string_view value)>;

    /// Escapes values as a `stencilor_escape_kind` says.
    void setEscape(int kind) { internal::check(stencilor_options_set_escape(handle(), kind)); }
    /// Escapes values with a function.
    void setEscape(Escape escape) {
        auto kept = std::make_unique<Escape>(std::move(escape));
        internal::check(stencilor_options_set_escape_function(handle(), callEscape, kept.get()));
        escape_ = std::move(kept);
    }
    /// Sets a `stencilor_limit`.
    void setLimit(int limit, std::uint64_t value) {
        internal::check(stencilor_options_set_limit(handle(), limit, value));
    }
    /// Sets a function that decides whether to continue; an empty one for none.
    void setPoll(std::function<bool()> poll) {
        auto kept = std::make_unique<std::function<bool()>>(std::move(poll));
        internal::check(
            stencilor_options_set_poll(handle(), *kept ? callPoll : nullptr, kept.get()));
        poll_ = std::move(kept);
    }
    /// Sets where included templates come from; the options keep the source alive.
    void setSource(const Source& source) {
        auto kept = std::make_unique<Source>(source);
        internal::check(stencilor_options_set_source(handle(), source.get()));
        source_ = std::move(kept);
    }

    /// The handle; this object keeps owning it. Null if nothing was set.
    const stencilor_options* get() const { return handle_.get(); }

  private:
    stencilor_options* handle() {
        if (handle_ == nullptr) {
            handle_ = internal::make<stencilor_options>(stencilor_options_create);
        }
        return handle_.get();
    }

    static int callEscape(void* payload, const char* text, std::size_t size,
                          stencilor_output* output) {
        return internal::guard([&] {
            const std::string escaped =
                (*static_cast<Escape*>(payload))(std::string_view(text, size));
            stencilor_output_append(output, escaped.data(), escaped.size());
        });
    }

    static int callPoll(void* payload) {
        bool goesOn = false;
        const int status =
            internal::guard([&] { goesOn = (*static_cast<std::function<bool()>*>(payload))(); });
        return status == 0 && goesOn ? 0 : 1;
    }

    std::unique_ptr<Escape> escape_;
    std::unique_ptr<std::function<bool()>> poll_;
    std::unique_ptr<Source> source_;
    internal::Handle<stencilor_options> handle_;
};

/// A template that is parsed once. It never changes.
class Template {
  public:
    /// @param text the template, well formed or not
    /// @param name the name for messages
    explicit Template(std::string_view text, std::string_view name = {}) {
        stencilor_template* made = nullptr;
        const int status =
            stencilor_template_parse(text.data(), text.size(), name.data(), name.size(), &made);
        handle_.reset(made);
        internal::check(made == nullptr ? status : int(STENCILOR_OK));
    }

    /// True if the template can be rendered.
    bool isWellFormed() const { return stencilor_template_fault(get()) == nullptr; }
    /// Why the template cannot be rendered; if it can, a message of kind `STENCILOR_MESSAGE_NONE`.
    Message fault() const { return Message(stencilor_template_fault(get())); }

    /// Renders the template.
    Result render(const Context& context, const Options& options = {}) const {
        return resultOf([&](stencilor_result** made) {
            return stencilor_template_render(get(), context.get(), options.get(), made);
        });
    }

    /// Renders piece by piece.
    Result renderTo(const Context& context, const std::function<void(std::string_view)>& write,
                    const Options& options = {}) const {
        void* const payload = const_cast<std::function<void(std::string_view)>*>(&write);
        return resultOf([&](stencilor_result** made) {
            return stencilor_template_render_to(get(), context.get(), callWrite, payload,
                                                options.get(), made);
        });
    }

    /// The handle; this object keeps owning it.
    const stencilor_template* get() const { return handle_.get(); }

    /// @cond
    template <typename Render>
    static Result resultOf(Render render) {
        internal::Handle<stencilor_result> made;
        const int status = internal::call(made, render);
        internal::check(made == nullptr ? status : int(STENCILOR_OK));
        return Result(made.release());
    }
    /// @endcond

  private:
    static int callWrite(void* payload, const char* text, std::size_t size) {
        return internal::guard([&] {
            (*static_cast<const std::function<void(std::string_view)>*>(payload))(
                std::string_view(text, size));
        });
    }

    internal::Handle<stencilor_template> handle_;
};

inline void Request::setTemplate(const Template& parsed) const {
    internal::check(stencilor_request_set_template(request_, parsed.get()));
}

/// Renders the template at a path of the source in the options.
inline Result renderPath(std::string_view path, const Context& context, const Options& options) {
    return Template::resultOf([&](stencilor_result** made) {
        return stencilor_render_path(path.data(), path.size(), context.get(), options.get(), made);
    });
}

/// Escapes a string as a `stencilor_escape_kind` says.
inline std::string escape(int kind, std::string_view text) {
    const auto escaped =
        internal::make<stencilor_text>(stencilor_escape, kind, text.data(), text.size());
    return std::string(internal::text(stencilor_text_data, escaped.get()));
}

/// Finds what is wrong with a template; returns JSON.
/// @param parsed the template, well formed or not
/// @param source where included templates come from; null for none
/// @param context the values to look names up in; null to look up none
inline std::string check(const Template& parsed, const Source* source = nullptr,
                         const Context* context = nullptr) {
    const auto json = internal::make<stencilor_text>(stencilor_check, parsed.get(),
                                                     source == nullptr ? nullptr : source->get(),
                                                     context == nullptr ? nullptr : context->get());
    return std::string(internal::text(stencilor_text_data, json.get()));
}

/// Finds what is wrong with a template within the limits of options; returns JSON.
/// @param parsed the template, well formed or not
/// @param context the values to look names up in; null to look up none
/// @param options as for `stencilor_check_limited`
inline std::string check(const Template& parsed, const Context* context, const Options& options) {
    const auto json = internal::make<stencilor_text>(stencilor_check_limited, parsed.get(),
                                                     context == nullptr ? nullptr : context->get(),
                                                     options.get());
    return std::string(internal::text(stencilor_text_data, json.get()));
}

/// Lists the names that a template looks up in a context; returns JSON.
/// @param parsed the template
/// @param source where included templates come from; null for none
inline std::string names(const Template& parsed, const Source* source = nullptr) {
    const auto json = internal::make<stencilor_text>(stencilor_names, parsed.get(),
                                                     source == nullptr ? nullptr : source->get());
    return std::string(internal::text(stencilor_text_data, json.get()));
}

/// Lists the nodes of a template's syntax tree; returns JSON.
/// @param parsed the template
inline std::string tree(const Template& parsed) {
    const auto json = internal::make<stencilor_text>(stencilor_tree, parsed.get());
    return std::string(internal::text(stencilor_text_data, json.get()));
}

} // namespace stencilor

#endif
