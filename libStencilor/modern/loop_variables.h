#ifndef LIBSTENCILOR_MODERN_LOOP_VARIABLES_H
#define LIBSTENCILOR_MODERN_LOOP_VARIABLES_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kel::Stencilor::internal {

/// The variables of the loops around one place of a template, while the template is walked.
///
/// Entering and leaving a variable take time in its length, and so does finding the prefixes of a
/// name in that of the name, however many variables are in force: they are held in a trie, and
/// linked from the newest to the oldest.
/// Copying: not possible, nothing needs two.
class loop_variables {
  public:
    loop_variables() = default;
    loop_variables(const loop_variables&) = delete;
    loop_variables& operator=(const loop_variables&) = delete;

    void enter(std::string_view variable);
    void leave();

    /// Replaces `lengths` by how much of `name` is stripped to make each key that it is tried as:
    /// for each loop from the innermost outwards, its variable and the dot where the name begins
    /// with them, and otherwise nothing; at last nothing. Each length is given once, at its first
    /// place.
    void collectPrefixes(std::string_view name, std::vector<std::uint32_t>& lengths);

  private:
    using node = std::uint32_t; // of the trie; also the variable that ends there
    static constexpr node none = 0;

    struct variable {
        node newer = none;
        node older = none;
        std::uint32_t entered = 0; // the newest of its loops, counted from 1; 0: not in force
        std::uint32_t length = 0;
    };

    /// An open loop, and what leaving it restores.
    struct open_loop {
        node entered;
        std::uint32_t formerly;
        node newer; // the neighbour that it was next to, if it was in force before
    };

    node step(node from, char byte) const;
    node addStep(node from, char byte);
    void unlink(node linked);
    void linkAsOlder(node linked, node newer);

    std::vector<variable> variables_ = std::vector<variable>(1);
    // By node and byte. However a template chooses them, few share a bucket: their keys are below
    // 256 times their number.
    std::unordered_map<std::uint64_t, node> steps_;
    std::vector<open_loop> loops_;
    std::vector<node> matches_; // of one name, kept for its memory
    // variables_[none] is the ends of the list: its `older` is the newest variable.
};

} // namespace kel::Stencilor::internal

#endif
