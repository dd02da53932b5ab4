#ifndef TOOLS_STENCILOR_LSP_CHECKS_H
#define TOOLS_STENCILOR_LSP_CHECKS_H

#include <libStencilorAnalysis/check/SyntaxCheck.h>
#include <tools/stencilor/lsp/Workspace.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace stencilor::lsp {

/// An open template and all that it includes, as they were when it was checked.
struct Check {
    explicit Check(Surroundings surroundings, const Documents& documents)
        : around(std::move(surroundings)), reader(around.root, documents), files(reader) {}

    Surroundings around;
    BufferedFolder reader;
    kel::Stencilor::Analysis::TemplateFiles files;
    const kel::Stencilor::Analysis::TemplateFile* file = nullptr;
    std::set<std::string> reached{}; ///< the names of the files, its own included
    std::vector<kel::Stencilor::Analysis::Finding> ofSyntax{};
    std::vector<kel::Stencilor::Analysis::Finding> ofNames{};
    std::optional<bool> looksUpNames{}; ///< nothing if that is not decided yet
};

/// Checks the open templates: all that `check` finds, each template with its includes.
///
/// A name is looked up where a context is known. What another open template includes is looked up
/// where it is included, and by itself only where a context belongs to it alone.
/// Ownership: borrows the documents and the workspace.
class Checks {
  public:
    /// Asked between steps; false interrupts them.
    using GoOn = std::function<bool()>;

    Checks(const Documents& documents, Workspace& workspace)
        : documents_(documents), workspace_(workspace) {}

    /// A text was changed. What includes it is checked again, too.
    void noteChange(const std::string& name);

    /// A file may have appeared, gone or changed, or a setting: everything is checked again.
    void noteChangeOfAll();

    bool areDue() const { return areDue_; }

    /// Checks what has to be checked.
    /// @return the names of the files whose findings may be other ones now; nothing if it was
    ///   interrupted
    std::optional<std::set<std::string>> run(const GoOn& goOn);

    /// Leaves it at what has been checked, until something changes.
    void giveUp() { areDue_ = false; }

    /// All that was found in a file, in its order, each finding once. They refer to the checks.
    std::vector<kel::Stencilor::Analysis::Finding> findingsIn(const std::string& name) const;

    /// The last check of an open template; null where it was not checked yet.
    const Check* of(const std::string& name) const;

    /// The check of the template by which names are looked up in an open one: its own, or that of
    /// one that includes it. Null where none has a context.
    Check* withContextFor(const std::string& name) const;

    /// The root below which an open template looks up its includes: its own, or that of the one
    /// which includes it.
    std::string rootOf(const Document& document);

    /// The contexts that are in use.
    std::vector<std::shared_ptr<const ContextFile>> contexts() const;

  private:
    void checkSyntax(const std::string& name);
    bool checkNames(Check& check, const GoOn& goOn);
    bool hasOwnNames(const Check& check) const;

    const Documents& documents_;
    Workspace& workspace_;
    std::map<std::string, std::unique_ptr<Check>> checks_; // by the name of the template
    std::set<std::string> pending_;                        // the names of what is parsed again
    bool areDue_ = false;
    std::set<std::string> affected_; // by what was interrupted
};

} // namespace stencilor::lsp

#endif
