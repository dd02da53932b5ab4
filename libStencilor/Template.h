#ifndef LIBSTENCILOR_TEMPLATE_H
#define LIBSTENCILOR_TEMPLATE_H

/// @file
/// Templates that are parsed once and rendered many times, with escaping, limits, includes from any
/// source, output in pieces, and messages with locations.
///
///     #include <libStencilor/Template.h>
///     #include <iostream>
///
///     using namespace kel::Stencilor;
///
///     int main() {
///         const Template greeting("Hello, {{ name }}!\n", "greeting");
///         const RenderResult result =
///             greeting.render({{"name", "<world>"}}, {.escape = Escape::html()});
///         std::cout << result.text; // Hello, &lt;world&gt;!
///         for (const RenderMessage& message : result.messages) {
///             std::cerr << message.templateName << ':' << message.line << ": " << message.text()
///                       << '\n';
///         }
///     }
///
/// With default options, text and messages equal those of `buildOutput`, except that `buildOutput`
/// drops messages from inside included templates. A render does not log messages, but traces like
/// `buildOutput`.

#include <libKel/String.h>
#include <libStencilor/Export.h>
#include <libStencilor/Stencilor.h>
#include <libStencilor/Syntax.h>
#include <libStencilor/Value.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kel::Stencilor {

/// @cond
namespace internal {
class escaper;
struct memory_templates;
struct parsed_template;
struct template_access;
class template_files;
} // namespace internal
/// @endcond

class TemplateSource;

/// How a render ended.
enum class RenderStatus {
    Complete,      ///< the whole template was rendered, perhaps with messages
    Rejected,      ///< the template is malformed
    NotFound,      ///< `renderFile`: the source does not have the template
    Unreadable,    ///< `renderFile`: the source cannot read the template
    StepLimit,     ///< the limit `RenderLimits::steps` was reached
    OutputLimit,   ///< the limit `RenderLimits::outputBytes` was reached
    TemplateLimit, ///< the limit `RenderLimits::templateBytes` was reached
    DepthLimit,    ///< the limit `RenderLimits::includeDepth` was reached
    Stopped        ///< `RenderOptions::keepGoing` returned false
};

/// The limits of one render, including its includes. A render ends before it would exceed one of
/// them. 0 means no limit, except for `includeDepth`.
struct RenderLimits {
    /// Each visited node is a step, as are each iteration of a loop and every 64 keys looked up for
    /// names. Keys that are too long to be stored are built for each lookup; every 4 KiB of them is
    /// also a step.
    std::uint64_t steps = 0;

    /// Rendered bytes, counted before malformed ones become U+FFFD.
    std::uint64_t outputBytes = 0;

    /// Bytes of included templates; each path counts once.
    std::uint64_t templateBytes = 0;

    /// The maximum nesting of includes, 1 to 100. Any other number means 100, because stack
    /// exhaustion could not be reported.
    unsigned int includeDepth = 100;

    /// The number of messages to keep. Further ones are only counted, and rendering continues. The
    /// message that says why a render ended is always kept.
    unsigned int messages = 1000;
};

/// How values are escaped. The template's own text is never escaped, nor are raw values
/// (`Value::raw`, `ContextRawString`).
/// Copying: copies share the host's function. Moving copies.
/// Threads: thread-safe, if the host's function is.
class STENCILOR_EXPORT Escape {
  public:
    /// Renders values unchanged.
    static Escape none();

    /// Escapes for HTML text and quoted attributes: `&`, `<`, `>`, `"` and `'` become character
    /// references.
    static Escape html();

    /// Escapes for the inside of JSON strings, also within HTML, like `escapeJson`.
    static Escape json();

    /// Escapes with a function of the host.
    /// @param function receives the text of a value up to its first NUL, and appends the escaped
    ///   text, which also ends at its first NUL, to the empty `out`. Its exceptions reach the
    ///   caller of the render.
    explicit Escape(std::function<void(std::string_view value, std::string& out)> function);

    /// Copies share the function.
    /// @{
    Escape(const Escape& other);
    Escape(Escape&& other) noexcept;
    Escape& operator=(const Escape& other);
    Escape& operator=(Escape&& other) noexcept;
    ~Escape();
    /// @}

  private:
    friend class internal::escaper;
    enum class Kind : unsigned char { None, Html, Json, Function };
    using Function = std::function<void(std::string_view, std::string&)>;
    explicit Escape(Kind kind);

    Kind kind_;
    std::shared_ptr<const Function> function_;
};

/// How to render.
///
/// Ownership: borrows `source` during the render.
struct RenderOptions {
    /// How values are escaped.
    Escape escape = Escape::none();

    /// Where included templates come from. If null, from files, like `buildOutput`.
    TemplateSource* source = nullptr;

    /// The limits of the render.
    RenderLimits limits{};

