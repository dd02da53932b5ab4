#ifndef LIBSTENCILORANALYSIS_CHECK_CONTEXTWALK_H
#define LIBSTENCILORANALYSIS_CHECK_CONTEXTWALK_H

#include <libStencilor/Stencilor.h>
#include <libStencilor/render/recent_stack.h>
#include <libStencilorAnalysis/template/TemplateWalk.h>
#include <libStencilorAnalysis/text/Suggestion.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kel::Stencilor::Analysis {

/// A problem of a template with a context.
enum class Problem {
    NoString,
    NotString,
    NoBoolean,
    NotBoolean,
    NoList,
    NotList,
    NoFile,       ///< an include of a missing or unreadable file
    RejectedFile, ///< an include of a rejected file
    OtherLoop,    ///< a name with one loop's variable that is found in another loop's element
    TooDeep,      ///< an include nested so deeply that it may not end
    TooLong,      ///< the tag where the walk reaches its limit
};

/// The loop in whose element a name with another loop's variable is found.
struct OtherLoop {
    const TemplateFile* file = nullptr;
    const SyntaxElement* tag = nullptr; ///< null if there is none
    std::size_t element = 0;            ///< the index of the element, from 0
    bool isInside = false;              ///< true if it is inside the variable's loop
};

/// The limits of a walk.
struct WalkLimits {
    /// The steps of a walk with `Extent::Whole`: tags, scopes that are searched, keys that are not
    /// found, and every 4 KiB of a key.
    std::uint64_t steps = 100'000'000;

    /// If not empty, called every 1,024 tags; the walk ends if it returns false.
    std::function<bool()> goOn{};
};

/// One occurrence of a problem.
struct Occurrence {
    Problem problem;
    const TemplateFile* file;
    const SyntaxElement* part;
    const ContextBase* value = nullptr;                 ///< the value of the wrong kind
    const TemplateFiles::Included* inclusion = nullptr; ///< the target of an include
    OtherLoop otherLoop{};
    std::string where{}; ///< ` in element 2 of "items"`; empty outside loops
};

/// Walks a template the way the engine renders it, with the engine's rules of name lookup, and
/// reports problems, including those in included files.
///
/// Ownership: borrows the files and the context, which is only read.
/// Nesting: does not use the call stack. The walk ends if includes are nested too deeply.
/// Cost: the same as a render, within the limits.
class ContextWalk final : private TemplateWalk {
  public:
    enum class Extent {
        Rendered, ///< rendered parts, as often as they are rendered
        Whole,    ///< both parts of each condition; an included file once per set of scopes
    };

    using Report = std::function<void(const Occurrence&)>;

    ContextWalk(TemplateFiles& files, Extent extent, Report report);
    ~ContextWalk();

    struct Suggestion {
        std::string text{}; ///< the end of a message: `; did you mean "title"?`; empty if none
        std::string name{}; ///< the suggested name; empty if the suggestion is not a name
    };

    /// A suggestion for a name that was not found or has the wrong kind. Suggested names can be
    /// found at that position. Only call this from within the report.
    Suggestion suggest(const Occurrence& found);

    void setLimits(WalkLimits limits) { limits_ = std::move(limits); }

    /// `file` must be well formed.
    void walk(const TemplateFile& file, const ContextBase& context);

  private:
    using Value = ContextBase*;
    using ScopeStack = internal::recent_stack<const ContextBase*>;
    using VariableStack = internal::recent_stack<std::string_view>;
    struct Block;
    struct FileState;

    /// The names in a scope.
    struct ScopeWords {
        KnownWords all;
        std::unordered_map<std::string_view, std::string_view> byEnd; // what follows the last dot
    };

    void enter(const TemplateFile& file);
    void leaveFile() override;

    // These return the index of the next part to visit.
    std::size_t visit(const TemplateFile& file, std::size_t index) override;
    std::size_t openConditional(const TemplateFile& file, std::size_t index);
    std::size_t passElse(const TemplateFile& file, std::size_t index) const;
    std::size_t closeConditional(std::size_t index);
    std::size_t openLoop(const TemplateFile& file, std::size_t index);
    std::size_t closeIteration(std::size_t index);
    std::size_t openIteration();

    void visitSubstitution(const TemplateFile& file, const SyntaxElement& part);
    void visitInclusion(const Inclusion& inclusion) override;
    bool shallEnter(const TemplateFile& file);

    void openScope(Block& block, const ContextBase* scope);
    void closeScope(Block& block);

    Value lookUp(const TemplateFile& file, const SyntaxElement& part, SyntaxRange range);
    Value find(std::string_view name, const ContextBase** answering = nullptr);
    Value findIn(const ContextBase& scope, std::string_view key);
    OtherLoop findOtherLoop(std::string_view name, const ContextBase* answering);
    bool isFound(const std::string& name, Problem problem);
    Suggestion suggestForVariable(const Occurrence& found, const std::string& name);
    std::string suggestLoop(const std::string& name);
    std::string findSimilar(const std::string& name, Problem problem);
    const ScopeWords& wordsOf(const ContextBase& scope);

    FileState& state() { return *states_.back(); }
    const FileState& state() const { return *states_.back(); }
    std::string describePlace() const;
    bool hasStepsLeft() const { return steps_ <= limits_.steps || extent_ != Extent::Whole; }
    void report(Occurrence occurrence);

    Extent extent_;
    Report report_;
    WalkLimits limits_;
    std::uint64_t visits_ = 0;
    std::uint64_t steps_ = 0;
    ScopeStack scopes_;
    std::vector<std::unique_ptr<FileState>> states_; // of the files being walked
    std::unordered_map<const ContextBase*, ScopeWords> words_;
    std::set<std::pair<const TemplateFile*, std::vector<const ContextBase*>>> entered_;
};

} // namespace kel::Stencilor::Analysis

#endif
