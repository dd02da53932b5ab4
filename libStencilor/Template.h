#ifndef LIBSTENCILOR_TEMPLATE_H
#define LIBSTENCILOR_TEMPLATE_H

/// @file
/// Templates that are parsed once and rendered many times: with escaping, limits, includes from
/// anywhere, output in pieces, and messages that have a place.
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
/// With default options the text is that of `buildOutput`, and so are the messages but for those
/// from inside included templates, which `buildOutput` drops. A render logs no messages; it traces
/// as `buildOutput` does.

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
    Rejected,      ///< the template is not well formed
    NotFound,      ///< `renderFile`: the source has no such template
    Unreadable,    ///< `renderFile`: the source has it and cannot read it
    StepLimit,     ///< `RenderLimits::steps` did not suffice
    OutputLimit,   ///< `RenderLimits::outputBytes` did not suffice
    TemplateLimit, ///< `RenderLimits::templateBytes` did not suffice
    DepthLimit,    ///< `RenderLimits::includeDepth` did not suffice
    Stopped        ///< `RenderOptions::keepGoing` returned false
};

/// What one render may take, its includes counted in. A render that would exceed a limit ends
/// before it does. 0 means no limit, except for `includeDepth`.
struct RenderLimits {
    /// Each node visited is a step, each iteration of a loop one more, and each 64 keys that are
    /// looked up for names one more. Keys that are too long to be kept are made when they are
    /// looked up; each 4 KiB of them is a step, too.
    std::uint64_t steps = 0;

    /// Bytes rendered, counted before malformed ones become U+FFFD.
    std::uint64_t outputBytes = 0;

    /// Bytes of included templates, each path counted once.
    std::uint64_t templateBytes = 0;

    /// How many includes may be open inside each other: 1 to 100. Any other number means 100,
    /// because an exhausted stack cannot be reported.
    unsigned int includeDepth = 100;

    /// Messages kept. Further ones are counted, and rendering goes on. The one that says why a
    /// render ended is always kept.
    unsigned int messages = 1000;
};

/// What happens to each value on its way into the text. Text of the template is never escaped, nor
/// are raw values (`Value::raw`, `ContextRawString`).
/// Copying: copies share a host's function. Moving copies.
/// Threads: may be used by many threads, if the host's function may.
class STENCILOR_EXPORT Escape {
  public:
    /// Values are rendered as they are.
    static Escape none();

    /// For HTML text and quoted attributes: `&`, `<`, `>`, `"` and `'` become character references.
    static Escape html();

    /// For JSON texts inside their quotation marks, also within HTML: as `escapeJson`.
    static Escape json();

    /// A function of the host.
    /// @param function receives the text of a value up to its first NUL, and appends what is
    ///   rendered to `out`, which is empty. The text ends at its first NUL. What the function
    ///   throws reaches the caller of the render.
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
/// Ownership: borrows `source` for the render.
struct RenderOptions {
    /// What happens to values.
    Escape escape = Escape::none();

    /// Where included templates come from. Null: from files, as `buildOutput` finds them.
    TemplateSource* source = nullptr;

    /// What the render may take.
    RenderLimits limits{};

    /// Asked after every 1,024 steps, where there is one; false stops the render. It may render,
    /// and what it throws reaches the caller.
    std::function<bool()> keepGoing{};
};

/// An include that was open where a message arose.
struct IncludeSite {
    String templateName{};   ///< the template that holds the tag
    SyntaxRange range{};     ///< the path in the tag
    unsigned int line = 0;   ///< of the path, from 1; lines end at LF
    unsigned int column = 0; ///< of the path in code points, from 1
};

/// Something that could not be rendered, or the reason why a render ended.
struct RenderMessage {
    /// What went wrong.
    enum class Kind {
        ReplacementNotFound,  ///< a substitution's name is not in scope
        ReplacementNotString, ///< it is in scope and not a text
        BooleanNotFound,      ///< a condition's name is not in scope
        NotBoolean,           ///< it is in scope and not a boolean
        ListNotFound,         ///< the name of a loop's list is not in scope
        NotIterable,          ///< it is in scope and not a list
        FileNotFound,         ///< there is no template at the path
        FileNotLoaded,        ///< there is one, and it cannot be read
        TemplateRejected,     ///< the template is not well formed; see `fault`
        StepLimit,            ///< the render ended; and so with the following ones
        OutputLimit,
        TemplateLimit,
        DepthLimit,
        Stopped
    };

    Kind kind{};             ///< what went wrong
    String name{};           ///< the name or path in the tag; empty where there is none
    String templateName{};   ///< the template that the place is in
    SyntaxRange range{};     ///< the name or path, or the text at which the render ended
    unsigned int line = 0;   ///< of the range, from 1; lines end at LF; 0 where there is no place
    unsigned int column = 0; ///< of the range in code points, from 1; 0 where there is no place
    SyntaxFault fault{};     ///< of a rejected template
    std::vector<IncludeSite> includedFrom{}; ///< the includes open around it, innermost first

