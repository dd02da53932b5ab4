#ifndef LIBSTENCILOR_MODERN_LOOP_VARIABLES_H
#define LIBSTENCILOR_MODERN_LOOP_VARIABLES_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kel::Stencilor::internal {

/// The variables of the loops around the current position of a template walk.
///
/// Entering and leaving a variable takes time linear in its length, and finding the prefixes of a
/// name takes time linear in the length of the name, regardless of the number of variables. They
/// are stored in a trie, and linked from the newest to the oldest.
/// Copying: not possible, because it is not needed.
class loop_variables {
  public:
    loop_variables() = default;
    loop_variables(const loop_variables&) = delete;
    loop_variables& operator=(const loop_variables&) = delete;

    void enter(std::string_view variable);
    void leave();

    /// Replaces `lengths` by the numbers of bytes to strip from `name` for each key that is tried:
    /// for each loop, from the innermost outwards, the length of its variable and the dot if the
    /// name begins with them, otherwise 0; finally 0. Each length occurs once, at its first
    /// position.
    void collectPrefixes(std::string_view name, std::vector<std::uint32_t>& lengths);

  private:
    using node = std::uint32_t; // a node of the trie, and the variable that ends there
    static constexpr node none = 0;

    struct variable {
        node newer = none;
        node older = none;
        std::uint32_t entered = 0; // the number of its newest loop, from 1; 0 if it is not in force
        std::uint32_t length = 0;
    };

    /// An open loop, and the state to restore when it is left.
    struct open_loop {
        node entered;
        std::uint32_t formerly;
        node newer; // its newer neighbor, if it was in force before
    };

    node step(node from, char byte) const;
    node addStep(node from, char byte);
    void unlink(node linked);
    void linkAsOlder(node linked, node newer);

    std::vector<variable> variables_ = std::vector<variable>(1);
    // By node and byte. No template can make many of them share a bucket, because the keys are less
    // than 256 times their number.
    std::unordered_map<std::uint64_t, node> steps_;
    std::vector<open_loop> loops_;
    std::vector<node> matches_; // for one name; kept to reuse its memory
    // variables_[none] is the ends of the list: its `older` is the newest variable.
};

} // namespace kel::Stencilor::internal

#endif
