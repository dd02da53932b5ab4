#ifndef LIBSTENCILORANALYSIS_NAMES_DEPENDENCIES_H
#define LIBSTENCILORANALYSIS_NAMES_DEPENDENCIES_H

#include <libStencilorAnalysis/names/Survey.h>

#include <set>
#include <string>
#include <vector>

namespace kel::Stencilor::Analysis {

/// Collects the files that a template includes, directly or through others. Each is listed once,
/// even if it is missing; the template itself is not listed.
class Dependencies final : public Surveyor {
  public:
    explicit Dependencies(const TemplateFile& file) : seen_{&file} {}

    void visitInclusion(const Inclusion& inclusion) override;

    /// The names of the files, in the order of the survey.
    const std::vector<std::string>& names() const { return names_; }

  private:
    std::set<const TemplateFile*> seen_;
    std::set<std::string> missing_;
    std::vector<std::string> names_;
};

} // namespace kel::Stencilor::Analysis

#endif
