#include <libStencilor/modern/render_state.h>

#include <algorithm>
#include <utility>

namespace kel::Stencilor::internal {

namespace {

constexpr std::uint64_t stepsBetweenQuestions = 1024;
constexpr unsigned int greatestDepth = 100;

std::uint64_t limitOf(std::uint64_t limit) {
    return limit == 0 ? unlimited : limit;
}

RenderMessage::Kind kindOf(RenderStatus status) {
    using Kind = RenderMessage::Kind;
    switch (status) {
    case RenderStatus::Complete:
        break;
    case RenderStatus::Rejected:
        return Kind::TemplateRejected;
    case RenderStatus::NotFound:
        return Kind::FileNotFound;
    case RenderStatus::Unreadable:
        return Kind::FileNotLoaded;
    case RenderStatus::StepLimit:
        return Kind::StepLimit;
    case RenderStatus::OutputLimit:
        return Kind::OutputLimit;
    case RenderStatus::TemplateLimit:
        return Kind::TemplateLimit;
    case RenderStatus::DepthLimit:
        return Kind::DepthLimit;
    case RenderStatus::Stopped:
        break;
    }
    return Kind::Stopped;
}

} // namespace

render_state::render_state(const RenderOptions& options)
    : options_(options),
      includeDepth_(options.limits.includeDepth - 1 < greatestDepth ? options.limits.includeDepth
                                                                    : greatestDepth),
      outputBytes_(limitOf(options.limits.outputBytes)),
      templates_(options.source, limitOf(options.limits.templateBytes)) {
    setPause(0);
}

/// Determines the next check, after the given number of steps.
void render_state::setPause(std::uint64_t taken) noexcept {
    const std::uint64_t question = options_.keepGoing
                                       ? (taken / stepsBetweenQuestions + 1) * stepsBetweenQuestions
                                       : unlimited;
    pause_ = std::min(question, limitOf(options_.limits.steps));
    stepsLeft_ = pause_ + 1 - taken;
}

/// Checks whether another step is allowed; returns `Complete` if so.
RenderStatus render_state::pause() {
    if (steps() == limitOf(options_.limits.steps)) {
        return RenderStatus::StepLimit;
    }
    if (!options_.keepGoing()) {
        return RenderStatus::Stopped;
    }
    setPause(steps());
    return RenderStatus::Complete;
}

void render_state::addMessage(RenderMessage::Kind kind, const parsed_template& in,
                              const node_place& place, String name) {
    addMessage({.kind = kind,
                .name = std::move(name),
                .templateName = in.name,
                .range = place.range,
                .line = place.line,
                .column = place.column,
                .fault = in.fault});
}

/// Adds the open includes to a message, and keeps it.
void render_state::addMessage(RenderMessage message) {
    message.includedFrom.reserve(includes_.size());
    for (auto open = includes_.rbegin(); open != includes_.rend(); ++open) {
        message.includedFrom.push_back(
            {open->in->name, open->use->range(), open->use->line, open->use->column});
    }
    messages_.push_back(std::move(message));
}

void render_state::addFileMessage(RenderStatus status, const String& path) {
    if (wantsMessage()) {
        addMessage({.kind = kindOf(status), .name = path});
    }
}

void render_state::end(RenderStatus status, const parsed_template& in, const node_place& place) {
    ++messageCount_;
    addMessage(kindOf(status), in, place);
    throw render_end{status};
}

void render_state::enterInclude(const parsed_template& in, const name_use& use) {
    includes_.push_back({&in, &use});
    const auto depth = static_cast<unsigned int>(includes_.size());
    deepest_ = std::max(deepest_, depth);
}

} // namespace kel::Stencilor::internal
