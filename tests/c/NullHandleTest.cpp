#include "../support/Test.h"
#include "Handles.h"

namespace support {
namespace {

int neverWrite(void*, const char*, std::size_t) {
    return 1;
}

int neverFind(void*, const char*, std::size_t, stencilor_request*) {
    return 1;
}

// Each argument in turn is the one that is null.
TEST(NullHandles, AreInvalidArguments) {
    const ValueHandle held = valueOf("{}");
    const TemplateHandle parsed = parse("");
    const ContextHandle contextHeld = contextOf("{}");
    const SourceHandle memory = makeMemory();
    stencilor_value* const value = held.get();
    stencilor_value* made = nullptr;
    stencilor_context* context = nullptr;
    stencilor_template* page = nullptr;
    stencilor_source* source = nullptr;
    stencilor_text* text = nullptr;
    const struct {
        const char* name;
        int status;
    } calls[] = {
        {"escape a null text", stencilor_escape(1, nullptr, 1, &text)},
        {"escape with a null result", stencilor_escape(1, "", 0, nullptr)},
        {"null", stencilor_value_null(nullptr)},
        {"boolean", stencilor_value_boolean(1, nullptr)},
        {"text", stencilor_value_text("", 0, nullptr)},
        {"null text", stencilor_value_text(nullptr, 1, &made)},
        {"null text, NUL-terminated",
         stencilor_value_text(nullptr, STENCILOR_NUL_TERMINATED, &made)},
        {"raw text", stencilor_value_raw_text("", 0, nullptr)},
        {"null raw text", stencilor_value_raw_text(nullptr, 1, &made)},
        {"integer", stencilor_value_integer(1, nullptr)},
        {"double", stencilor_value_double(1, nullptr)},
        {"list", stencilor_value_list(nullptr)},
        {"dictionary", stencilor_value_dictionary(nullptr)},
        {"JSON of nothing", stencilor_value_parse_json(nullptr, 1, &made, nullptr)},
        {"JSON to nowhere", stencilor_value_parse_json("1", 1, nullptr, nullptr)},
        {"copy a null value", stencilor_value_copy(nullptr, &made)},
        {"copy with a null result", stencilor_value_copy(value, nullptr)},
        {"add to a null list", stencilor_value_add(nullptr, value)},
        {"add a null item", stencilor_value_add(value, nullptr)},
        {"add null", stencilor_value_add_null(nullptr)},
        {"add boolean", stencilor_value_add_boolean(nullptr, 1)},
        {"add text", stencilor_value_add_text(nullptr, "", 0)},
        {"add raw text", stencilor_value_add_raw_text(nullptr, "", 0)},
        {"add integer", stencilor_value_add_integer(nullptr, 1)},
        {"add double", stencilor_value_add_double(nullptr, 1)},
        {"set in a null dictionary", stencilor_value_set(nullptr, "", 0, value)},
        {"set a null member", stencilor_value_set(value, "", 0, nullptr)},
        {"set without a key", stencilor_value_set_null(value, nullptr, 1)},
        {"set null", stencilor_value_set_null(nullptr, "", 0)},
        {"set boolean", stencilor_value_set_boolean(nullptr, "", 0, 1)},
        {"set text", stencilor_value_set_text(nullptr, "", 0, "", 0)},
        {"set raw text", stencilor_value_set_raw_text(nullptr, "", 0, "", 0)},
        {"set integer", stencilor_value_set_integer(nullptr, "", 0, 1)},
        {"set double", stencilor_value_set_double(nullptr, "", 0, 1)},
        {"context from a null value", stencilor_context_create(nullptr, 0, &context, nullptr)},
        {"context with a null result", stencilor_context_create(value, 0, nullptr, nullptr)},
        {"context from null JSON",
         stencilor_context_parse_json(nullptr, 1, 0, "", 0, &context, nullptr)},
        {"context with a null mark",
         stencilor_context_parse_json("{}", 2, 0, nullptr, 1, &context, nullptr)},
        {"JSON context with a null result",
         stencilor_context_parse_json("{}", 2, 0, "", 0, nullptr, nullptr)},
        {"template from a null text", stencilor_template_parse(nullptr, 1, "", 0, &page)},
        {"template with a null name", stencilor_template_parse("", 0, nullptr, 1, &page)},
        {"template with a null result", stencilor_template_parse("", 0, "", 0, nullptr)},
        {"render a null template",
         stencilor_template_render(nullptr, contextHeld.get(), nullptr, nullptr)},
        {"render with a null context",
         stencilor_template_render(parsed.get(), nullptr, nullptr, nullptr)},
        {"render a null template to",
         stencilor_template_render_to(nullptr, contextHeld.get(), neverWrite, nullptr, nullptr,
                                      nullptr)},
        {"render to a null function",
         stencilor_template_render_to(parsed.get(), contextHeld.get(), nullptr, nullptr, nullptr,
                                      nullptr)},
        {"render with a null context to",
         stencilor_template_render_to(parsed.get(), nullptr, neverWrite, nullptr, nullptr,
                                      nullptr)},
        {"render a null path",
         stencilor_render_path(nullptr, 1, contextHeld.get(), nullptr, nullptr)},
        {"render a path with a null context",
         stencilor_render_path("", 0, nullptr, nullptr, nullptr)},
        {"options", stencilor_options_create(nullptr)},
        {"escape kind", stencilor_options_set_escape(nullptr, 0)},
        {"escape function",
         stencilor_options_set_escape_function(
             nullptr, [](void*, const char*, std::size_t, stencilor_output*) { return 1; },
             nullptr)},
        {"no escape function",
         stencilor_options_set_escape_function(makeOptions().get(), nullptr, nullptr)},
        {"limit", stencilor_options_set_limit(nullptr, 0, 0)},
        {"poll", stencilor_options_set_poll(nullptr, nullptr, nullptr)},
        {"source of options", stencilor_options_set_source(nullptr, memory.get())},
        {"memory", stencilor_source_memory(nullptr)},
        {"add to a null source", stencilor_source_add(nullptr, "", 0, "", 0)},
        {"add with a null path", stencilor_source_add(memory.get(), nullptr, 1, "", 0)},
        {"add a null template", stencilor_source_add(memory.get(), "", 0, nullptr, 1)},
        {"find in a null source", stencilor_source_find(nullptr, "", 0, &page)},
        {"find a null path", stencilor_source_find(memory.get(), nullptr, 1, &page)},
        {"find with a null result", stencilor_source_find(memory.get(), "", 0, nullptr)},
        {"folder with a null path", stencilor_source_folder(nullptr, 1, &source)},
        {"folder with a null result", stencilor_source_folder(".", 1, nullptr)},
        {"source from a null callback", stencilor_source_callback(nullptr, nullptr, &source)},
        {"callback with a null result", stencilor_source_callback(neverFind, nullptr, nullptr)},
        {"request text", stencilor_request_set_text(nullptr, "", 0)},
        {"request template", stencilor_request_set_template(nullptr, parsed.get())},
        {"request unreadable", stencilor_request_set_unreadable(nullptr)},
        {"output", stencilor_output_append(nullptr, "", 0)},
        {"check a null template", stencilor_check(nullptr, nullptr, nullptr, &text)},
        {"check with a null result", stencilor_check(parsed.get(), nullptr, nullptr, nullptr)},
        {"limited check of a null template",
         stencilor_check_limited(nullptr, nullptr, nullptr, &text)},
        {"limited check with a null result",
         stencilor_check_limited(parsed.get(), nullptr, nullptr, nullptr)},
        {"names of a null template", stencilor_names(nullptr, nullptr, &text)},
        {"tree of a null template", stencilor_tree(nullptr, &text)},
        {"tree with a null result", stencilor_tree(parsed.get(), nullptr)},
        {"names with a null result", stencilor_names(parsed.get(), nullptr, nullptr)},
    };
    for (const auto& [name, status] : calls) {
        EXPECT_EQ(status, STENCILOR_INVALID_ARGUMENT) << name;
    }
    EXPECT_TRUE(made == nullptr && context == nullptr && page == nullptr && source == nullptr &&
                text == nullptr);
}

TEST(NullHandles, HaveNothingToRead) {
    EXPECT_EQ(textOf(stencilor_error_text, nullptr), "");
    EXPECT_EQ(textOf(stencilor_text_data, nullptr), "");
    EXPECT_EQ(textOf(stencilor_template_name, nullptr), "");
    EXPECT_EQ(textOf(stencilor_template_text, nullptr), "");
    EXPECT_EQ(textOf(stencilor_result_text, nullptr), "");
    EXPECT_EQ(textOf(stencilor_message_text, nullptr), "");
    EXPECT_EQ(textOf(stencilor_message_name, nullptr), "");
    EXPECT_EQ(textOf(stencilor_message_template_name, nullptr), "");
    EXPECT_EQ(textOf(stencilor_message_include_template_name, nullptr, 0u), "");
    const std::uint64_t numbers[] = {static_cast<unsigned int>(stencilor_error_status(nullptr)),
                                     stencilor_error_offset(nullptr),
                                     stencilor_error_line(nullptr),
                                     stencilor_error_column(nullptr),
                                     static_cast<unsigned int>(stencilor_value_kind(nullptr)),
                                     static_cast<unsigned int>(stencilor_result_stop_code(nullptr)),
                                     stencilor_result_usage(nullptr, 0),
                                     stencilor_result_message_count(nullptr),
                                     static_cast<unsigned int>(stencilor_message_kind(nullptr)),
                                     stencilor_message_line(nullptr),
                                     stencilor_message_column(nullptr),
                                     stencilor_message_begin(nullptr),
                                     stencilor_message_end(nullptr),
                                     stencilor_message_include_count(nullptr),
                                     stencilor_message_include_line(nullptr, 0),
                                     stencilor_message_include_column(nullptr, 0),
                                     stencilor_message_include_begin(nullptr, 0),
                                     stencilor_message_include_end(nullptr, 0),
                                     stencilor_request_max_size(nullptr)};
    for (const std::uint64_t number : numbers) {
        EXPECT_EQ(number, 0u);
    }
    EXPECT_EQ(stencilor_result_status(nullptr), STENCILOR_INVALID_ARGUMENT);
    EXPECT_EQ(stencilor_template_fault(nullptr), nullptr);
    EXPECT_EQ(stencilor_result_message(nullptr, 0), nullptr);
}

TEST(NullHandles, AreFreed) {
    stencilor_error_free(nullptr);
    stencilor_text_free(nullptr);
    stencilor_value_free(nullptr);
    stencilor_context_free(nullptr);
    stencilor_template_free(nullptr);
    stencilor_options_free(nullptr);
    stencilor_source_free(nullptr);
    stencilor_result_free(nullptr);
}

TEST(NullHandles, AreEmptyTextsOfNoSize) {
    ValueHandle made;
    EXPECT_EQ(stencilor_value_text(nullptr, 0, out(made)), STENCILOR_OK);
    TemplateHandle page;
    EXPECT_EQ(stencilor_template_parse(nullptr, 0, nullptr, 0, out(page)), STENCILOR_OK);
    EXPECT_EQ(textOf(render(page, contextOf("{}"))), "");
}

} // namespace
} // namespace support
