#ifndef TOOLS_STENCILOR_TEMPLATE_FILE_H
#define TOOLS_STENCILOR_TEMPLATE_FILE_H

#include <libStencilor/Syntax.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace stencilor {

using kel::Stencilor::SyntaxElement;
using kel::Stencilor::SyntaxFault;
using kel::Stencilor::SyntaxRange;

/// Where something stands, as editors count: from 1, columns in code points. A byte-order mark is
/// no column, and what is malformed counts as the U+FFFD that would be shown.
struct Position {
    std::size_t line;
    std::size_t column;
};

/// A line without its end and without a byte-order mark.
struct Line {
    std::size_t number; ///< from 1
    std::size_t begin;  ///< the offset of its text in the template
    std::string_view text;
};

/// A template with its syntax.
///
/// Ownership: owns its text; what it returns is borrowed from it.
/// Copying: not possible, findings refer to it.
class TemplateFile {
  public:
    /// `name` is what messages call it.
    TemplateFile(std::string name, std::string text);
    TemplateFile(const TemplateFile&) = delete;
    TemplateFile& operator=(const TemplateFile&) = delete;

    const std::string& name() const { return name_; }
    const std::vector<SyntaxElement>& parts() const { return parts_; }
    const SyntaxFault& fault() const { return fault_; }

    std::string_view textOf(SyntaxRange range) const;
    Position positionOf(std::size_t offset) const;
    Line lineAt(std::size_t offset) const;

  private:
    std::string name_;
    std::string text_;
    std::vector<std::size_t> lines_; // where they begin
    std::vector<SyntaxElement> parts_;
    SyntaxFault fault_;
};

} // namespace stencilor

#endif
