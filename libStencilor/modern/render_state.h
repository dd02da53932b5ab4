#ifndef LIBSTENCILOR_MODERN_RENDER_STATE_H
#define LIBSTENCILOR_MODERN_RENDER_STATE_H

#include <libStencilor/Template.h>
#include <libStencilor/modern/included_templates.h>
#include <libStencilor/modern/parsed_template.h>
#include <libStencilor/render/scopes.h>

#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace kel::Stencilor::internal {

/// Ends a render from anywhere. Its message has already been added.
struct render_end {
    RenderStatus status;
};

/// The state that the templates of one render share: the remaining resources, the messages, and the
/// open includes.
/// Ownership: borrows the options.
/// Copying: not possible, because it represents one render.
class render_state {
  public:
    explicit render_state(const RenderOptions& options);
    render_state(const render_state&) = delete;
    render_state& operator=(const render_state&) = delete;

    /// Takes a step, if one is left. `place` returns the current position.
    template <typename Place>
    void step(const parsed_template& in, Place place) {
        if (steps_ == pause_) {
            pauseAt(in, place);
        }
        ++steps_;
    }

    /// Whether counting the next key takes a step.
    bool nextKeyTakesStep() const noexcept { return keys_ + 1 == keysPerStep; }

    /// Counts a key that takes no step.
    void countKey() noexcept {
        assert(!nextKeyTakesStep());
        ++keys_;
    }

    /// Counts a key that is looked up.
    template <typename Place>
    void countKey(const parsed_template& in, Place place) {
        if (++keys_ == keysPerStep) {
            step(in, place);
            keys_ = 0;
        }
    }

    /// Counts the bytes of keys that were built for a lookup.
    template <typename Place>
    void countKeyBytes(std::size_t count, const parsed_template& in, Place place) {
        constexpr std::size_t bytesPerStep = 4096;
        for (keyBytes_ += count; keyBytes_ >= bytesPerStep; keyBytes_ -= bytesPerStep) {
            step(in, place);
        }
    }

    /// The maximum number of rendered bytes.
    std::uint64_t outputBytes() const noexcept { return outputBytes_; }

    /// Where the keys of a name were last found. Names may share it, because it is only a guess.
    child_guess& guessOf(const name_use& use) noexcept {
        return guesses_[use.keys % guesses_.size()];
    }

    /// The remembered search for the keys of a name, if there is room. Their index in the table
    /// determines the slot, so that equal renders take equal steps.
    outer_search& searchOf(const name_keys& keys, std::uint32_t number) {
        if (searches_ == nullptr) {
            searches_ = std::make_unique<std::array<remembered_search, searchCount>>();
        }
        remembered_search& remembered = (*searches_)[number % searchCount];
        if (remembered.keys != &keys) {
            remembered = {&keys, {}};
        }
        return remembered.search;
    }

    /// Counts a message. Returns true if it should be created and added.
    bool wantsMessage() {
        return ++messageCount_ <= options_.limits.messages || options_.limits.messages == 0;
    }
    void addMessage(RenderMessage::Kind kind, const parsed_template& in, const node_place& place,
                    String name = {});

    /// Adds the message that the root template was not found.
    void addFileMessage(RenderStatus status, const String& path);

    /// Ends the render with a message.
    [[noreturn]] void end(RenderStatus status, const parsed_template& in, const node_place& place);

    /// Finds the template at a path, which is checked and looked up once.
    const included_template& findTemplate(const String& path) { return templates_.find(path); }
    const included_template& findTemplate(const name_use& use, const String& path) {
        return templates_.find(use, path);
    }

    /// True if another include may be opened inside the open ones.
    bool mayInclude() const noexcept { return includes_.size() < includeDepth_; }

    /// Begins and ends the rendering of an included template.
    void enterInclude(const parsed_template& in, const name_use& use);
    void leaveInclude() noexcept { includes_.pop_back(); }

    /// Moves out the usage and the messages. `outputBytes` is the number of rendered bytes.
    RenderResult takeResult(RenderStatus status, std::uint64_t outputBytes = 0, String text = {});

  private:
    struct remembered_search {
        const name_keys* keys = nullptr;
        outer_search search{};
    };
    static constexpr std::size_t searchCount = 16;
    static constexpr unsigned int keysPerStep = 64;

    struct open_include {
        const parsed_template* in;
        const name_use* use;
    };

    template <typename Place>
    void pauseAt(const parsed_template& in, Place place) {
        const RenderStatus status = pause();
        if (status != RenderStatus::Complete) {
            end(status, in, place());
        }
    }

    RenderStatus pause();
    std::uint64_t nextPause() const noexcept;
    void addMessage(RenderMessage message);

    const RenderOptions& options_;
    const unsigned int includeDepth_;
    const std::uint64_t outputBytes_; // allowed
    std::uint64_t steps_ = 0;
    std::uint64_t pause_;      // the number of steps until the next check
    unsigned int keys_ = 0;    // looked up, but not yet counted as a step
    std::size_t keyBytes_ = 0; // built, but not yet counted as a step
    std::uint64_t messageCount_ = 0;
    unsigned int deepest_ = 0;
    included_templates templates_;
    std::vector<open_include> includes_;
    std::vector<RenderMessage> messages_;
    std::unique_ptr<std::array<remembered_search, searchCount>> searches_; // null outside loops
    std::array<child_guess, 64> guesses_{};
};

} // namespace kel::Stencilor::internal

#endif
