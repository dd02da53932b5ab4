#ifndef TOOLS_STENCILOR_COMMANDS_NAMEDTEMPLATES_H
#define TOOLS_STENCILOR_COMMANDS_NAMEDTEMPLATES_H

#include <libStencilor/Value.h>
#include <libStencilorAnalysis/finding/Finding.h>
#include <tools/stencilor/commands/TemplateFolder.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace stencilor {

/// The templates that the user names, with their includes and findings.
///
/// Ownership: borrows the request and the files. Owns the templates, whose addresses do not change.
/// Errors: throws `Failure`.
class NamedTemplates {
  public:
    /// A template and its files.
    struct Named {
        kel::Stencilor::Analysis::TemplateFiles& files;
        const kel::Stencilor::Analysis::TemplateFile& file;
    };

    /// Creates the context, if there is one.
    /// @param contextText if not null, receives the JSON text of its file
    NamedTemplates(const Request& request, Files& files, std::string* contextText = nullptr);

    /// Reads a template; `-` is the standard input.
    /// @param root where its includes are looked up; nothing for the root of the call
    Named open(const std::string& file, const std::optional<std::string>& root = {});

    /// Reads all templates, and reports rejected ones.
    /// @return the templates; none if one is rejected
    std::vector<Named> openAll();

    /// Reports names in a template that the context, if there is one, does not have.
    std::vector<kel::Stencilor::Analysis::Finding> findContextFaults(const Named& named) const;

    /// Null if there is none.
    const kel::Stencilor::ContextBase* context() const {
        return context_ ? &static_cast<const kel::Stencilor::ContextBase&>(*context_) : nullptr;
    }

  private:
    /// Templates with different roots include different files.
    struct Root {
        Root(const std::string& path, Files& readFiles) : folder(path, readFiles), files(folder) {}

        TemplateFolder folder;
        kel::Stencilor::Analysis::TemplateFiles files;
    };

    const Request& request_;
    Files& files_;
    std::optional<kel::Stencilor::Context> context_;
    std::map<std::string, Root> roots_;
};

/// Adds findings at new locations.
void addNew(std::vector<kel::Stencilor::Analysis::Finding>& findings,
            std::vector<kel::Stencilor::Analysis::Finding> more);

} // namespace stencilor

#endif
