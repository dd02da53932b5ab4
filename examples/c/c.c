/* Renders a page from C: values, escaping, an included template, a limit, messages. */
#include <libStencilorC/stencilor.h>

#include <stdio.h>

static const char* const page_text = "<h1>{{ title }}</h1>\n"
                                     "{% for city in cities %}{% include \"city\" %}{% endfor %}"
                                     "<p>{{ footer }}</p>\n";
static const char* const city_text = "<p>{{ index }}. {{ name }}: {{ degrees }}</p>\n";

/* A city as a program has it. */
struct city {
    const char* name;
    double degrees;
};

static const struct city cities[] = {{"Bergen <NO>", 7.5}, {"Lyon", 21}};
static const size_t whole = STENCILOR_NUL_TERMINATED;

static int add_city(stencilor_value* list, const struct city* city) {
    stencilor_value* item = NULL;
    int status = stencilor_value_dictionary(&item);
    if (status == STENCILOR_OK) {
        status = stencilor_value_set_text(item, "name", whole, city->name, whole);
    }
    if (status == STENCILOR_OK) {
        status = stencilor_value_set_double(item, "degrees", whole, city->degrees);
    }
    if (status == STENCILOR_OK) {
        status = stencilor_value_add(list, item);
    }
    stencilor_value_free(item);
    return status;
}

static stencilor_context* make_context(void) {
    stencilor_value* root = NULL;
    stencilor_value* list = NULL;
    stencilor_context* context = NULL;
    size_t i;
    int status = stencilor_value_list(&list);
    for (i = 0; status == STENCILOR_OK && i < sizeof(cities) / sizeof(cities[0]); ++i) {
        status = add_city(list, &cities[i]);
    }
    stencilor_value_dictionary(&root);
    stencilor_value_set_text(root, "title", whole, "Weather", whole);
    stencilor_value_set(root, "cities", whole, list);
    if (status == STENCILOR_OK) {
        stencilor_context_create(root, STENCILOR_CONTEXT_POSITIONS, &context, NULL);
    }
    stencilor_value_free(list);
    stencilor_value_free(root);
    return context; /* null where something failed, which rendering then reports */
}

static stencilor_options* make_options(void) {
    stencilor_options* options = NULL;
    stencilor_source* source = NULL;
    stencilor_source_memory(&source);
    stencilor_source_add(source, "city", whole, city_text, whole);
    stencilor_options_create(&options);
    stencilor_options_set_source(options, source);
    stencilor_options_set_escape(options, STENCILOR_ESCAPE_HTML);
    stencilor_options_set_limit(options, STENCILOR_LIMIT_STEPS, 100000);
    stencilor_source_free(source); /* the options keep it */
    return options;
}

static int write_text(void* payload, const char* text, size_t size) {
    return fwrite(text, 1, size, (FILE*)payload) == size ? 0 : 1;
}

static void print_messages(const stencilor_result* result) {
    size_t i;
    for (i = 0; i < stencilor_result_message_count(result); ++i) {
        const stencilor_message* message = stencilor_result_message(result, i);
        printf("%s:%lu:%lu: %s\n", stencilor_message_template_name(message, NULL),
               (unsigned long)stencilor_message_line(message),
               (unsigned long)stencilor_message_column(message),
               stencilor_message_text(message, NULL));
    }
}

int main(void) {
    stencilor_template* page = NULL;
    stencilor_context* context = make_context();
    stencilor_options* options = make_options();
    stencilor_result* result = NULL;
    int status;

    stencilor_template_parse(page_text, whole, "page", whole, &page);
    status = stencilor_template_render_to(page, context, write_text, stdout, options, &result);
    print_messages(result);
    if (status != STENCILOR_OK) {
        fprintf(stderr, "%s\n", stencilor_status_text(status));
    }
    stencilor_result_free(result);
    stencilor_options_free(options);
    stencilor_context_free(context);
    stencilor_template_free(page);
    return status == STENCILOR_OK ? 0 : 1;
}
