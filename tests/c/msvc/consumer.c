/* A host for MSVC's binary interface, without any C library: it writes by two functions of the
 * system, which it declares itself. */
#include <libStencilorC/stencilor.h>

__declspec(dllimport) void* GetStdHandle(unsigned long number);
__declspec(dllimport) int WriteFile(void* file, const void* data, unsigned long size,
                                    unsigned long* written, void* overlapped);
__declspec(dllimport) void ExitProcess(unsigned int code);

/* What MSVC's run-time has for whoever uses floating-point numbers. */
int _fltused = 0;

static const size_t whole = STENCILOR_NUL_TERMINATED;

static int write_text(void* payload, const char* text, size_t size) {
    unsigned long written = 0;
    return WriteFile(payload, text, (unsigned long)size, &written, 0) ? 0 : 1;
}

static void print(void* output, const char* text) {
    size_t size = 0;
    while (text[size] != '\0') {
        ++size;
    }
    write_text(output, text, size);
}

static void print_result(void* output, const stencilor_result* result) {
    size_t i;
    print(output, "\nstatus: ");
    print(output, stencilor_status_text(stencilor_result_status(result)));
    for (i = 0; i < stencilor_result_message_count(result); ++i) {
        print(output, "\nmessage: ");
        print(output, stencilor_message_text(stencilor_result_message(result, i), 0));
    }
    print(output, "\n");
}

static stencilor_context* make_context(void) {
    stencilor_value* root = 0;
    stencilor_value* items = 0;
    stencilor_context* context = 0;
    stencilor_value_list(&items);
    stencilor_value_add_integer(items, 1);
    stencilor_value_add_double(items, 2.5);
    stencilor_value_dictionary(&root);
    stencilor_value_set(root, "items", whole, items);
    stencilor_value_set_text(root, "name", whole, "world", whole);
    stencilor_context_create(root, STENCILOR_CONTEXT_POSITIONS, &context, 0);
    stencilor_value_free(items);
    stencilor_value_free(root);
    return context;
}

static void fail_inside(void* output) {
    stencilor_value* number = 0;
    const double huge = 1e308;
    print(output, "infinity: ");
    print(output, stencilor_status_text(stencilor_value_double(huge * 10, &number)));
    print(output, number == 0 ? "\n" : "?\n");
}

void start(void) {
    void* const output = GetStdHandle((unsigned long)-11);
    stencilor_template* page = 0;
    stencilor_context* const context = make_context();
    stencilor_options* options = 0;
    stencilor_result* result = 0;

    stencilor_template_parse("Hello, {{ name }}!{% for i in items %} {{ i.index }}:{{ i.value }}"
                             "{% endfor %}{{ gone }}",
                             whole, "page", whole, &page);
    stencilor_options_create(&options);
    stencilor_options_set_limit(options, STENCILOR_LIMIT_OUTPUT_BYTES, 100);
    stencilor_template_render_to(page, context, write_text, output, options, &result);
    print_result(output, result);
    stencilor_result_free(result);

    stencilor_options_set_limit(options, STENCILOR_LIMIT_OUTPUT_BYTES, 5);
    stencilor_template_render(page, context, options, &result);
    print_result(output, result);
    stencilor_result_free(result);

    fail_inside(output);
    stencilor_options_free(options);
    stencilor_context_free(context);
    stencilor_template_free(page);
    ExitProcess(0);
}
