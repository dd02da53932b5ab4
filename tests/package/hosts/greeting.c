#include <libStencilorC/stencilor.h>
#include <stdio.h>

int main(void) {
    const size_t whole = STENCILOR_NUL_TERMINATED;
    stencilor_template* page = NULL;
    stencilor_value* values = NULL;
    stencilor_context* context = NULL;
    stencilor_result* result = NULL;
    stencilor_template_parse("Hello, {{ name }}!\n", whole, "", 0, &page);
    stencilor_value_parse_json("{\"name\": \"world\"}", whole, &values, NULL);
    stencilor_context_create(values, 0, &context, NULL);
    stencilor_template_render(page, context, NULL, &result);
    fputs(stencilor_result_text(result, NULL), stdout);
    stencilor_result_free(result);
    stencilor_context_free(context);
    stencilor_value_free(values);
    stencilor_template_free(page);
    return 0;
}
