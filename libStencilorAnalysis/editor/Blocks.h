#ifndef LIBSTENCILORANALYSIS_EDITOR_BLOCKS_H
#define LIBSTENCILORANALYSIS_EDITOR_BLOCKS_H

#include <libStencilorAnalysis/template/TemplateFile.h>

#include <cstddef>
#include <vector>

// The blocks of a template, for editors. In a rejected template, those that the analysis assumes.

namespace kel::Stencilor::Analysis {

/// The indices of the tags of a block.
struct BlockTags {
    std::size_t open;
    std::size_t otherwise; ///< its `else`, or `TemplateFile::none`
    std::size_t close;
    std::size_t depth; ///< the number of blocks around it
};

/// All blocks, in the order of their opening tags.
std::vector<BlockTags> findBlocks(const TemplateFile& file);

/// The part at an offset, or the later one between two parts, or `TemplateFile::none`.
std::size_t partAt(const TemplateFile& file, std::size_t offset);

/// The opening tags of the blocks around an offset, outermost first. The tags of a block are not
/// inside it.
std::vector<std::size_t> blocksAround(const TemplateFile& file, std::size_t offset);

/// True if the `else` of the block with the opening tag `open` is before an offset.
bool isAfterElse(const TemplateFile& file, std::size_t open, std::size_t offset);

/// The keyword of a tag; empty for text and substitutions.
SyntaxRange keywordRangeOf(const TemplateFile& file, const SyntaxElement& tag);

/// The `in` of a loop.
SyntaxRange inOf(const TemplateFile& file, const SyntaxElement& loop);

} // namespace kel::Stencilor::Analysis

#endif
