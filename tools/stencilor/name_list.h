#ifndef TOOLS_STENCILOR_NAME_LIST_H
#define TOOLS_STENCILOR_NAME_LIST_H

#include <tools/stencilor/template_survey.h>

#include <string>
#include <vector>

namespace stencilor {

/// The kind of value that a tag asks for.
enum class ValueKind { String, Boolean, List };

const char* textOf(ValueKind kind);

/// What the tag of a use asks for: the kind, and where the name stands.
ValueKind kindOf(const SyntaxElement& part);
SyntaxRange nameOf(const SyntaxElement& part);

/// One name of one kind, inside the same loops.
struct NameEntry {
    std::string name;
    ValueKind kind;
    std::vector<Loop> loops;
    std::vector<Place> places;
};

/// Collects names in the order in which they are come to.
class NameList final : public Surveyor {
  public:
    void visitName(const Use& use) override;
    void visitInclusion(const std::string&, const TemplateFile*) override {}

    std::string formatText() const;
    std::string formatJson() const;

  private:
    std::vector<NameEntry> entries_;
};

} // namespace stencilor

#endif
