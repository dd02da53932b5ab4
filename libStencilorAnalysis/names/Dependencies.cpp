#include <libStencilorAnalysis/names/Dependencies.h>

namespace kel::Stencilor::Analysis {

void Dependencies::visitInclusion(const Inclusion& inclusion) {
    const auto& [answer, name, file] = inclusion.to;
    if (file != nullptr ? seen_.insert(file).second : missing_.insert(name).second) {
        names_.push_back(name);
    }
}

} // namespace kel::Stencilor::Analysis
