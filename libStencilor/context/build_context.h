#ifndef LIBSTENCILOR_CONTEXT_BUILD_CONTEXT_H
#define LIBSTENCILOR_CONTEXT_BUILD_CONTEXT_H

#include <libStencilor/Value.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace kel::Stencilor::internal {

/// The memory limit for the dotted names of a context, in bytes.
inline constexpr std::uint64_t dotted_names_limit = std::uint64_t{512} << 20;

/// Builds the tree of context classes from a value; `Context` documents the rules and errors.
std::unique_ptr<ContextBase> buildContext(const Value& root, const ContextOptions& options,
                                          std::uint64_t limit = dotted_names_limit);

/// The rules for building context values, whatever they are built from. Values are built from the
/// inside out, so that the names of nested dictionaries are complete when those of the outer one
/// are added.
class context_builder {
  public:
    explicit context_builder(const ContextOptions& options,
                             std::uint64_t limit = dotted_names_limit)
        : options_(options), limit_(limit) {}

    static constexpr const char* booleanKey = "$boolean";

    /// Throws unless the member `booleanKey` of a dictionary is a boolean.
    static void checkBoolean(bool isBoolean);

    /// Adds names for everything nested in `dictionary`, whose members are complete.
    void addDottedNames(ContextBase& dictionary);

    /// Creates the element of a list from an item other than a dictionary; null if there is none.
    std::unique_ptr<ContextBase> wrapItem(std::unique_ptr<ContextBase> item) const;

    /// Adds the positions of the elements of `list`, which is complete, if the options request
    /// them.
    void addPositions(ContextIterable& list) const;

  private:
    void addDottedNames(ContextBase& dictionary, const String& key, const ContextBase& nested);
    void addPosition(ContextBase& element, std::size_t index, std::size_t count) const;
    void countDottedName(const String& name, const ContextBase* original);

    const ContextOptions options_;
    const std::uint64_t limit_; // for the dotted names, in bytes
    const String valueKey_ = "value";
    const String indexKey_ = "index";
    const String firstKey_ = "first";
    const String lastKey_ = "last";
    std::uint64_t dottedNames_ = 0; // their memory in bytes
};

} // namespace kel::Stencilor::internal

#endif