    /// Describes the message in English, without its place.
    /// @return one line without a line break
    STENCILOR_EXPORT String text() const;
};

/// What a render took.
struct RenderUsage {
    std::uint64_t steps = 0;         ///< as in `RenderLimits`
    std::uint64_t outputBytes = 0;   ///< as in `RenderLimits`
    std::uint64_t templateBytes = 0; ///< as in `RenderLimits`
    std::uint64_t messages = 0;      ///< all of them, kept or not
    unsigned int includeDepth = 0;   ///< the most includes open inside each other
};

/// What a render produced.
struct RenderResult {
    RenderStatus status = RenderStatus::Complete; ///< how it ended
    String text{}; ///< always valid UTF-8; empty unless the status is `Complete`
    std::vector<RenderMessage> messages{}; ///< in the order of the text
    RenderUsage usage{};                   ///< what it took
};

/// A template that is parsed once.
///
/// Ownership: owns its text and what was made of it. A context is only read, and nothing of it is
///   kept; nobody may change it during a render.
/// Copying: copies share everything, which never changes. A moved-from template may only be
///   assigned or destroyed.
/// Threads: any number of renders may run at once, with one template and one context.
/// Errors: a template that is not well formed is no exception: see `isWellFormed`. Thrown are
///   `std::bad_alloc`, `std::length_error` where a text outgrows `String`, what the functions and
///   sources of the host throw, and for values what `Context` throws.
class STENCILOR_EXPORT Template {
  public:
    /// Parses a template.
    /// @param text the template, which ends at its first NUL byte
    /// @param name what messages call it, such as a path
    explicit Template(String text, String name = {});

    /// Copies share the text and what was parsed. One that was moved from
    /// may only be assigned or destroyed.
    /// @{
    Template(const Template& other);
    Template(Template&& other) noexcept;
    Template& operator=(const Template& other);
    Template& operator=(Template&& other) noexcept;
    ~Template();
    /// @}

    /// @return true if the template can be rendered
    bool isWellFormed() const;

    /// @return why it cannot; a fault that is not present if it can
    const SyntaxFault& fault() const;

    /// @return the name that it was given
    const String& name() const;

    /// @return the whole text that it was made of
    const String& text() const;

    /// Renders.
    /// @param context the root of the values; a `Context` converts to it
    /// @param options see there
    /// @return the text and the messages
    RenderResult render(const ContextBase& context, const RenderOptions& options = {}) const;

    /// Renders a value, which is made a context for the one call.
    RenderResult render(const Value& values, const RenderOptions& options = {}) const;

    /// The same for values in braces.
    RenderResult render(std::initializer_list<Value::Member> values,
                        const RenderOptions& options = {}) const;

    /// Renders piece by piece.
    /// @param context the root of the values
    /// @param write receives the pieces: never empty, at most 64 KiB, each valid UTF-8; joined they
    ///   are the text. It may render, and what it throws reaches the caller.
    /// @param options see there
    /// @return the messages, without a text. Where the status is not `Complete`, what was written
    ///   is a beginning of the text.
    RenderResult renderTo(const ContextBase& context,
                          const std::function<void(std::string_view)>& write,
                          const RenderOptions& options = {}) const;

    /// Renders a value piece by piece.
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
/// Each render asks for each path once, so that it sees one version of each template.
/// Ownership: belongs to the host, and outlives the renders that use it.
/// Threads: is called by every render that uses it, several at once.
class STENCILOR_EXPORT TemplateSource {
  public:
    /// What became of a request.
    enum class Answer {
        Found,      ///< the template was handed over, well formed or not
        Missing,    ///< there is none at this path
        Unreadable, ///< there is one, and it cannot be read
        TooLarge    ///< it has more bytes than are allowed, which ends the render
    };

    TemplateSource();
    virtual ~TemplateSource();

    /// Finds a template.
    /// @param path as in the tag
    /// @param maxBytes how many bytes the template may have; UINT64_MAX if any number
    /// @param found receives the template if the answer is `Found`; best named by its path
    /// @return what became of it. What is thrown reaches the caller of the render.
    virtual Answer find(const String& path, std::uint64_t maxBytes,
                        std::optional<Template>& found) = 0;

  protected:
    /// A source holds nothing itself.
    /// @{
    TemplateSource(const TemplateSource& other);
    TemplateSource& operator=(const TemplateSource& other);
    /// @}
};

/// Templates held in memory, by path.
///
/// Threads: all functions may be called while renders run.
class STENCILOR_EXPORT MemoryTemplates : public TemplateSource {
  public:
    MemoryTemplates();
    MemoryTemplates(const MemoryTemplates&) = delete;
    MemoryTemplates& operator=(const MemoryTemplates&) = delete;
    ~MemoryTemplates() override;

    /// Adds a template, or replaces the one at its path.
    /// @param path as include tags write it
    /// @param text the template, parsed here, once
    void add(String path, String text);

    Answer find(const String& path, std::uint64_t maxBytes,
                std::optional<Template>& found) override;

  private:
    std::unique_ptr<internal::memory_templates> templates_;
};

/// Templates in the files below one directory.
///
/// Keeps each file parsed, and reads it again when its size, its time of modification or its
/// identity has changed, or when it was changed less than two seconds before it was last read.
/// Paths: as below a root of `FileSystem`; nothing outside the directory can be included.
/// Threads: may be shared by renders that run at once.
class STENCILOR_EXPORT FileTemplates : public TemplateSource {
  public:
    /// @param root the directory, relative to the working directory of this moment, or absolute.
    ///   `std::invalid_argument` is thrown where it is not a directory that can be entered.
    explicit FileTemplates(const String& root);
    FileTemplates(const FileTemplates&) = delete;
    FileTemplates& operator=(const FileTemplates&) = delete;
    ~FileTemplates() override;

    Answer find(const String& path, std::uint64_t maxBytes,
                std::optional<Template>& found) override;

  private:
    std::unique_ptr<internal::template_files> files_;
};

/// Renders the template at a path of the source in the options, whose bytes count as those of an
/// included one.
/// @param path as an include tag would write it
/// @param context the root of the values
/// @param options see there
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
/// marks. Beyond what JSON asks for, `<`, `>`, `&`, U+2028 and U+2029 are escaped, so that the
/// result may appear in a script of an HTML page.
STENCILOR_EXPORT String escapeJson(std::string_view text);

} // namespace kel::Stencilor

#endif
