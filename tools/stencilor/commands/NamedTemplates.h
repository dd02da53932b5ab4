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

/// The templates that the user names, with those that they include, and what is found in them.
///
/// Ownership: borrows the request and the files that are read. Owns the templates, which stay where
///   they are for as long as this object.
/// Errors: throws `Failure`.
class NamedTemplates {
  public:
    /// A template, and the files that it belongs to.
    struct Named {
        kel::Stencilor::Analysis::TemplateFiles& files;
        const kel::Stencilor::Analysis::TemplateFile& file;
    };

    /// Makes the context, where there is one.
    /// @param contextText if not null, receives the JSON text of its file
    NamedTemplates(const Request& request, Files& files, std::string* contextText = nullptr);

    /// Reads a template, `-` for the standard input.
    Named open(const std::string& file);

    /// Reads all templates, and reports where one is rejected.
    /// @return the templates; none where one is rejected
    std::vector<Named> openAll();

    /// Which names the context, if there is one, does not have for a template.
    std::vector<kel::Stencilor::Analysis::Finding> findContextFaults(const Named& named) const;

    /// Null where none is given.
    const kel::Stencilor::ContextBase* context() const {
        return context_ ? &static_cast<const kel::Stencilor::ContextBase&>(*context_) : nullptr;
    }

  private:
    /// With another root, other files are included.
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

/// Adds findings without those whose places are known.
void addNew(std::vector<kel::Stencilor::Analysis::Finding>& findings,
            std::vector<kel::Stencilor::Analysis::Finding> more);

} // namespace stencilor

#endif
