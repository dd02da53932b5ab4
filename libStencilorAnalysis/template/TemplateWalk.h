#ifndef LIBSTENCILORANALYSIS_TEMPLATE_TEMPLATEWALK_H
#define LIBSTENCILORANALYSIS_TEMPLATE_TEMPLATEWALK_H

#include <libStencilorAnalysis/template/TemplateFiles.h>

#include <cstddef>
#include <vector>

namespace kel::Stencilor::Analysis {

/// A tag that includes a file, and what it leads to.
struct Inclusion {
    const TemplateFile& from;
    const SyntaxElement& part;
    const TemplateFiles::Included& to;
};

/// Walks a template and the files that it includes, tag by tag. What to visit next, and which files
/// to enter, is for the derived class to decide.
///
/// Ownership: borrows the files.
/// Nesting: blocks take no call stack, inclusions do.
class TemplateWalk {
  public:
    TemplateWalk(const TemplateWalk&) = delete;
    TemplateWalk& operator=(const TemplateWalk&) = delete;

  protected:
    explicit TemplateWalk(TemplateFiles& files) : files_(files) {}
    ~TemplateWalk() = default;

    void walkFile(const TemplateFile& file);

    /// Ends the whole walk.
    void stop() { stopped_ = true; }

    /// The files that are being walked, each included by the one before it.
    const std::vector<const TemplateFile*>& path() const { return path_; }
    bool isOnPath(const TemplateFile& file) const;

    /// Visits a text or a tag other than an inclusion.
    /// @return the index of the part to visit next; the number of parts ends the file
    virtual std::size_t visit(const TemplateFile& file, std::size_t index) = 0;

    /// Visits an inclusion. Enters the file by `walkFile`, if at all.
    virtual void visitInclusion(const Inclusion& inclusion) = 0;

  private:
    TemplateFiles& files_;
    std::vector<const TemplateFile*> path_;
    bool stopped_ = false;
};

} // namespace kel::Stencilor::Analysis

#endif
