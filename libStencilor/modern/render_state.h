#ifndef LIBSTENCILOR_MODERN_RENDER_STATE_H
#define LIBSTENCILOR_MODERN_RENDER_STATE_H

#include <libStencilor/Template.h>
#include <libStencilor/modern/included_templates.h>
#include <libStencilor/modern/parsed_template.h>
#include <libStencilor/render/scopes.h>

#include <array>
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
        if (--stepsLeft_ == 0) {
            pauseAt(in, place);
        }
    }

    /// Counts a key that is looked up.
    template <typename Place>
    void countKey(const parsed_template& in, Place place) {
        if (--keysLeft_ == 0) {
            keysLeft_ = keysPerStep;
            step(in, place);
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

    /// Moves out the usage and the messages. `outputBytes` is the number of rendered bytes, and
    /// `makeText` returns the text.
    template <typename MakeText>
    RenderResult takeResult(RenderStatus status, std::uint64_t outputBytes, MakeText makeText) {
        return {.status = status,
                .text = makeText(),
                .messages = std::move(messages_),
                .usage = {.steps = steps(),
                          .outputBytes = outputBytes,
                          .templateBytes = templates_.bytes(),
                          .messages = messageCount_,
                          .includeDepth = deepest_}};
    }

    /// The same for a render that ended early.
    RenderResult takeResult(RenderStatus status, std::uint64_t outputBytes = 0) {
        return takeResult(status, outputBytes, [] { return String(); });
    }

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
        stepsLeft_ = 1;
        const RenderStatus status = pause();
        if (status != RenderStatus::Complete) {
            end(status, in, place());
        }
        --stepsLeft_;
    }

    /// The number of steps taken.
    std::uint64_t steps() const noexcept { return pause_ + 1 - stepsLeft_; }

    RenderStatus pause();
    void setPause(std::uint64_t taken) noexcept;
    void addMessage(RenderMessage message);

    const RenderOptions& options_;
    const unsigned int includeDepth_;
    const std::uint64_t outputBytes_;     // allowed
    std::uint64_t pause_ = 0;             // the number of steps before the next check
    std::uint64_t stepsLeft_ = 1;         // until then, plus one; both may wrap
    unsigned int keysLeft_ = keysPerStep; // until they count as a step
    std::size_t keyBytes_ = 0;            // built, but not yet counted as a step
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
