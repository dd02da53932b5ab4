#ifndef LIBSTENCILOR_MODERN_NAME_TABLE_H
#define LIBSTENCILOR_MODERN_NAME_TABLE_H

#include <libKel/String.h>
#include <libStencilor/Syntax.h>

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>
#include <vector>

namespace kel::Stencilor::internal {

/// The position of the name or path of a record, and its keys.
struct name_use {
    std::uint32_t begin = 0;
    std::uint32_t size = 0;
    std::uint32_t line = 0;
    std::uint32_t column = 0;
    std::uint32_t keys = 0;     // of name_table
    std::uint32_t firstKey = 0; // likewise; `notKept` where it is not kept

    static constexpr std::uint32_t notKept = std::numeric_limits<std::uint32_t>::max();

    SyntaxRange range() const noexcept { return {begin, begin + size}; }
};

/// The keys of a name in a table. Names that are tried in the same way share them.
struct name_keys {
    std::uint32_t firstKey;
    std::uint32_t kept;
    std::uint32_t firstPrefix;
    std::uint32_t count;

    bool areAllKept() const noexcept { return kept == count; }
};

/// The names of one template, by the number of their record.
///
/// The keys of a name result from the loops around it, so the template alone determines them. Equal
/// names with equal keys share them. Keys are stored as strings as long as they take no more bytes
/// than the template. Other keys, except the name itself, are built when they are tried.
/// Threads: immutable.
class name_table {
  public:
    /// `text` is a template that is well formed up to its first NUL.
    explicit name_table(const String& text);

    const name_use& use(std::uint32_t number) const noexcept {
        assert(number < uses_.size()); // there is a record for each tag with a name
        return uses_[number];
    }

    const name_keys& keysOf(const name_use& use) const noexcept { return lists_[use.keys]; }

    /// The key that is tried first; null if it is not stored.
    const String* firstKey(const name_use& use) const noexcept {
        return use.firstKey == name_use::notKept ? nullptr : keys_.data() + use.firstKey;
    }

    /// The stored keys, in the order in which they are tried.
    std::span<const String> keptKeys(const name_keys& keys) const noexcept {
        return {keys_.data() + keys.firstKey, keys.kept};
    }

    /// The number of bytes to strip from the start of the name for each key. The stored keys come
    /// first.
    std::span<const std::uint32_t> prefixes(const name_keys& keys) const noexcept {
        return {prefixes_.data() + keys.firstPrefix, keys.count};
    }

    /// The name itself, for messages and paths: one of the stored keys, or stored after them.
    const String& nameOf(const name_use& use) const noexcept;

  private:
    class builder;

    std::vector<name_use> uses_;
    std::vector<name_keys> lists_;
    std::vector<String> keys_;
    std::vector<std::uint32_t> prefixes_;
};

} // namespace kel::Stencilor::internal

#endif
