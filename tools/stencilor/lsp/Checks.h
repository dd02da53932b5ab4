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

/// An open template with its includes, as they were when it was checked.
struct Check {
    explicit Check(Surroundings surroundings, const Documents& documents)
        : around(std::move(surroundings)), reader(around.root, documents), files(reader) {}

    Surroundings around;
    BufferedFolder reader;
    kel::Stencilor::Analysis::TemplateFiles files;
    const kel::Stencilor::Analysis::TemplateFile* file = nullptr;
    std::set<std::string> reached{}; ///< the names of the files, including its own
    std::vector<kel::Stencilor::Analysis::Finding> ofSyntax{};
    std::vector<kel::Stencilor::Analysis::Finding> ofNames{};
    std::optional<bool> looksUpNames{}; ///< empty if not yet decided
};

/// Checks the open templates, each with its includes, as `check` does.
///
/// Names are looked up if a context is known. If another open template includes a template, names
/// are looked up there, and on its own only if it has a context of its own.
/// Ownership: borrows the documents and the workspace.
class Checks {
  public:
    /// Called between steps, which it interrupts by returning false.
    using GoOn = std::function<bool()>;

    Checks(const Documents& documents, Workspace& workspace)
        : documents_(documents), workspace_(workspace) {}

    /// Call this when a document has changed. Templates that include it are also checked again.
    void noteChange(const std::string& name);

    /// Call this when files or settings may have changed. Everything is checked again.
    void noteChangeOfAll();

    bool areDue() const { return areDue_; }

    /// Runs the pending checks.
    /// @return the names of the files whose findings may have changed; nothing if it was
    ///   interrupted
    std::optional<std::set<std::string>> run(const GoOn& goOn);

    /// Drops the pending checks.
    void giveUp() { areDue_ = false; }

    /// The findings in a file, sorted and without duplicates. They refer to the checks.
    std::vector<kel::Stencilor::Analysis::Finding> findingsIn(const std::string& name) const;

    /// The check that is used to look up names in an open template: its own, or that of a template
    /// that includes it. Null if none has a context.
    Check* withContextFor(const std::string& name) const;

    /// The root for the includes of an open template: its own, or that of the template that
    /// includes it.
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
    std::set<std::string> pending_;                        // the names of templates to parse again
    bool areDue_ = false;
    std::set<std::string> affected_; // by interrupted checks
};

} // namespace stencilor::lsp

#endif
