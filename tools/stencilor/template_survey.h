#ifndef TOOLS_STENCILOR_TEMPLATE_SURVEY_H
#define TOOLS_STENCILOR_TEMPLATE_SURVEY_H

#include <tools/stencilor/failure.h>
#include <tools/stencilor/finding.h>
#include <tools/stencilor/template_files.h>

#include <cstddef>
#include <string>
#include <vector>

namespace stencilor {

/// A loop that something stands in, from the outside to the inside. In an included file, the loops
/// around the inclusion are around all of it, but their variables do not reach into it.
struct Loop {
    std::string variable;
    std::string list;
    std::size_t inclusions; ///< how many inclusions lead to its file

    bool operator==(const Loop&) const = default;
};

/// What is told of each name or inclusion that is come to.
struct Use {
    const TemplateFile& file;
    const SyntaxElement& part;
    const std::vector<Loop>& loops;
    std::size_t inclusions; ///< how many lead to the file
};

/// Receives what a survey comes to.
class Surveyor {
  public:
    Surveyor() = default;
    Surveyor(const Surveyor&) = delete;
    Surveyor& operator=(const Surveyor&) = delete;
    virtual ~Surveyor() = default;

    /// A tag that has a name: a substitution, an `if` or a `for`, which is not among its own loops.
    virtual void visitName(const Use& use) = 0;
    /// An inclusion. `path` is that of the file, from the working directory; `file` is null where
    /// it cannot be read.
    virtual void visitInclusion(const std::string& path, const TemplateFile* file) = 0;
};

/// Goes through a template and all that it includes, whatever the values are. A file is gone
/// through once for the same loops around it, and never inside of itself.
///
/// Returns what is wrong with the files. Of one that is rejected the part before its fault is gone
/// through.
std::vector<Finding> survey(TemplateFiles& files, const TemplateFile& file, Surveyor& surveyor);

/// Prints what is wrong, and tells how a command ends that has written its output in spite of it.
ExitStatus printFindings(const std::vector<Finding>& findings);

} // namespace stencilor

#endif
