#ifndef LIBSTENCILORANALYSIS_CHECK_UNUSEDNAMES_H
#define LIBSTENCILORANALYSIS_CHECK_UNUSEDNAMES_H

#include <libStencilor/Stencilor.h>
#include <libStencilorAnalysis/names/Survey.h>

#include <string>
#include <unordered_set>
#include <vector>

namespace kel::Stencilor::Analysis {

/// Finds the names in a context that no template uses, whatever the values are.
///
/// A value is used if some tag has its name, a name that begins with it and a dot, or such a name
/// after the variable of a loop, or if it is a member of a boolean, which its block names alone. So
/// a name that is used anywhere counts as used everywhere.
class UnusedNames final : public Surveyor {
  public:
    void visitName(const NameUse& use) override;

    /// The names in `context`, sorted, as a template names them: `user.name`, and `items.title` for
    /// a member of the elements of a list. The members of a value that is not used are left out.
    std::vector<std::string> find(const ContextBase& context) const;

  private:
    bool isUsedInBoolean(const ContextBase& scope, const std::string& name) const;

    std::unordered_set<std::string> used_;
};

} // namespace kel::Stencilor::Analysis

#endif
