#include <libStencilorC/result.h>

#include <algorithm>
#include <limits>
#include <string>
#include <string_view>

using namespace kel::Stencilor;
using namespace kel::Stencilor::internal;

namespace kel::Stencilor::internal {

void call_options::complete(const stencilor_options* options, int& stopCode) {
    if (options == nullptr) {
        options_ = &defaults_.emplace().options;
        return;
    }
    options_ = &polled_.emplace(options->options);
    polled_->keepGoing = [options, &stopCode] {
        stopCode = options->poll(options->pollPayload);
        return stopCode == 0;
    };
}

} // namespace kel::Stencilor::internal

namespace {

Escape escapeOfKind(int kind) {
    switch (kind) {
    case STENCILOR_ESCAPE_NONE:
        return Escape::none();
    case STENCILOR_ESCAPE_HTML:
        return Escape::html();
    case STENCILOR_ESCAPE_JSON:
        return Escape::json();
    default:
        throw call_failure{STENCILOR_INVALID_ARGUMENT};
    }
}

unsigned int saturated(uint64_t value) {
    constexpr unsigned int most = std::numeric_limits<unsigned int>::max();
    return static_cast<unsigned int>(std::min<uint64_t>(value, most));
}

void setLimit(RenderLimits& limits, int limit, uint64_t value) {
    switch (limit) {
    case STENCILOR_LIMIT_STEPS:
        limits.steps = value;
        return;
    case STENCILOR_LIMIT_OUTPUT_BYTES:
        limits.outputBytes = value;
        return;
    case STENCILOR_LIMIT_TEMPLATE_BYTES:
        limits.templateBytes = value;
        return;
    case STENCILOR_LIMIT_INCLUDE_DEPTH:
        limits.includeDepth = saturated(value);
        return;
    case STENCILOR_LIMIT_MESSAGES:
        limits.messages = saturated(value);
        return;
    default:
        throw call_failure{STENCILOR_INVALID_ARGUMENT};
    }
}

} // namespace

int stencilor_options_create(stencilor_options** options) {
    return guarded([&] {
        stencilor_options*& made = placeOf(options);
        made = new stencilor_options;
    });
}

int stencilor_options_set_escape(stencilor_options* options, int kind) {
    return guarded([&] { given(options).options.escape = escapeOfKind(kind); });
}

int stencilor_options_set_escape_function(stencilor_options* options,
                                          stencilor_escape_function escape, void* payload) {
    return guarded([&] {
        given(escape);
        given(options).options.escape =
            Escape([escape, payload](std::string_view value, std::string& out) {
                stencilor_output output{out};
                const int code = escape(payload, value.data(), value.size(), &output);
                failUnlessOk(output.failure);
                stopUnlessZero(code);
            });
    });
}

int stencilor_options_set_limit(stencilor_options* options, int limit, uint64_t value) {
    return guarded([&] { setLimit(given(options).options.limits, limit, value); });
}

int stencilor_options_set_poll(stencilor_options* options, stencilor_poll_function poll,
                               void* payload) {
    return guarded([&] {
        given(options).poll = poll;
        options->pollPayload = payload;
    });
}

int stencilor_options_set_source(stencilor_options* options, stencilor_source* source) {
    return guarded([&] {
        given(options).source = source == nullptr ? nullptr : source->source;
        options->options.source = source == nullptr ? &options->none : options->source.get();
    });
}

void stencilor_options_free(stencilor_options* options) {
    delete options;
}

int stencilor_output_append(stencilor_output* output, const char* text, size_t size) {
    const int status = guarded([&] { given(output).text += given(text, size); });
    if (output != nullptr && status != STENCILOR_OK) {
        output->failure = status;
    }
    return status;
}