    /// If not empty, called every 1,024 steps; the render stops if it returns false. It may render,
    /// and its exceptions reach the caller.
    std::function<bool()> keepGoing{};
};

/// An include that leads to the location of a message.
struct IncludeSite {
    String templateName{};   ///< the template that contains the tag
    SyntaxRange range{};     ///< the path in the tag
    unsigned int line = 0;   ///< of the path, from 1; lines end at LF
    unsigned int column = 0; ///< of the path in code points, from 1
};

/// Something that could not be rendered, or the reason that a render ended.
struct RenderMessage {
    /// What went wrong.
    enum class Kind {
        ReplacementNotFound,  ///< a substitution's name is not in scope
        ReplacementNotString, ///< it is in scope, but not a string
        BooleanNotFound,      ///< a condition's name is not in scope
        NotBoolean,           ///< it is in scope, but not a boolean
        ListNotFound,         ///< the name of a loop's list is not in scope
        NotIterable,          ///< it is in scope, but not a list
        FileNotFound,         ///< no template exists at the path
        FileNotLoaded,        ///< a template exists, but cannot be read
        TemplateRejected,     ///< the template is malformed; see `fault`
        StepLimit,            ///< the render ended; the same applies to the kinds below
        OutputLimit,
        TemplateLimit,
        DepthLimit,
        Stopped
    };

    Kind kind{};             ///< what went wrong
    String name{};           ///< the name or path in the tag; empty if there is none
    String templateName{};   ///< the template that contains the location
    SyntaxRange range{};     ///< the name, the path, or the text where the render ended
    unsigned int line = 0;   ///< of the range, from 1; lines end at LF; 0 if there is none
    unsigned int column = 0; ///< of the range in code points, from 1; 0 if there is none
    SyntaxFault fault{};     ///< of a rejected template
    std::vector<IncludeSite> includedFrom{}; ///< the includes that lead to it, innermost first

    /// Returns an English description, without the location.
    /// @return one line without a line break
    STENCILOR_EXPORT String text() const;
};

/// The resources that a render used.
struct RenderUsage {
    std::uint64_t steps = 0;         ///< as in `RenderLimits`
    std::uint64_t outputBytes = 0;   ///< as in `RenderLimits`
    std::uint64_t templateBytes = 0; ///< as in `RenderLimits`
    std::uint64_t messages = 0;      ///< all messages, even those not kept
    unsigned int includeDepth = 0;   ///< the deepest nesting of includes
};

/// The result of a render.
struct RenderResult {
    RenderStatus status = RenderStatus::Complete; ///< how it ended
    String text{}; ///< always valid UTF-8; empty unless the status is `Complete`
    std::vector<RenderMessage> messages{}; ///< in the order in which they occurred
    RenderUsage usage{};                   ///< the resources that it used
};

/// A template that is parsed once.
///
/// Ownership: owns its text and the result of parsing it. A context is only read during a render,
///   must not be changed meanwhile, and is not kept.
/// Copying: copies share all data, which is immutable. A moved-from template may only be
///   assigned to or destroyed.
/// Threads: any number of renders may run at once, even with the same template and context.
/// Errors: a malformed template does not throw; see `isWellFormed`. Exceptions are
///   `std::bad_alloc`, `std::length_error` if a string would be too long for `String`, those of the
///   host's functions and sources, and for values those of `Context`.
class STENCILOR_EXPORT Template {
  public:
    /// Parses a template.
    /// @param text the template, which ends at its first NUL byte
    /// @param name its name in messages, such as a path
    explicit Template(String text, String name = {});

    /// Copies share all data. A moved-from template may only be assigned to or destroyed.
    /// @{
    Template(const Template& other);
    Template(Template&& other) noexcept;
    Template& operator=(const Template& other);
    Template& operator=(Template&& other) noexcept;
    ~Template();
    /// @}

    /// @return true if the template can be rendered
    bool isWellFormed() const;

    /// @return why it cannot be rendered; an absent fault if it can
    const SyntaxFault& fault() const;

    /// @return the name that was passed to the constructor
    const String& name() const;

    /// @return the whole text that was passed to the constructor
    const String& text() const;

    /// Renders the template.
    /// @param context the root of the values; a `Context` converts to it
    /// @param options the options of the render
    /// @return the text and the messages
    RenderResult render(const ContextBase& context, const RenderOptions& options = {}) const;

    /// Renders with a value, which is converted to a context for this call.
    RenderResult render(const Value& values, const RenderOptions& options = {}) const;

    /// The same for values in braces.
    RenderResult render(std::initializer_list<Value::Member> values,
                        const RenderOptions& options = {}) const;

