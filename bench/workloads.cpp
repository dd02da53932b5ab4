#include "workloads.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <utility>

namespace bench {

namespace {

/// Wraps code that appends to a string; `append` owns its data.
template <typename Append>
renderer byHand(Append append) {
    auto last = std::make_shared<std::string>();
    return {[append, last] {
                std::string output;
                append(output);
                *last = std::move(output);
                return last->size();
            },
            [last] { return *last; }};
}

/// An object of one member.
value objectOf(const std::string& name, value member) {
    object made;
    made.emplace(name, std::move(member));
    return {std::move(made)};
}

workload greeting() {
    struct data {
        std::string name = "Ada";
        std::string count = "12";
    };
    return {.name = "W1",
            .what = "a line with two names",
            .stencilor = "Hello, {{ name }}! You have {{ count }} new messages.",
            .ctemplate = "Hello, {{name}}! You have {{count}} new messages.",
            .mustache = "Hello, {{{name}}}! You have {{{count}}} new messages.",
            .data = {{"name", {data().name}}, {"count", {data().count}}},
            .hand = byHand([values = data()](std::string& output) {
                output += "Hello, ";
                output += values.name;
                output += "! You have ";
                output += values.count;
                output += " new messages.";
            }),
            .ofPeer = 0.4};
}

struct product {
    std::string url;
    std::string name;
    std::string description;
    bool fresh;
};

std::vector<product> products(std::size_t count) {
    std::vector<product> made;
    for (std::size_t number = 0; number < count; ++number) {
        const std::string text = std::to_string(number);
        made.push_back({"/products/" + text, "Product " + text,
                        "One of " + std::to_string(count) + " things that nobody needs, in blue.",
                        number % 3 == 0});
    }
    return made;
}

list toList(const std::vector<product>& from) {
    list rows;
    for (const product& each : from) {
        rows.push_back({object{{"url", {each.url}},
                               {"name", {each.name}},
                               {"description", {each.description}},
                               {"new", {each.fresh}}}});
    }
    return rows;
}

void appendRow(std::string& output, const product& row) {
    output += "  <li class=\"row\"><a href=\"";
    output += row.url;
    output += "\">";
    output += row.name;
    output += "</a>";
    if (row.fresh) {
        output += " <b>new</b>";
    }
    output += ": ";
    output += row.description;
    output += "</li>\n";
}

constexpr const char* pageTitle = "Everything we sell";

void appendPage(std::string& output, const std::vector<product>& rows, bool admin) {
    output += "<html><head><title>";
    output += pageTitle;
    output += "</title></head>\n<body><h1>";
    output += pageTitle;
    output += "</h1>\n<p>";
    output += admin ? "You may edit." : "You may look.";
    output += "</p>\n<ul>\n";
    for (const product& row : rows) {
        appendRow(output, row);
    }
    output += "</ul></body></html>\n";
}

std::string page(const std::string& title, const std::string& mode, const std::string& rows) {
    return "<html><head><title>" + title + "</title></head>\n<body><h1>" + title + "</h1>\n<p>" +
           mode + "</p>\n<ul>\n" + rows + "</ul></body></html>\n";
}

constexpr const char* stencilorMode =
    "{% if admin %}You may edit.{% else %}You may look.{% endif %}";
constexpr const char* stencilorRow =
    "  <li class=\"row\"><a href=\"{{ item.url }}\">{{ item.name }}</a>"
    "{% if item.new %} <b>new</b>{% endif %}: {{ item.description }}</li>\n";

object pageData(const std::vector<product>& rows) {
    return {{"title", {std::string(pageTitle)}}, {"admin", {true}}, {"items", {toList(rows)}}};
}

workload productPage(std::size_t count) {
    const std::vector<product> rows = products(count);
    workload made = {
        .name = "W2-" + std::to_string(count),
        .what = "a product page of " + std::to_string(count) + " rows",
        .stencilor = page("{{ title }}", stencilorMode,
                          std::string("{% for item in items %}") + stencilorRow + "{% endfor %}"),
        .ctemplate = page("{{title}}",
                          "{{#admin}}You may edit.{{/admin}}{{#not_admin}}You may look."
                          "{{/not_admin}}",
                          "{{#items}}  <li class=\"row\"><a href=\"{{url}}\">{{name}}</a>"
                          "{{#new}} <b>new</b>{{/new}}: {{description}}</li>\n{{/items}}"),
        .mustache = page("{{{title}}}",
                         "{{#admin}}You may edit.{{/admin}}{{^admin}}You may look.{{/admin}}",
                         "{{#items}}  <li class=\"row\"><a href=\"{{{url}}}\">{{{name}}}</a>"
                         "{{#new}} <b>new</b>{{/new}}: {{{description}}}</li>\n{{/items}}"),
        .data = pageData(rows),
        .hand = byHand([rows](std::string& output) { appendPage(output, rows, true); })};
    if (count <= 10) {
        made.ofPeer = 0.4;
    } else {
        made.ofPeer = 1.0;
        made.ofHand = 2.5;
        made.aheadOfParsed = true;
    }
    return made;
}

workload table() {
    using row = std::array<std::string, 10>;
    std::vector<row> rows(1000);
    list dataRows;
    int number = 0;
    for (row& cells : rows) {
        list dataCells;
        for (std::string& cell : cells) {
            cell = std::to_string(number++);
            dataCells.push_back(objectOf("v", {cell}));
        }
        dataRows.push_back(objectOf("cells", {std::move(dataCells)}));
    }
    return {.name = "W3",
            .what = "a table of 1,000 rows by 10 cells",
            .stencilor = "<table>\n{% for row in rows %}<tr>{% for col in row.cells %}"
                         "<td>{{ col.v }}</td>{% endfor %}</tr>\n{% endfor %}</table>\n",
            .ctemplate = "<table>\n{{#rows}}<tr>{{#cells}}<td>{{v}}</td>{{/cells}}</tr>\n"
                         "{{/rows}}</table>\n",
            .mustache = "<table>\n{{#rows}}<tr>{{#cells}}<td>{{{v}}}</td>{{/cells}}</tr>\n"
                        "{{/rows}}</table>\n",
            .data = {{"rows", {dataRows}}},
            .hand = byHand([rows](std::string& output) {
                output += "<table>\n";
                for (const row& cells : rows) {
                    output += "<tr>";
                    for (const std::string& cell : cells) {
                        output += "<td>";
                        output += cell;
                        output += "</td>";
                    }
                    output += "</tr>\n";
                }
                output += "</table>\n";
            }),
            .ofPeer = 1.0,
            .ofHand = 2.5,
            .aheadOfParsed = true};
}

constexpr std::size_t mebibyte = 1u << 20;

std::string prose(std::size_t size) {
    std::string text;
    while (text.size() < size) {
        text += "It was late in the year, and nobody had asked for a longer text than this one.\n";
    }
    text.resize(size);
    return text;
}

/// `part` and `tag` again and again, a mebibyte in all.
std::string proseWithTags(const std::string& part, const std::string& tag) {
    std::string text;
    while (text.size() < mebibyte) {
        text += part;
        text += tag;
    }
    return text;
}

workload longProse() {
    const std::string part = prose(4096);
    const std::string name = "Ada";
    return {.name = "W4",
            .what = "1 MiB of prose, a name every 4 KiB",
            .stencilor = proseWithTags(part, "{{ name }}"),
            .ctemplate = proseWithTags(part, "{{name}}"),
            .mustache = proseWithTags(part, "{{{name}}}"),
            .data = {{"name", {name}}},
            .hand = byHand([part, name](std::string& output) {
                const std::size_t tagged = part.size() + std::string("{{ name }}").size();
                for (std::size_t done = 0; done < mebibyte; done += tagged) {
                    output += part;
                    output += name;
                }
            }),
            .ofPeer = 0.3};
}

workload manyTags() {
    const std::string line = "{{ a }} {% if b %}x{% else %}y{% endif %}\n";
    const std::size_t lines = mebibyte / line.size();
    const auto repeated = [lines](const std::string& text) {
        std::string all;
        for (std::size_t count = 0; count < lines; ++count) {
            all += text;
        }
        return all;
    };
    const std::string value = "value";
    return {.name = "W5",
            .what = "1 MiB of short lines full of tags",
            .stencilor = repeated(line),
            .ctemplate = repeated("{{a}} {{#b}}x{{/b}}{{#not_b}}y{{/not_b}}\n"),
            .mustache = repeated("{{{a}}} {{#b}}x{{/b}}{{^b}}y{{/b}}\n"),
            .data = {{"a", {value}}, {"b", {true}}},
            .hand = byHand([value, lines](std::string& output) {
                for (std::size_t count = 0; count < lines; ++count) {
                    output += value;
                    output += " x\n";
                }
            }),
            .ofPeer = 0.3};
}

/// What reading a file takes at the least: its status, opening, reading, closing.
void readBare(const std::string& path) {
    struct stat status;
    std::array<char, 4096> bytes;
    const bool exists = ::stat(path.c_str(), &status) == 0;
    const int file = exists ? ::open(path.c_str(), O_RDONLY | O_CLOEXEC) : -1;
    if (file < 0 || ::read(file, bytes.data(), bytes.size()) <= 0 || ::close(file) != 0) {
        throw std::runtime_error("cannot read " + path);
    }
}

/// The row of W2 in a file that is read anew for each row. `hand` reads the file as often and does
/// nothing else; its text is that of a plain page.
workload includedRows() {
    const std::vector<product> rows = products(1000);
    std::string row = stencilorRow;
    for (std::size_t at = row.find("item."); at != std::string::npos; at = row.find("item.")) {
        row.erase(at, 5);
    }
    const std::string path = "bench_row.txt";
    std::ofstream(path, std::ios::binary) << row;
    auto text = std::make_shared<std::string>();
    appendPage(*text, rows, true);
    return {.name = "W6",
            .what = "W2 with the row in an included file",
            .stencilor = page("{{ title }}", stencilorMode,
                              "{% for item in items %}{% include \"" + path + "\" %}{% endfor %}"),
            .ctemplate = "",
            .mustache = "",
            .data = pageData(rows),
            .included = path,
            .hand = {[rows, path, text] {
                         for (std::size_t count = rows.size(); count > 0; --count) {
                             readBare(path);
                         }
                         return text->size();
                     },
                     [text] { return *text; }},
            .ofHand = 1.3};
}

workload distantNames() {
    constexpr std::size_t depth = 8;
    constexpr std::size_t turns = 1000;
    const std::string title = "far away";
    list innermost;
    for (std::size_t count = 0; count < turns; ++count) {
        innermost.push_back(objectOf("leaf", {std::string("leaf")}));
    }
    value lists = {innermost};
    for (std::size_t level = depth; level-- > 1;) {
        object element = {{"other", {std::string("other")}},
                          {"list" + std::to_string(level), std::move(lists)}};
        if (level == 1) {
            element.emplace("title", value{title});
        }
        lists = {list{{std::move(element)}}};
    }
    const auto nested = [](const auto& open, const std::string& body, const auto& close) {
        std::string text;
        for (std::size_t level = 0; level < depth; ++level) {
            text += open(std::to_string(level));
        }
        text += body;
        for (std::size_t level = depth; level-- > 0;) {
            text += close(std::to_string(level));
        }
        return text;
    };
    const auto section = [](const std::string& level) { return "{{#list" + level + "}}"; };
    const auto endSection = [](const std::string& level) { return "{{/list" + level + "}}"; };
    return {.name = "W7",
            .what = "names of the outermost of 8 loops",
            .stencilor = nested(
                [](const std::string& level) {
                    return "{% for v" + level + " in list" + level + " %}";
                },
                "<{{ v0.title }} {{ title }}>\n",
                [](const std::string&) { return std::string("{% endfor %}"); }),
            .ctemplate = nested(section, "<{{title}} {{title}}>\n", endSection),
            .mustache = nested(section, "<{{{title}}} {{{title}}}>\n", endSection),
            .data = {{"list0", std::move(lists)}},
            .hand = byHand([title](std::string& output) {
                for (std::size_t count = 0; count < turns; ++count) {
                    output += "<";
                    output += title;
                    output += " ";
                    output += title;
                    output += ">\n";
                }
            })};
}

workload failingNames() {
    constexpr std::size_t count = 10000;
    const auto repeated = [](const std::string& tag) {
        std::string text;
        for (std::size_t made = 0; made < count; ++made) {
            text += tag;
        }
        return text + "end";
    };
    return {.name = "W8",
            .what = "10,000 substitutions that fail",
            .stencilor = repeated("{{ missing }}"),
            .ctemplate = repeated("{{missing}}"),
            .mustache = repeated("{{{missing}}}"),
            .data = {{"name", {std::string("Ada")}}},
            .hand = byHand([](std::string& output) { output += "end"; })};
}

} // namespace

std::vector<workload> allWorkloads() {
    return {greeting(), productPage(10), productPage(1000), table(),       longProse(),
            manyTags(), includedRows(),  distantNames(),    failingNames()};
}

} // namespace bench
