#ifndef LIBSTENCILORANALYSIS_NAMES_SKELETON_H
#define LIBSTENCILORANALYSIS_NAMES_SKELETON_H

#include <libStencilorAnalysis/names/Survey.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kel::Stencilor::Analysis {

/// Makes a context of the names that a template asks for, as a JSON text to fill in: empty strings,
/// `true`, lists of one element.
///
/// Where a value belongs: a name that begins with the variable of a loop around it, in its own
/// file, is a member of that loop's elements. In an included file the variables of the loops around
/// the inclusion do not count; there, a name outside of the file's own loops is taken for a member
/// of the innermost element. All others are members of the outermost object. A name with dots
/// becomes objects in each other, unless a part of it is a name itself.
class Skeleton final : public Surveyor {
  public:
    Skeleton();
    ~Skeleton() override;

    void visitName(const NameUse& use) override;

    std::string formatJson() const;

    /// The names that are asked for as two kinds. The first one counts.
    const std::vector<std::string>& conflicts() const { return conflicts_; }

  private:
    struct Value;
    struct Owner;

    Owner findOwner(std::string_view name, const std::vector<Loop>& loops, std::size_t count,
                    std::size_t inclusions);
    Value& elementOf(const std::vector<Loop>& loops, std::size_t index);

    std::unique_ptr<Value> root_;
    std::vector<std::string> conflicts_;
};

} // namespace kel::Stencilor::Analysis

#endif
