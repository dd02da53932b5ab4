#include "../support/TemporaryFolder.h"
#include "../support/Test.h"
#include "Handles.h"

namespace support {
namespace {

/// A source that counts its calls.
struct Finder {
    std::map<std::string, std::string> texts{};
    std::string unreadable{};
    const stencilor_template* parsed = nullptr; // for each path
    int asked = 0;
    int code = 0;
    std::uint64_t maxSize = 0;

    static int find(void* payload, const char* path, std::size_t size, stencilor_request* request) {
        auto& self = *static_cast<Finder*>(payload);
        ++self.asked;
        self.maxSize = stencilor_request_max_size(request);
        const std::string key(path, size);
        if (self.parsed != nullptr) {
            EXPECT_EQ(stencilor_request_set_template(request, self.parsed), STENCILOR_OK);
        } else if (self.texts.contains(key)) {
            const std::string& text = self.texts.at(key);
            EXPECT_EQ(stencilor_request_set_text(request, text.data(), text.size()), STENCILOR_OK);
        } else if (key == self.unreadable) {
            EXPECT_EQ(stencilor_request_set_unreadable(request), STENCILOR_OK);
        }
        return self.code;
    }
};

SourceHandle makeSource(Finder& finder) {
    SourceHandle made;
    EXPECT_EQ(stencilor_source_callback(Finder::find, &finder, out(made)), STENCILOR_OK);
    return made;
}

/// Options keep their source alive.
OptionsHandle optionsWith(const SourceHandle& source) {
    OptionsHandle options = makeOptions();
    EXPECT_EQ(stencilor_options_set_source(options.get(), source.get()), STENCILOR_OK);
    return options;
}

TEST(CSource, IsCalledOncePerPathAndRender) {
    Finder finder{.texts = {{"p", "[{{ a }}]"}}};
    const OptionsHandle options = optionsWith(makeSource(finder));
    const TemplateHandle page = parse("{% include \"p\" %}{% include \"p\" %}");
    const ContextHandle context = contextOf(R"({"a": "b"})");
    EXPECT_EQ(textOf(render(page, context, options.get())), "[b][b]");
    EXPECT_EQ(finder.asked, 1);
    EXPECT_EQ(finder.maxSize, UINT64_MAX);
    EXPECT_EQ(textOf(render(page, context, options.get())), "[b][b]");
    EXPECT_EQ(finder.asked, 2);
}

TEST(CSource, AnswersWithATemplateThatWasParsed) {
    TemplateHandle parsed = parse("{{ gone }}", "kept");
    Finder finder{.parsed = parsed.get()};
    const OptionsHandle options = optionsWith(makeSource(finder));
    const ResultHandle result =
        render(parse("{% include \"p\" %}"), contextOf("{}"), options.get());
    parsed.reset();
    EXPECT_EQ(textOf(stencilor_message_template_name, stencilor_result_message(result.get(), 0)),
              "kept");
}

TEST(CSource, FindsATemplate) {
    Finder finder{.texts = {{"good", "{{ a }}"}, {"bad", "{{"}}, .unreadable = "unreadable"};
    const SourceHandle source = makeSource(finder);
    const struct {
        const char* path;
        int status;
    } cases[] = {{"good", STENCILOR_OK},
                 {"bad", STENCILOR_REJECTED},
                 {"missing", STENCILOR_NOT_FOUND},
                 {"unreadable", STENCILOR_UNREADABLE}};
    for (const auto& [path, status] : cases) {
        TemplateHandle found;
        EXPECT_EQ(stencilor_source_find(source.get(), path, SIZE_MAX, out(found)), status) << path;
        EXPECT_EQ(found != nullptr, status == STENCILOR_OK || status == STENCILOR_REJECTED);
        EXPECT_EQ(stencilor_template_fault(found.get()) != nullptr, status == STENCILOR_REJECTED);
        EXPECT_EQ(textOf(stencilor_template_name, found.get()), found != nullptr ? path : "");
    }
    finder.code = 7;
    TemplateHandle found;
    EXPECT_EQ(stencilor_source_find(source.get(), "good", 4, out(found)), STENCILOR_STOPPED);
}

TEST(CSource, HasUnreadableAndMissingTemplates) {
    Finder finder{.unreadable = "u"};
    const OptionsHandle options = optionsWith(makeSource(finder));
    const ResultHandle result =
        render(parse("{% include \"u\" %}{% include \"m\" %}"), contextOf("{}"), options.get());
    ASSERT_EQ(stencilor_result_message_count(result.get()), 2u);
    EXPECT_EQ(stencilor_message_kind(stencilor_result_message(result.get(), 0)),
              STENCILOR_MESSAGE_TEMPLATE_UNREADABLE);
    EXPECT_EQ(stencilor_message_kind(stencilor_result_message(result.get(), 1)),
              STENCILOR_MESSAGE_TEMPLATE_NOT_FOUND);
}

TEST(CSource, IsLimitedWhateverTheCallbackAnswers) {
    Finder finder{.texts = {{"p", "1234"}}};
    const OptionsHandle options = optionsWith(makeSource(finder));
    const ContextHandle context = contextOf("{}");
    const TemplateHandle page = parse("{% include \"p\" %}");
    stencilor_options_set_limit(options.get(), STENCILOR_LIMIT_TEMPLATE_BYTES, 4);
    EXPECT_EQ(textOf(render(page, context, options.get())), "1234");
    EXPECT_EQ(finder.maxSize, 4u);
    stencilor_options_set_limit(options.get(), STENCILOR_LIMIT_TEMPLATE_BYTES, 3);
    EXPECT_EQ(stencilor_result_status(render(page, context, options.get()).get()),
              STENCILOR_TEMPLATE_LIMIT);
}

TEST(CSource, EndsARender) {
    Finder finder{.texts = {{"p", "x"}}, .code = -7};
    const OptionsHandle options = optionsWith(makeSource(finder));
    const ResultHandle result =
        render(parse("{% include \"p\" %}"), contextOf("{}"), options.get());
    EXPECT_EQ(stencilor_result_status(result.get()), STENCILOR_STOPPED);
    EXPECT_EQ(stencilor_result_stop_code(result.get()), -7);
    EXPECT_EQ(textOf(result), "");
}

TEST(CSource, RendersAPath) {
    const SourceHandle source = makeMemory();
    add(source, "p", "Hello, {{ name }}!");
    const OptionsHandle options = optionsWith(source);
    const ContextHandle context = contextOf(R"({"name": "world"})");
    ResultHandle result;
    EXPECT_EQ(stencilor_render_path("p", 1, context.get(), options.get(), out(result)),
              STENCILOR_OK);
    EXPECT_EQ(textOf(result), "Hello, world!");
    EXPECT_EQ(stencilor_render_path("q", 1, context.get(), options.get(), out(result)),
              STENCILOR_NOT_FOUND);
    EXPECT_EQ(stencilor_result_message_count(result.get()), 1u);
    EXPECT_EQ(stencilor_render_path("p", 1, context.get(), nullptr, out(result)),
              STENCILOR_NOT_FOUND)
        << "without a source there are no templates";
}

TEST(CSource, ReadsAFolderAndNothingOutsideIt) {
    const TemporaryFolder folder;
    folder.writeFile("p", "in the folder");
    const std::string path = folder.path();
    SourceHandle source;
    ASSERT_EQ(stencilor_source_folder(path.data(), path.size(), out(source)), STENCILOR_OK);
    EXPECT_EQ(stencilor_source_add(source.get(), "q", 1, "", 0), STENCILOR_WRONG_KIND);
    const OptionsHandle options = optionsWith(source);
    const ContextHandle context = contextOf("{}");
    EXPECT_EQ(textOf(render(parse("{% include \"p\" %}"), context, options.get())),
              "in the folder");
    for (const std::string& outside : {std::string("../p"), folder.path("p")}) {
        ResultHandle result;
        EXPECT_EQ(stencilor_render_path(outside.data(), outside.size(), context.get(),
                                        options.get(), out(result)),
                  STENCILOR_NOT_FOUND);
    }

    const std::string missing = folder.path("missing");
    EXPECT_EQ(stencilor_source_folder(missing.data(), missing.size(), out(source)),
              STENCILOR_NOT_FOUND);
    EXPECT_EQ(source, nullptr);
}

TEST(CSource, CanBeReset) {
    const SourceHandle source = makeMemory();
    add(source, "p", "text");
    const OptionsHandle options = optionsWith(source);
    stencilor_options_set_source(options.get(), nullptr);
    EXPECT_EQ(textOf(render(parse("{% include \"p\" %}"), contextOf("{}"), options.get())), "");
}

/// Writes pieces to a string, up to a number of them.
struct Writer {
    std::string text{};
    int pieces = 0;
    int most = 1'000'000;

