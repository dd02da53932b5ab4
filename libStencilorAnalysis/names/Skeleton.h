#ifndef LIBSTENCILORANALYSIS_NAMES_SKELETON_H
#define LIBSTENCILORANALYSIS_NAMES_SKELETON_H

#include <libStencilorAnalysis/names/Survey.h>

#include <memory>
#include <string>
#include <vector>

namespace kel::Stencilor::Analysis {

/// Makes a context of the names that a template asks for, as a JSON text to fill in: empty strings,
/// `true`, lists of one element.
///
/// Where a value belongs: a name that begins with the variable of a loop around it, in its own
/// file, is a member of that loop's elements. In an included file the variables of the loops around
/// the inclusion do not count; there, a name outside of the file's own loops is taken for a member
/// of the innermost element. All others are members of the outermost object. A name with dots
/// becomes objects in each other, at most 32, unless a part of it is a name itself.
///
/// Limits: the names of one file become members of at most 100 different elements, so that files
/// that include each other in several loops do not multiply, and nothing nests deeper than a
/// context can.
class Skeleton final : public Surveyor {
  public:
    Skeleton();
    ~Skeleton() override;

    void visitTemplate(TemplateFiles& files, const TemplateFile& file) override;

    std::string formatJson() const;

    /// The names that are asked for as two kinds, of which the first one counts, and what a limit
    /// leaves out.
    const std::vector<std::string>& conflicts() const { return conflicts_; }

  private:
    class Values;
    class Builder;

    std::unique_ptr<Values> values_;
    std::vector<std::string> conflicts_;
};

} // namespace kel::Stencilor::Analysis

#endif
