#ifndef LIBSTENCILORANALYSIS_NAMES_NAMELIST_H
#define LIBSTENCILORANALYSIS_NAMES_NAMELIST_H

#include <libStencilorAnalysis/names/Survey.h>

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <vector>

namespace kel::Stencilor::Analysis {

class JsonWriter;

/// Collects the names in templates, in the order of the survey. Equal names with the same kind,
/// file and loops are one entry. The five innermost loops of an entry and the first five includes
/// of its file are listed; the others are only counted.
class NameList final : public Surveyor {
  public:
    void visitName(const NameUse& use) override;
    void visitInclusion(const Inclusion& inclusion) override;

    /// One line per entry, with at most five lines of the template.
    std::string formatText() const;
    std::string formatJson() const;

  private:
    /// The innermost loop around a name, and through it the outer ones. 0 means none.
    using LoopsId = std::size_t;

    struct Loops {
        std::string_view variable;
        std::string_view list;
        LoopsId outer;
        std::size_t count; // including the outer ones
    };
    struct Entry {
        std::string_view name;
        ValueKind kind;
        LoopsId loops;
        std::vector<Place> places;
    };
    struct Inclusions {
        std::vector<Place> first;
        std::size_t count = 0;
    };
    using EntryKey = std::tuple<const TemplateFile*, std::string_view, ValueKind, LoopsId>;
    using LoopsKey = std::tuple<LoopsId, std::string_view, std::string_view>;

    LoopsId loopsAround(const NameUse& use) const;
    void openLoop(const NameUse& use, LoopsId outer);
    std::vector<const Loops*> innermostLoops(const Entry& entry) const;
    const Inclusions& inclusionsOf(const Entry& entry) const;
    std::string describeLoops(const Entry& entry) const;
    std::string describeSurroundings(const Entry& entry) const;
    void writeEntry(JsonWriter& json, const Entry& entry) const;

    std::vector<Entry> entries_;
    std::map<EntryKey, std::size_t> indices_; // of the entries
    std::vector<Loops> loops_{Loops{}};
    std::map<LoopsKey, LoopsId> knownLoops_;
    std::map<std::pair<const TemplateFile*, std::size_t>, LoopsId> inside_; // by the `for`
    std::unordered_map<const TemplateFile*, Inclusions> inclusions_;        // by the included file
};

} // namespace kel::Stencilor::Analysis

#endif
