#ifndef LIBSTENCILORANALYSIS_TEMPLATE_TEMPLATEWALK_H
#define LIBSTENCILORANALYSIS_TEMPLATE_TEMPLATEWALK_H

#include <libStencilorAnalysis/template/TemplateFiles.h>

#include <cstddef>
#include <unordered_map>
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
/// Nesting: takes no call stack.
class TemplateWalk {
  public:
    TemplateWalk(const TemplateWalk&) = delete;
    TemplateWalk& operator=(const TemplateWalk&) = delete;

  protected:
    explicit TemplateWalk(TemplateFiles& files) : files_(files) {}
    ~TemplateWalk() = default;

    /// Walks a file, and those that are entered meanwhile.
    void walkFile(const TemplateFile& file);

    /// To be called by `visitInclusion`: walks the included file next. The walk then goes on after
    /// the inclusion.
    void enterFile(const TemplateFile& file);

    /// Ends the whole walk.
    void stop() { stopped_ = true; }

    /// The files that are being walked, each included by the one before it.
    const std::vector<const TemplateFile*>& path() const { return path_; }
    bool isOnPath(const TemplateFile& file) const { return positions_.contains(&file); }

    /// Where in the path a file is that is on it, the first time.
    std::size_t positionOnPath(const TemplateFile& file) const {
        return positions_.at(&file).first;
    }

    /// Visits a text or a tag other than an inclusion.
    /// @return the index of the part to visit next; the number of parts ends the file
    virtual std::size_t visit(const TemplateFile& file, std::size_t index) = 0;

    /// Visits an inclusion.
    virtual void visitInclusion(const Inclusion& inclusion) = 0;

    /// Called when a file has been walked, which is still the last one of the path.
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
