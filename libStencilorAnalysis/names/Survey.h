#ifndef LIBSTENCILORANALYSIS_NAMES_SURVEY_H
#define LIBSTENCILORANALYSIS_NAMES_SURVEY_H

#include <libStencilorAnalysis/finding/Finding.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kel::Stencilor::Analysis {

/// A loop around a tag. In an included file, the loops around the inclusion are around everything,
/// but their variables do not reach into the file.
struct Loop {
    std::string variable;
    std::string list;
    std::size_t inclusions; ///< how many inclusions lead to its file

    bool operator==(const Loop&) const = default;
};

/// The kind of value that a tag asks for.
enum class ValueKind { String, Boolean, List };

/// `string`, `boolean` or `list`.
const char* kindName(ValueKind kind);

/// A name in a tag.
struct NameUse {
    const TemplateFile& file;
    SyntaxRange name;
    ValueKind kind;
    const std::vector<Loop>& loops; ///< the outermost first; valid during the visit only
    std::size_t inclusions;         ///< how many lead to the file

    std::string_view text() const { return file.slice(name); }
};

/// Receives what a survey finds.
class Surveyor {
  public:
    Surveyor() = default;
    Surveyor(const Surveyor&) = delete;
    Surveyor& operator=(const Surveyor&) = delete;
    virtual ~Surveyor() = default;

    /// The name of a substitution, a condition, or the list of a loop, which is not among its own
    /// loops.
    virtual void visitName(const NameUse&) {}
    virtual void visitInclusion(const Inclusion&) {}
};

/// Walks a template and all that it includes, whatever the values are. A file is walked once for
/// the same loops around it, and never inside itself.
///
/// Returns what is wrong with the files. Of one that is rejected, the part before its fault is
/// walked.
std::vector<Finding> survey(TemplateFiles& files, const TemplateFile& file, Surveyor& surveyor);

} // namespace kel::Stencilor::Analysis

#endif
