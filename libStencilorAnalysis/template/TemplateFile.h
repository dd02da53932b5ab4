#ifndef LIBSTENCILORANALYSIS_TEMPLATE_TEMPLATEFILE_H
#define LIBSTENCILORANALYSIS_TEMPLATE_TEMPLATEFILE_H

#include <libStencilorAnalysis/template/TagRepair.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kel::Stencilor::Analysis {

/// A place as editors count it: from 1, columns in code points. A byte-order mark is not a column,
/// and malformed bytes count as the U+FFFD that replaces them.
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
/// Cost: made in linear time. A place or a line is found in logarithmic time.
/// Ownership: owns its text; what it returns is borrowed from it.
/// Copying: not possible, since findings refer to it.
/// Errors: a text over 4 GiB - 1 byte throws `std::length_error`.
class TemplateFile {
  public:
    /// `name` is what findings call it.
    TemplateFile(std::string name, std::string text);
    TemplateFile(const TemplateFile&) = delete;
    TemplateFile& operator=(const TemplateFile&) = delete;

    const std::string& name() const { return name_; }
    const std::string& text() const { return text_; }

    /// Why the engine rejects the template, if it does.
    const SyntaxFault& fault() const { return fault_; }

    /// That fault, and those that are found after it.
    const TemplateFaults& faults() const { return faults_; }

    /// The texts and tags in their order; in a template that is rejected, those that `readTemplate`
    /// finds.
    const std::vector<SyntaxElement>& parts() const { return parts_; }

    /// The index of the tag that ends what an `if`, a `for` or an `else` opens. The template must
    /// be well formed.
    std::size_t endOf(std::size_t part) const { return ends_[part]; }

    /// The index after the whole block that an `if` or a `for` opens.
    std::size_t afterBlock(std::size_t part) const;

    /// No part.
    static constexpr std::size_t none = 0xFFFFFFFF;

    /// The index of the innermost `for` around a part, which is not its own; `none` outside loops.
    std::size_t loopAround(std::size_t part) const { return loops_[part]; }

    std::string_view slice(SyntaxRange range) const;
    Position positionOf(std::size_t offset) const;
    Line lineAt(std::size_t offset) const;

  private:
    /// A place in a long line, with the code points before it in that line.
    struct Mark {
        unsigned int offset;
        unsigned int points;
    };

    void findLines();
    void markLine(std::size_t begin, std::size_t end);
    void findBlocks();

    std::string name_;
    std::string text_;
    std::vector<unsigned int> lines_; // where they begin
    std::vector<Mark> marks_;
    std::vector<SyntaxElement> parts_;
    std::vector<unsigned int> ends_;  // of each part that opens something
    std::vector<unsigned int> loops_; // around each part
    TemplateFaults faults_;
    SyntaxFault fault_;
};

} // namespace kel::Stencilor::Analysis

#endif
