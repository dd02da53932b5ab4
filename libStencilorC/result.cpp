#include <libStencilorC/result.h>

using namespace kel::Stencilor;
using namespace kel::Stencilor::internal;

namespace kel::Stencilor::internal {

int statusOf(RenderStatus status) {
    switch (status) {
    case RenderStatus::Complete:
        return STENCILOR_OK;
    case RenderStatus::Rejected:
        return STENCILOR_REJECTED;
    case RenderStatus::NotFound:
        return STENCILOR_NOT_FOUND;
    case RenderStatus::Unreadable:
        return STENCILOR_UNREADABLE;
    case RenderStatus::StepLimit:
        return STENCILOR_STEP_LIMIT;
    case RenderStatus::OutputLimit:
        return STENCILOR_OUTPUT_LIMIT;
    case RenderStatus::TemplateLimit:
        return STENCILOR_TEMPLATE_LIMIT;
    case RenderStatus::DepthLimit:
        return STENCILOR_DEPTH_LIMIT;
    case RenderStatus::Stopped:
        return STENCILOR_STOPPED;
    }
    return STENCILOR_INTERNAL_ERROR;
}

void describeMessages(stencilor_result& result) {
    result.messages.reserve(result.rendered.messages.size());
    for (const RenderMessage& message : result.rendered.messages) {
        result.messages.emplace_back(message);
    }
}

} // namespace kel::Stencilor::internal

int stencilor_result_status(const stencilor_result* result) {
    return result == nullptr ? STENCILOR_INVALID_ARGUMENT : statusOf(result->rendered.status);
}

int stencilor_result_stop_code(const stencilor_result* result) {
    return result == nullptr ? 0 : result->stopCode;
}

const char* stencilor_result_text(const stencilor_result* result, size_t* size) {
    return returned(result == nullptr ? "" : result->rendered.text.view(), size);
}

uint64_t stencilor_result_usage(const stencilor_result* result, int limit) {
    const RenderUsage usage = result == nullptr ? RenderUsage() : result->rendered.usage;
    switch (limit) {
    case STENCILOR_LIMIT_STEPS:
        return usage.steps;
    case STENCILOR_LIMIT_OUTPUT_BYTES:
        return usage.outputBytes;
    case STENCILOR_LIMIT_TEMPLATE_BYTES:
        return usage.templateBytes;
    case STENCILOR_LIMIT_INCLUDE_DEPTH:
        return usage.includeDepth;
    case STENCILOR_LIMIT_MESSAGES:
        return usage.messages;
    default:
        return 0;
    }
}

size_t stencilor_result_message_count(const stencilor_result* result) {
    return result == nullptr ? 0 : result->messages.size();
}

const stencilor_message* stencilor_result_message(const stencilor_result* result, size_t index) {
    return index < stencilor_result_message_count(result) ? &result->messages[index] : nullptr;
}

void stencilor_result_free(stencilor_result* result) {
    delete result;
}
