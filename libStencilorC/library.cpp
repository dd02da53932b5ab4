#include <libStencilorC/border.h>
#include <libStencilorC/handles.h>

using namespace kel::Stencilor;
using namespace kel::Stencilor::internal;

const char* stencilor_version(void) {
    return STENCILOR_VERSION;
}

int stencilor_abi_version(void) {
    return STENCILOR_ABI_VERSION;
}

const char* stencilor_status_text(int status) {
    switch (status) {
    case STENCILOR_OK:
        return "success";
    case STENCILOR_STOPPED:
        return "a callback ended the call";
    case STENCILOR_REJECTED:
        return "the template is not well formed";
    case STENCILOR_NOT_FOUND:
        return "no such template or folder";
    case STENCILOR_UNREADABLE:
        return "the template cannot be read";
    case STENCILOR_STEP_LIMIT:
        return "the step limit was reached";
    case STENCILOR_OUTPUT_LIMIT:
        return "the output size limit was reached";
    case STENCILOR_TEMPLATE_LIMIT:
        return "the template size limit was reached";
    case STENCILOR_DEPTH_LIMIT:
        return "the include depth limit was reached";
    case STENCILOR_INVALID_ARGUMENT:
        return "invalid argument";
    case STENCILOR_OUT_OF_MEMORY:
        return "out of memory";
    case STENCILOR_TOO_LARGE:
        return "a string is too long, values are nested too deeply, or there are too many";
    case STENCILOR_BAD_JSON:
        return "invalid JSON";
    case STENCILOR_WRONG_KIND:
        return "the value or source is of the wrong kind";
    case STENCILOR_UNSUPPORTED:
        return "this build of the library does not include the function";
    case STENCILOR_INTERNAL_ERROR:
        return "internal error";
    default:
        return "unknown status";
    }
}

int stencilor_error_status(const stencilor_error* error) {
    return error == nullptr ? 0 : error->status;
}

const char* stencilor_error_text(const stencilor_error* error, size_t* size) {
    return returned(error == nullptr ? "" : std::string_view(error->text), size);
}

size_t stencilor_error_offset(const stencilor_error* error) {
    return error == nullptr ? 0 : error->offset;
}

size_t stencilor_error_line(const stencilor_error* error) {
    return error == nullptr ? 0 : error->line;
}

size_t stencilor_error_column(const stencilor_error* error) {
    return error == nullptr ? 0 : error->column;
}

void stencilor_error_free(stencilor_error* error) {
    delete error;
}

const char* stencilor_text_data(const stencilor_text* text, size_t* size) {
    return returned(text == nullptr ? "" : std::string_view(text->text), size);
}

void stencilor_text_free(stencilor_text* text) {
    delete text;
}

int stencilor_escape(int kind, const char* text, size_t size, stencilor_text** escaped) {
    return guarded([&] {
        stencilor_text*& made = placeOf(escaped);
        const std::string_view passed = given(text, size);
        switch (kind) {
        case STENCILOR_ESCAPE_NONE:
            made = new stencilor_text{std::string(passed)};
            return STENCILOR_OK;
        case STENCILOR_ESCAPE_HTML:
            made = new stencilor_text{escapeHtml(passed).str()};
            return STENCILOR_OK;
        case STENCILOR_ESCAPE_JSON:
            made = new stencilor_text{escapeJson(passed).str()};
            return STENCILOR_OK;
        default:
            return STENCILOR_INVALID_ARGUMENT;
        }
    });
}
