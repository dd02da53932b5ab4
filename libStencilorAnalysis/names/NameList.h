#ifndef LIBSTENCILORANALYSIS_NAMES_NAMELIST_H
#define LIBSTENCILORANALYSIS_NAMES_NAMELIST_H

#include <libStencilorAnalysis/names/Survey.h>

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace kel::Stencilor::Analysis {

/// One name of one kind, inside the same loops.
struct NameEntry {
    std::string name;
    ValueKind kind;
    std::vector<Loop> loops;
    std::vector<Place> places;
};

/// Collects names in the order in which the survey finds them.
class NameList final : public Surveyor {
  public:
    void visitName(const NameUse& use) override;

    std::string formatText() const;
    std::string formatJson() const;

  private:
    NameEntry& entryOf(const NameUse& use);

    std::vector<NameEntry> entries_;
    std::multimap<std::string, std::size_t, std::less<>> indices_; // of the entries, by name
};

} // namespace kel::Stencilor::Analysis

#endif
