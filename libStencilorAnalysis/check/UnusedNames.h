#ifndef LIBSTENCILORANALYSIS_CHECK_UNUSEDNAMES_H
#define LIBSTENCILORANALYSIS_CHECK_UNUSEDNAMES_H

#include <libStencilor/Stencilor.h>
#include <libStencilorAnalysis/names/Survey.h>

#include <string>
#include <unordered_set>
#include <vector>

namespace kel::Stencilor::Analysis {

/// Finds the names in a context that no template uses, regardless of the values.
///
/// A value is used if any tag has its name, or a name that begins with it and a dot, with or
/// without a loop variable as a prefix. Members of a boolean are also used if its block contains
/// their names without a prefix. A name that is used anywhere counts as used everywhere.
class UnusedNames final : public Surveyor {
  public:
    void visitName(const NameUse& use) override;

    /// The sorted names in `context`, as templates write them: `user.name`, and `items.title` for a
    /// member of list elements. Members of unused values are omitted.
    std::vector<std::string> find(const ContextBase& context) const;

  private:
    bool isUsedInBoolean(const ContextBase& scope, const std::string& name) const;

    std::unordered_set<std::string> used_;
};

} // namespace kel::Stencilor::Analysis

#endif
