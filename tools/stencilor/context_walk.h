#ifndef TOOLS_STENCILOR_CONTEXT_WALK_H
#define TOOLS_STENCILOR_CONTEXT_WALK_H

#include <libStencilor/Stencilor.h>

#include <tools/stencilor/recent_stack.h>
#include <tools/stencilor/template_files.h>

#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace stencilor {

/// What goes wrong where a template meets a context.
enum class Problem {
    NoString,
    NotString,
    NoBoolean,
    NotBoolean,
    NoList,
    NotList,
    NoFile,
    UnreadableFile,
    RejectedFile, // an included one
    TooDeep,      // an inclusion inside of so many others that there may be no end
};

/// One problem each time it occurs.
struct Occurrence {
    Problem problem;
    const TemplateFile* file;
    const SyntaxElement* part;
    const kel::Stencilor::ContextBase* value; ///< the one of the wrong kind; otherwise null
    const TemplateFile* rejected;             ///< the included file that is
    std::string where;                        ///< ` in element 2 of "items"`; empty outside loops
};

/// Goes through a template as the engine renders it, with the engine's rules of how a name is
/// found, and tells what goes wrong on the way, in included files, too.
///
/// Ownership: borrows the files and the context, which is only read.
/// Nesting: blocks take no call stack, as in the engine. Inclusions do, and where they stand in
/// each
///   other too deeply, the walk ends.
class ContextWalk {
  public:
    /// Which parts of a template are gone through.
    enum class Extent {
        Rendered, ///< what is rendered, as often as it is
        Whole,    ///< both parts of each condition; an included file once for the same scopes
    };

    using Report = std::function<void(const Occurrence&)>;

    ContextWalk(TemplateFiles& files, Extent extent, Report report);

    /// `file` must be well formed.
    void walk(const TemplateFile& file, const kel::Stencilor::ContextBase& context);

  private:
    using Value = kel::Stencilor::ContextBase*;
    using Scopes = std::vector<const kel::Stencilor::ContextBase*>;
    struct Block;
    struct Activation;

    void walkFile(const TemplateFile& file);
    void visit(Activation& current, std::size_t index);
    void openConditional(Activation& current, std::size_t index);
    void openLoop(Activation& current, std::size_t index);
    void include(Activation& current, std::size_t index);
    bool mayEnter(const TemplateFile& file);

    void enter(Activation& current);
    void leave(Activation& current);

    Value find(const Activation& current, SyntaxRange name) const;
    std::string placeIn(const Activation& current) const;
    void report(const Activation& current, Problem problem, std::size_t index,
                Value value = nullptr, const TemplateFile* rejected = nullptr) const;

    TemplateFiles& files_;
    Extent extent_;
    Report report_;
    RecentStack<const kel::Stencilor::ContextBase*> scopes_;
    std::vector<const TemplateFile*>
        active_; // the files that are gone through, the outermost first
    std::set<std::pair<const TemplateFile*, Scopes>> walked_;
    std::string where_; // the innermost loop around the file
    bool ended_ = false;
};

} // namespace stencilor

#endif
