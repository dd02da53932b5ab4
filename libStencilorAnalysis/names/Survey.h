#ifndef LIBSTENCILORANALYSIS_NAMES_SURVEY_H
#define LIBSTENCILORANALYSIS_NAMES_SURVEY_H

#include <libStencilorAnalysis/finding/Finding.h>

#include <cstddef>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace kel::Stencilor::Analysis {

/// The kind of value that a tag requires.
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

/// The name of a value in a part; its range is empty if there is none.
NameUse nameOf(const TemplateFile& file, std::size_t part);

/// Receives the results of a survey. The files must outlive it.
class Surveyor {
  public:
    Surveyor() = default;
    Surveyor(const Surveyor&) = delete;
    Surveyor& operator=(const Surveyor&) = delete;
    virtual ~Surveyor() = default;

    /// Called with each surveyed template, before its contents.
    virtual void visitTemplate(TemplateFiles&, const TemplateFile&) {}

    /// Called with the name of each substitution, condition, and list of a loop.
    virtual void visitName(const NameUse&) {}
    virtual void visitInclusion(const Inclusion&) {}

    /// Returns false for a file that was already visited.
    bool enter(const TemplateFile& file) { return entered_.insert(&file).second; }

  private:
    std::unordered_set<const TemplateFile*> entered_;
};

/// Walks a template and its includes, regardless of values. Each file is visited once, even by
/// several surveys with the same surveyor.
///
/// Returns the findings for the files. In a rejected file, only the well-formed tags are visited.
std::vector<Finding> survey(TemplateFiles& files, const TemplateFile& file, Surveyor& surveyor);

} // namespace kel::Stencilor::Analysis

#endif
