#ifndef LIBSTENCILORANALYSIS_NAMES_SURVEY_H
#define LIBSTENCILORANALYSIS_NAMES_SURVEY_H

#include <libStencilorAnalysis/finding/Finding.h>

#include <cstddef>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace kel::Stencilor::Analysis {

/// The kind of value that a tag asks for.
enum class ValueKind { String, Boolean, List };

/// `string`, `boolean` or `list`.
const char* kindName(ValueKind kind);

/// A name in a tag.
struct NameUse {
    const TemplateFile& file;
    std::size_t part; ///< the index of the tag
    SyntaxRange name;
    ValueKind kind;

    std::string_view text() const { return file.slice(name); }
};

/// The name that a part asks the context for; its range is empty if there is none.
NameUse nameOf(const TemplateFile& file, std::size_t part);

/// Receives what a survey finds. The files outlive it.
class Surveyor {
  public:
    Surveyor() = default;
    Surveyor(const Surveyor&) = delete;
    Surveyor& operator=(const Surveyor&) = delete;
    virtual ~Surveyor() = default;

    /// The template that is surveyed, before all that is found in it.
    virtual void visitTemplate(TemplateFiles&, const TemplateFile&) {}

    /// The name of a substitution, a condition, or the list of a loop.
    virtual void visitName(const NameUse&) {}
    virtual void visitInclusion(const Inclusion&) {}

    /// False for a file whose names and inclusions it has received already.
    bool enter(const TemplateFile& file) { return entered_.insert(&file).second; }

  private:
    std::unordered_set<const TemplateFile*> entered_;
};

/// Walks a template and all that it includes, whatever the values are, each file once, also in
/// several surveys for the same surveyor.
///
/// Returns what is wrong with the files. Of one that is rejected, the tags that are not
/// at fault are walked.
std::vector<Finding> survey(TemplateFiles& files, const TemplateFile& file, Surveyor& surveyor);

} // namespace kel::Stencilor::Analysis

#endif
