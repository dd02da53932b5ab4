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

/// What goes wrong where a template meets a context.
enum class Problem {
    NoString,
    NotString,
    NoBoolean,
    NotBoolean,
    NoList,
    NotList,
    NoFile,       ///< an inclusion of a file that is missing or unreadable
    RejectedFile, ///< an inclusion of one that is rejected
    OtherLoop,    ///< a member of a loop's variable that is found in another loop's element
    TooDeep,      ///< an inclusion inside so many others that there may be no end
    TooLong,      ///< a tag where so much has been looked at that the walk ends
};

/// The loop that answers to a name with the variable of another one.
struct OtherLoop {
    const TemplateFile* file = nullptr;
    const SyntaxElement* tag = nullptr; ///< null if there is none
    std::size_t element = 0;            ///< the one that answers, from 0
    bool isInside = false;              ///< inside the loop of the variable
};

/// One problem, each time it occurs.
struct Occurrence {
    Problem problem;
    const TemplateFile* file;
    const SyntaxElement* part;
    const ContextBase* value = nullptr;                 ///< the one of the wrong kind
    const TemplateFiles::Included* inclusion = nullptr; ///< what an inclusion leads to
    OtherLoop otherLoop{};
    std::string where{}; ///< ` in element 2 of "items"`; empty outside loops
};

/// Walks a template as the engine renders it, by the engine's rules of how a name is found, and
/// reports what goes wrong, in included files, too.
///
/// Ownership: borrows the files and the context, which is only read.
/// Nesting: takes no call stack. Where inclusions are nested too deeply, the walk ends.
/// Cost: that of a render. The walk of the whole ends after 100,000,000 steps: tags, and scopes and
///   loop variables that a name is looked up with.
class ContextWalk final : private TemplateWalk {
  public:
    enum class Extent {
        Rendered, ///< what is rendered, as often as it is
        Whole,    ///< both parts of each condition; an included file once for the same scopes
    };

    using Report = std::function<void(const Occurrence&)>;

    ContextWalk(TemplateFiles& files, Extent extent, Report report);
    ~ContextWalk();

    /// What may have been meant by a name that was not found or is of another kind, as the end of a
    /// message: `; did you mean "title"?`. Empty if nothing comes near. What it suggests is found
    /// at that place. To be called while it is reported.
    std::string suggest(const Occurrence& found);

    /// Asked every 1,024 tags whether to go on; false ends the walk.
    void askWhether(std::function<bool()> goOn) { goOn_ = std::move(goOn); }

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

    // Each returns the index of the part to visit next.
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
    OtherLoop findOtherLoop(std::string_view name, const ContextBase* answering);
    bool isFound(const std::string& name, Problem problem);
    std::string suggestForVariable(const Occurrence& found, const std::string& name);
    std::string suggestLoop(const std::string& name);
    std::string suggestSimilar(const std::string& name, Problem problem);
    const ScopeWords& wordsOf(const ContextBase& scope);

    FileState& state() { return *states_.back(); }
    const FileState& state() const { return *states_.back(); }
    std::string describePlace() const;
    void report(Occurrence occurrence) const;

    Extent extent_;
    Report report_;
    std::function<bool()> goOn_;
    std::uint64_t visits_ = 0;
    std::uint64_t steps_ = 0;
    ScopeStack scopes_;
    std::vector<std::unique_ptr<FileState>> states_; // of the files that are being walked
    std::unordered_map<const ContextBase*, ScopeWords> words_;
    std::set<std::pair<const TemplateFile*, std::vector<const ContextBase*>>> entered_;
};

} // namespace kel::Stencilor::Analysis

#endif