    /// Renders in pieces.
    /// @param context the root of the values
    /// @param write receives the pieces of the text: never empty, at most 64 KiB, each valid UTF-8.
    ///   It may render, and its exceptions reach the caller.
    /// @param options the options of the render
    /// @return the messages, without text. Unless the status is `Complete`, only the beginning of
    ///   the text was written.
    RenderResult renderTo(const ContextBase& context,
                          const std::function<void(std::string_view)>& write,
                          const RenderOptions& options = {}) const;

    /// Renders with a value, in pieces.
    RenderResult renderTo(const Value& values, const std::function<void(std::string_view)>& write,
                          const RenderOptions& options = {}) const;

    /// The same for values in braces.
    RenderResult renderTo(std::initializer_list<Value::Member> values,
                          const std::function<void(std::string_view)>& write,
                          const RenderOptions& options = {}) const;

  private:
    friend struct internal::template_access;

    std::shared_ptr<const internal::parsed_template> parsed_;
};

/// Where included templates come from.
///
/// A render asks for each path once, so it sees a single version of each template.
/// Ownership: belongs to the host, and must outlive the renders that use it.
/// Threads: several renders may call it at once.
class STENCILOR_EXPORT TemplateSource {
  public:
    /// The outcome of a request.
    enum class Answer {
        Found,      ///< the template was found; it may be malformed
        Missing,    ///< no template exists at this path
        Unreadable, ///< a template exists, but cannot be read
        TooLarge    ///< it is larger than allowed, which ends the render
    };

    TemplateSource();
    virtual ~TemplateSource();

    /// Finds a template.
    /// @param path as in the tag
    /// @param maxBytes the maximum size of the template; UINT64_MAX means no limit
    /// @param found receives the template if the answer is `Found`; its name should be its path
    /// @return the outcome. Exceptions reach the code that started the render.
    virtual Answer find(const String& path, std::uint64_t maxBytes,
                        std::optional<Template>& found) = 0;

  protected:
    /// The base class holds no data.
    /// @{
    TemplateSource(const TemplateSource& other);
    TemplateSource& operator=(const TemplateSource& other);
    /// @}
};

/// Templates in memory, by path.
///
/// Threads: all functions may be called while renders run.
class STENCILOR_EXPORT MemoryTemplates : public TemplateSource {
  public:
    MemoryTemplates();
    MemoryTemplates(const MemoryTemplates&) = delete;
    MemoryTemplates& operator=(const MemoryTemplates&) = delete;
    ~MemoryTemplates() override;

    /// Adds a template, or replaces the one at its path.
    /// @param path as written in include tags
    /// @param text the template, which is parsed by this call
    void add(String path, String text);

    Answer find(const String& path, std::uint64_t maxBytes,
                std::optional<Template>& found) override;

  private:
    std::unique_ptr<internal::memory_templates> templates_;
};

/// Templates in the files of one directory.
///
/// Caches parsed files. A file is read again if its size, modification time or identity has
/// changed, or if it was modified less than two seconds before it was last read.
/// Paths: as with a root of `FileSystem`; nothing outside the directory can be included.
/// Threads: renders that run at once may share it.
class STENCILOR_EXPORT FileTemplates : public TemplateSource {
  public:
    /// @param root the directory, relative to the current working directory, or absolute. Throws
    ///   `std::invalid_argument` if it is not an accessible directory.
    explicit FileTemplates(const String& root);
    FileTemplates(const FileTemplates&) = delete;
    FileTemplates& operator=(const FileTemplates&) = delete;
    ~FileTemplates() override;

    Answer find(const String& path, std::uint64_t maxBytes,
                std::optional<Template>& found) override;

  private:
    std::unique_ptr<internal::template_files> files_;
};

/// Renders the template at a path of the source in the options. Its bytes count like those of an
/// included template.
/// @param path as written in an include tag
/// @param context the root of the values
/// @param options the options of the render
/// @return the text and the messages
STENCILOR_EXPORT RenderResult renderFile(const String& path, const ContextBase& context,
                                         const RenderOptions& options = {});

/// The same for a value.
STENCILOR_EXPORT RenderResult renderFile(const String& path, const Value& values,
                                         const RenderOptions& options = {});

/// The same for values in braces.
STENCILOR_EXPORT RenderResult renderFile(const String& path,
                                         std::initializer_list<Value::Member> values,
                                         const RenderOptions& options = {});

/// Escapes text for HTML, as `Escape::html` does: `&amp;`, `&lt;`, `&gt;`, `&quot;`, `&#39;`.
STENCILOR_EXPORT String escapeHtml(std::string_view text);

/// Escapes text for the inside of a JSON string (RFC 8259, section 7), without adding quotation
/// marks. In addition to what JSON requires, `<`, `>`, `&`, U+2028 and U+2029 are escaped, so the
/// result can be used in a script of an HTML page.
STENCILOR_EXPORT String escapeJson(std::string_view text);

} // namespace kel::Stencilor

#endif
