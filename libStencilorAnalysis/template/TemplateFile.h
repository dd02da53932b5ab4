#ifndef LIBSTENCILORANALYSIS_TEMPLATE_TEMPLATEFILE_H
#define LIBSTENCILORANALYSIS_TEMPLATE_TEMPLATEFILE_H

#include <libStencilorAnalysis/template/TagRepair.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kel::Stencilor::Analysis {

/// A position as in editors: from 1, columns in code points. A byte-order mark does not count, and
/// malformed bytes count as the U+FFFD that replaces them.
struct Position {
    std::size_t line;
    std::size_t column;
};

/// A line without its line break and without a byte-order mark.
struct Line {
    std::size_t number; ///< from 1
    std::size_t begin;  ///< the offset of its text in the template
    std::string_view text;
};

/// A parsed template.
///
/// Cost: construction takes linear time; finding a position or a line takes logarithmic time.
/// Ownership: owns its text; what it returns refers to it.
/// Copying: not possible, because findings refer to it.
/// Errors: text over 4 GiB - 1 byte throws `std::length_error`.
class TemplateFile {
  public:
    /// `name` is its name in findings.
    TemplateFile(std::string name, std::string text);
    TemplateFile(const TemplateFile&) = delete;
    TemplateFile& operator=(const TemplateFile&) = delete;

    const std::string& name() const { return name_; }
    const std::string& text() const { return text_; }

    /// The fault for which the engine rejects the template, if any.
    const SyntaxFault& fault() const { return fault_; }

    /// This fault and those found after it.
    const TemplateFaults& faults() const { return faults_; }

    /// The text and tags in order; for a rejected template, those that `readTemplate` returns.
    const std::vector<SyntaxElement>& parts() const { return parts_; }

    /// The index of the tag that ends the part opened by an `if`, `for` or `else`. The template
    /// must be well formed.
    std::size_t endOf(std::size_t part) const { return ends_[part]; }

    /// The index after the whole block of an `if` or `for`.
    std::size_t afterBlock(std::size_t part) const;

    /// No part.
    static constexpr std::size_t none = 0xFFFFFFFF;

    /// The index of the innermost `for` around a part; `none` outside loops.
    std::size_t loopAround(std::size_t part) const { return loops_[part]; }

    std::string_view slice(SyntaxRange range) const;
    Position positionOf(std::size_t offset) const;
    Line lineAt(std::size_t offset) const;

  private:
    /// A position in a long line, with the number of code points before it.
    struct Mark {
        unsigned int offset;
        unsigned int points;
    };

    void findLines();
    void markLine(std::size_t begin, std::size_t end);
    void findBlocks();

    std::string name_;
    std::string text_;
    std::vector<unsigned int> lines_; // their offsets
    std::vector<Mark> marks_;
    std::vector<SyntaxElement> parts_;
    std::vector<unsigned int> ends_;  // for each part that opens a block
    std::vector<unsigned int> loops_; // for each part
    TemplateFaults faults_;
    SyntaxFault fault_;
};

} // namespace kel::Stencilor::Analysis

#endif
