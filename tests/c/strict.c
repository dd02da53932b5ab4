/* What the header opens with, in the oldest C that it promises to be. */
#include <libStencilorC/stencilor.h>

#include <stdio.h>
#include <string.h>

static int write_text(void* payload, const char* text, size_t size) {
    return fwrite(text, 1, size, (FILE*)payload) == size ? 0 : 1;
}

int main(void) {
    const char* const json = "{\"name\": \"world\"}";
    stencilor_template* page = NULL;
    stencilor_value* values = NULL;
    stencilor_context* context = NULL;
    int status;

    if (stencilor_abi_version() != STENCILOR_ABI_VERSION) {
        return 2;
    }
    stencilor_template_parse("Hello, {{ name }}!\n", STENCILOR_NUL_TERMINATED, "", 0, &page);
    stencilor_value_parse_json(json, strlen(json), &values, NULL);
    stencilor_context_create(values, 0, &context, NULL);
    status = stencilor_template_render_to(page, context, write_text, stdout, NULL, NULL);
    stencilor_context_free(context);
    stencilor_value_free(values);
    stencilor_template_free(page);
    return status;
}
