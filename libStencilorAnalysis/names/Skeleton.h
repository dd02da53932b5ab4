#ifndef LIBSTENCILORANALYSIS_NAMES_SKELETON_H
#define LIBSTENCILORANALYSIS_NAMES_SKELETON_H

#include <libStencilorAnalysis/names/Survey.h>

#include <memory>
#include <string>
#include <vector>

namespace kel::Stencilor::Analysis {

/// Writes a context with the names that a template uses, as JSON text to be filled in, with empty
/// strings, `true`, and lists with one element.
///
/// Where a value belongs: a name with the variable of a loop in the same file is a member of that
/// loop's elements. In a file that is included in a loop, a name outside the file's own loops is a
/// member of the elements of the innermost loop around the include. All other names are members of
/// the root. A dotted name becomes up to 32 nested objects, unless a prefix of it is a name itself.
///
/// Limits: the names of one file become members of at most 100 elements, so that files that include
///   each other in several loops do not multiply. Nothing is nested deeper than a context can be.
class Skeleton final : public Surveyor {
  public:
    Skeleton();
    ~Skeleton() override;

    void visitTemplate(TemplateFiles& files, const TemplateFile& file) override;

    std::string formatJson() const;

    /// Names that are used as two kinds (the first one counts), and omissions because of a limit.
    const std::vector<std::string>& conflicts() const { return conflicts_; }

  private:
    class Values;
    class Builder;

    std::unique_ptr<Values> values_;
    std::vector<std::string> conflicts_;
};

} // namespace kel::Stencilor::Analysis

#endif
