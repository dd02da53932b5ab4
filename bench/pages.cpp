// The product page: unchanged, with its row in an included file, and escaped.

#include "workloads.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

namespace bench {

namespace {

struct product {
    std::string url;
    std::string name;
    std::string description;
    bool fresh;
};

/// @param blue how each description ends
std::vector<product> products(std::size_t count, const std::string& blue = "in blue.") {
    std::vector<product> made;
    for (std::size_t number = 0; number < count; ++number) {
        const std::string text = std::to_string(number);
        made.push_back({"/products/" + text, "Product " + text,
                        "One of " + std::to_string(count) + " things that nobody needs, " + blue,
                        number % 3 == 0});
    }
    return made;
}

constexpr const char* pageTitle = "Everything we sell";

object pageData(const std::vector<product>& products) {
    list rows;
    for (const product& each : products) {
        rows.push_back({object{{"url", {each.url}},
                               {"name", {each.name}},
                               {"description", {each.description}},
                               {"new", {each.fresh}}}});
    }
    return {{"title", {std::string(pageTitle)}}, {"admin", {true}}, {"items", {std::move(rows)}}};
}

void appendAsItIs(std::string& output, const std::string& text) {
    output += text;
}

void appendEscaped(std::string& output, const std::string& text) {
    for (const char each : text) {
        switch (each) {
        case '&':
            output += "&amp;";
            break;
        case '<':
            output += "&lt;";
            break;
        case '>':
            output += "&gt;";
            break;
        case '"':
            output += "&quot;";
            break;
        default:
            output += each;
        }
    }
}

/// Calls `append` for values, so that the compiler sees which function it is.
template <auto append>
void appendPage(std::string& output, const std::vector<product>& rows, bool admin) {
    output += "<html><head><title>";
    append(output, pageTitle);
    output += "</title></head>\n<body><h1>";
    append(output, pageTitle);
    output += "</h1>\n<p>";
    output += admin ? "You may edit." : "You may look.";
    output += "</p>\n<ul>\n";
    for (const product& row : rows) {
        output += "  <li class=\"row\"><a href=\"";
        append(output, row.url);
        output += "\">";
        append(output, row.name);
        output += "</a>";
        if (row.fresh) {
            output += " <b>new</b>";
        }
        output += ": ";
        append(output, row.description);
        output += "</li>\n";
    }
    output += "</ul></body></html>\n";
}

std::string aPage(const std::string& row) {
    return "<html><head><title>[title]</title></head>\n<body><h1>[title]</h1>\n"
           "<p>[if admin]You may edit.[else]You may look.[end]</p>\n<ul>\n[for item in items]" +
           row + "[end]</ul></body></html>\n";
}

constexpr const char* pageRow = "  <li class=\"row\"><a href=\"[item.url]\">[item.name]</a>"
                                "[if item.new] <b>new</b>[end]: [item.description]</li>\n";
constexpr const char* includedRow = "  <li class=\"row\"><a href=\"[url]\">[name]</a>"
                                    "[if new] <b>new</b>[end]: [description]</li>\n";

/// The minimal calls to read a file: status, open, read, close.
void readBare(const std::string& path) {
    struct stat status;
    std::array<char, 4096> bytes;
    const bool exists = ::stat(path.c_str(), &status) == 0;
    const int file = exists ? ::open(path.c_str(), O_RDONLY | O_CLOEXEC) : -1;
    if (file < 0 || ::read(file, bytes.data(), bytes.size()) <= 0 || ::close(file) != 0) {
        throw std::runtime_error("cannot read " + path);
    }
}

} // namespace

workload productPage(std::size_t count) {
    const std::vector<product> rows = products(count);
    const bool few = count <= 10;
    return {.name = "W2-" + std::to_string(count),
            .what = "a page of " + std::to_string(count) + " rows",
            .text = {aPage(pageRow)},
            .data = pageData(rows),
            .hand = byHand(
                [rows](std::string& output) { appendPage<appendAsItIs>(output, rows, true); }),
            .buildOutputTarget = few ? 0.62 : 0.80,
            .templateTarget = few ? 0.85 : 0.80};
}

/// All engines escape the characters in this data in the same way, which is not true for
/// apostrophes.
workload escapedPage() {
    const std::vector<product> rows = products(1000, "in <blue> & \"red\".");
    return {.name = "W10",
            .what = "W2-1000, escaped for HTML",
            .text = {aPage(pageRow)},
            .data = pageData(rows),
            .escaped = true,
            .hand = byHand(
                [rows](std::string& output) { appendPage<appendEscaped>(output, rows, true); }),
            .templateTarget = 0.60};
}

/// The row of W2 in a file. `buildOutput` reads it for each row; `hand` also reads it for each row,
/// but only uses the text of a plain page.
workload includedRows() {
    const std::vector<product> rows = products(1000);
    const std::string path = "row.html";
    object data = pageData(rows);
    for (value& row : std::get<list>(data.at("items").held)) {
        std::get<object>(row.held).emplace("row", value{partial{path}});
    }
    auto text = std::make_shared<std::string>();
    appendPage<appendAsItIs>(*text, rows, true);
    return {.name = "W6",
            .what = "W2-1000, the row included",
            .text = {aPage("[include row]"), {{path, includedRow}}},
            .data = std::move(data),
            .inFiles = true,
            .hand = {[rows, path, text] {
                         for (std::size_t count = rows.size(); count > 0; --count) {
                             readBare(path);
                         }
                         return text->size();
                     },
                     [text] { return *text; }},
            .buildOutputTarget = 1.3,
            .templateTarget = 0.80};
}

} // namespace bench