    static int write(void* payload, const char* text, std::size_t size) {
        auto& self = *static_cast<Writer*>(payload);
        self.text.append(text, size);
        return ++self.pieces < self.most ? 0 : 42;
    }
};

TEST(CRender, WritesPieces) {
    const TemplateHandle page = parse("{% for x in l %}{{ x.value }}\u20AC{% endfor %}");
    const ContextHandle context = contextOf(R"({"l": ["a", "b"]})");
    Writer writer;
    ResultHandle result;
    EXPECT_EQ(stencilor_template_render_to(page.get(), context.get(), Writer::write, &writer,
                                           nullptr, out(result)),
              STENCILOR_OK);
    EXPECT_EQ(writer.text, textOf(render(page, context)));
    EXPECT_EQ(textOf(result), "");
    EXPECT_EQ(stencilor_template_render_to(page.get(), context.get(), Writer::write, &writer,
                                           nullptr, nullptr),
              STENCILOR_OK)
        << "without a result";
}

TEST(CRender, CanBeEndedByItsWriter) {
    const TemplateHandle page = parse(std::string(100'000, 'x'));
    Writer writer{.most = 1};
    ResultHandle result;
    EXPECT_EQ(stencilor_template_render_to(page.get(), contextOf("{}").get(), Writer::write,
                                           &writer, nullptr, out(result)),
              STENCILOR_STOPPED);
    EXPECT_EQ(stencilor_result_stop_code(result.get()), 42);
    EXPECT_EQ(writer.pieces, 1);
}

int doubleText(void* payload, const char* text, std::size_t size, stencilor_output* output) {
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(stencilor_output_append(output, text, size), STENCILOR_OK);
    }
    return *static_cast<int*>(payload);
}

TEST(COptions, EscapeWithAFunction) {
    const OptionsHandle options = makeOptions();
    int code = 0;
    EXPECT_EQ(stencilor_options_set_escape_function(options.get(), doubleText, &code),
              STENCILOR_OK);
    const TemplateHandle page = parse("{{ a }}-{{ b }}");
    const ContextHandle context = contextOf(R"({"a": "x", "b": ""})");
    EXPECT_EQ(textOf(render(page, context, options.get())), "xx-");
    code = 3;
    const ResultHandle stopped = render(page, context, options.get());
    EXPECT_EQ(stencilor_result_status(stopped.get()), STENCILOR_STOPPED);
    EXPECT_EQ(stencilor_result_stop_code(stopped.get()), 3);
}

int appendNothing(void*, const char*, std::size_t, stencilor_output* output) {
    EXPECT_EQ(stencilor_output_append(output, nullptr, 1), STENCILOR_INVALID_ARGUMENT);
    return 5;
}

TEST(COptions, FailIfAnEscapeFunctionCannotAppend) {
    const OptionsHandle options = makeOptions();
    stencilor_options_set_escape_function(options.get(), appendNothing, nullptr);
    ResultHandle result;
    EXPECT_EQ(stencilor_template_render(parse("{{ a }}").get(), contextOf(R"({"a": ""})").get(),
                                        options.get(), out(result)),
              STENCILOR_INVALID_ARGUMENT);
    EXPECT_EQ(result, nullptr);
}

int countDown(void* payload) {
    return --*static_cast<int*>(payload) == 0 ? 9 : 0;
}

TEST(COptions, PollWhetherToContinue) {
    const TemplateHandle page = parse("{{ gone }}{% for x in l %}{% for y in l %}{% for z in l %}"
                                      "{% endfor %}{% endfor %}{% endfor %}");
    const ContextHandle context = contextOf("{\"l\": [1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16]}");
    const OptionsHandle options = makeOptions();
    int left = 2;
    EXPECT_EQ(stencilor_options_set_poll(options.get(), countDown, &left), STENCILOR_OK);
    const ResultHandle stopped = render(page, context, options.get());
    EXPECT_EQ(stencilor_result_status(stopped.get()), STENCILOR_STOPPED);
    EXPECT_EQ(stencilor_result_stop_code(stopped.get()), 9);
    EXPECT_EQ(stencilor_result_usage(stopped.get(), STENCILOR_LIMIT_STEPS), 2048u);
    ASSERT_EQ(stencilor_result_message_count(stopped.get()), 2u);
    EXPECT_EQ(stencilor_message_kind(stencilor_result_message(stopped.get(), 1)),
              STENCILOR_MESSAGE_STOPPED);

    EXPECT_EQ(stencilor_options_set_poll(options.get(), nullptr, nullptr), STENCILOR_OK);
    EXPECT_EQ(stencilor_result_status(render(page, context, options.get()).get()), STENCILOR_OK);
}

/// Renders the same template in a callback, once.
struct Nested {
    const TemplateHandle& page;
    const ContextHandle& context;
    std::string text{};

    static int write(void* payload, const char*, std::size_t) {
        auto& self = *static_cast<Nested*>(payload);
        self.text = textOf(render(self.page, self.context));
        return 0;
    }
};

TEST(CRender, RendersInsideACallback) {
    const TemplateHandle page = parse("{{ a }}");
    const ContextHandle context = contextOf(R"({"a": "b"})");
    Nested nested{page, context};
    EXPECT_EQ(stencilor_template_render_to(page.get(), context.get(), Nested::write, &nested,
                                           nullptr, nullptr),
              STENCILOR_OK);
    EXPECT_EQ(nested.text, "b");
}

} // namespace
} // namespace support
