#ifndef LIBSTENCILORANALYSIS_EDITOR_BLOCKS_H
#define LIBSTENCILORANALYSIS_EDITOR_BLOCKS_H

#include <libStencilorAnalysis/template/TemplateFile.h>

#include <cstddef>
#include <vector>

// The blocks of a template, as editors show them. In a template that is rejected, those that the
// analysis goes on with.

namespace kel::Stencilor::Analysis {

/// The tags of a block, as indices of parts.
struct BlockTags {
    std::size_t open;
    std::size_t otherwise; ///< its `else`; `TemplateFile::none` without one
    std::size_t close;
    std::size_t depth; ///< how many blocks are around it
};

/// All blocks, in the order in which they open.
std::vector<BlockTags> findBlocks(const TemplateFile& file);

/// The part at an offset, the later one between two; `TemplateFile::none` where there is none.
std::size_t partAt(const TemplateFile& file, std::size_t offset);

/// The tags that open the blocks around an offset, the outermost first. The tags of a block are not
/// inside it.
std::vector<std::size_t> blocksAround(const TemplateFile& file, std::size_t offset);

/// Whether the `else` of the block that `open` opens comes before an offset.
bool isAfterElse(const TemplateFile& file, std::size_t open, std::size_t offset);

/// The keyword of a tag; empty for texts and substitutions.
SyntaxRange keywordRangeOf(const TemplateFile& file, const SyntaxElement& tag);

/// The `in` of a loop.
SyntaxRange inOf(const TemplateFile& file, const SyntaxElement& loop);

} // namespace kel::Stencilor::Analysis

#endif
