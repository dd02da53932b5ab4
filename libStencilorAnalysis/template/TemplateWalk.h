#ifndef LIBSTENCILORANALYSIS_TEMPLATE_TEMPLATEWALK_H
#define LIBSTENCILORANALYSIS_TEMPLATE_TEMPLATEWALK_H

#include <libStencilorAnalysis/template/TemplateFiles.h>

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace kel::Stencilor::Analysis {

/// An include tag and its target.
struct Inclusion {
    const TemplateFile& from;
    const SyntaxElement& part;
    const TemplateFiles::Included& to;
};

/// Walks a template and its includes, tag by tag. The derived class decides what to visit next, and
/// which files to enter.
///
/// Ownership: borrows the files.
/// Nesting: does not use the call stack.
class TemplateWalk {
  public:
    TemplateWalk(const TemplateWalk&) = delete;
    TemplateWalk& operator=(const TemplateWalk&) = delete;

  protected:
    explicit TemplateWalk(TemplateFiles& files) : files_(files) {}
    ~TemplateWalk() = default;

    /// Walks a file, and those that are entered during the walk.
    void walkFile(const TemplateFile& file);

    /// Called by `visitInclusion` to walk the included file next. The walk then continues after the
    /// include.
    void enterFile(const TemplateFile& file);

    /// Ends the whole walk.
    void stop() { stopped_ = true; }

    /// The files being walked, each included by the one before it.
    const std::vector<const TemplateFile*>& path() const { return path_; }
    bool isOnPath(const TemplateFile& file) const { return positions_.contains(&file); }

    /// The first position in the path of a file that is on it.
    std::size_t positionOnPath(const TemplateFile& file) const {
        return positions_.at(&file).first;
    }

    /// Visits text, or a tag other than an include.
    /// @return the index of the part to visit next; the number of parts ends the file
    virtual std::size_t visit(const TemplateFile& file, std::size_t index) = 0;

    /// Visits an include.
    virtual void visitInclusion(const Inclusion& inclusion) = 0;

    /// Called at the end of a file, which is still the last one of the path.
    virtual void leaveFile() {}

  private:
    TemplateFiles& files_;
    struct Occurrences {
        std::size_t first;
        std::size_t count;
    };

    void leave();

    std::vector<const TemplateFile*> path_;
    std::vector<std::size_t> next_; // the index of the part to visit next in each file of the path
    std::unordered_map<const TemplateFile*, Occurrences> positions_; // in the path
    bool stopped_ = false;
};

} // namespace kel::Stencilor::Analysis

#endif
