#include <libKel/Buffer.h>
#include <libKel/FileSystem.h>
#include <libKel/Logging.h>
#include <libKel/String.h>
#include <libStencilor/Stencilor.h>
#include <libStencilorJson/Json.h>

#include <cstdio>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

// Uses all that the package offers; what it prints is compared with what is expected.

using namespace kel::Stencilor;

namespace {

void print(const kel::String& text) {
    std::fwrite(text.view().data(), 1, text.size(), stdout);
    std::fputs("\n", stdout);
}

class Shouted : public ContextString {
  public:
    explicit Shouted(const std::string& text) : ContextString(kel::String(text + "!")) {}
    ~Shouted() override { std::puts("a value of the host is destroyed"); }
};

void build(ContextDictionary& context) {
    ContextIterable* const guests = ContextFactory::buildIterable(
        {ContextFactory::buildDictionary({{"name", ContextFactory::buildString("Ada")}}), nullptr});
    auto* const last = new ContextBase();
    last->insert("name", new Shouted("Zo\u00EB"));
    guests->add(last);
    context.insert("guests", guests);
    context.insert("member", ContextFactory::buildBoolean(
                                 true, {{"since", ContextFactory::buildString("\u6A21\u677F")}}));
    context.insert("guest", new ContextBoolean(false));
}

void render() {
    ContextDictionary context;
    build(context);
    kel::String errors;
    print(buildOutput("{% for guest in guests %}[{{ guest.name }}]{% endfor %}"
                      "{% if member %}{{ since }}{% endif %}{% if guest %}{% else %}.{% endif %}",
                      context, errors));
    print(errors);
}

void includeFile(const std::string& folder) {
    if (!kel::FileSystem::setRoot(folder)) {
        std::puts("no root");
    }
    print(buildOutput("{% include \"part.txt\" %}", ContextDictionary()));
    kel::Buffer<unsigned char> buffer;
    kel::FileSystem::loadFile("part.txt", buffer, nullptr);
    std::printf("%d bytes\n", static_cast<int>(buffer.size));
    kel::FileSystem::clearRoot();
}

void catchException() {
    try {
        const std::string_view tooLong("never looked at", std::size_t{1} << 32);
        print(kel::String(tooLong));
    } catch (const std::length_error&) {
        std::puts("an exception of the library was caught");
    }
}

void readJson() {
    const nlohmann::json json = {{"guest", {{"name", "Ada"}}}};
    print(buildOutput("{{ guest.name }}", Context(valueFromJson(json))));
    try {
        valueFromJsonText("{\"guest\":\n}");
    } catch (const JsonError& error) {
        std::puts(error.what());
    }
}

void receiveLog() {
    kel::LogFactory::setSink([](const kel::LogRecord& record) {
        std::printf("%s: %s", record.category, std::string(record.text).c_str());
    });
    kel::LogFactory::setPriority(kel::LoggerPriority::PRIORITY_INFO);
    buildOutput("{{ missing }}", ContextDictionary());
    kel::LogFactory::setSink({});
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        return 2;
    }
    render();
    includeFile(argv[1]);
    catchException();
    readJson();
    receiveLog();
}
