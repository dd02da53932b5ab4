#include "workloads.h"

#include <array>

namespace bench {

namespace {

/// An object with one member.
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
            .text = {"Hello, [name]! You have [count] new messages."},
            .data = {{"name", {data().name}}, {"count", {data().count}}},
            .hand = byHand([values = data()](std::string& output) {
                output += "Hello, ";
                output += values.name;
                output += "! You have ";
                output += values.count;
                output += " new messages.";
            }),
            .buildOutputTarget = 0.42,
            .templateTarget = 0.70};
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
            .text = {"<table>\n[for row in rows]<tr>[for col in row.cells]<td>[col.v]</td>[end]"
                     "</tr>\n[end]</table>\n"},
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
            .buildOutputTarget = 0.65,
            .templateTarget = 0.70};
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

std::string repeated(const std::string& text, std::size_t count) {
    std::string all;
    for (; count > 0; --count) {
        all += text;
    }
    return all;
}

workload longProse() {
    const std::string part = prose(4096);
    const std::size_t parts = mebibyte / part.size();
    const std::string name = "Ada";
    return {.name = "W4",
            .what = "1 MiB of prose, a name every 4 KiB",
            .text = {repeated(part + "[name]", parts)},
            .data = {{"name", {name}}},
            .hand = byHand([part, parts, name](std::string& output) {
                for (std::size_t count = 0; count < parts; ++count) {
                    output += part;
                    output += name;
                }
            }),
            .buildOutputTarget = 0.70,
            .templateTarget = 1.0};
}

workload manyTags() {
    const std::string line = "[a] [if b]x[else]y[end]\n";
    const std::size_t lines = mebibyte / translated(line, language::stencilor).size();
    const std::string value = "value";
    return {.name = "W5",
            .what = "1 MiB of short lines of tags",
            .text = {repeated(line, lines)},
            .data = {{"a", {value}}, {"b", {true}}},
            .hand = byHand([value, lines](std::string& output) {
                for (std::size_t count = 0; count < lines; ++count) {
                    output += value;
                    output += " x\n";
                }
            }),
            .buildOutputTarget = 0.17,
            .templateTarget = 0.50};
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
    std::string text = "<[v0.title] [title]>\n";
    for (std::size_t level = depth; level-- > 0;) {
        const std::string number = std::to_string(level);
        text = "[for v" + number + " in list" + number + "]" + text + "[end]";
    }
    return {.name = "W7",
            .what = "names of the outermost of 8 loops",
            .text = {text},
            .data = {{"list0", std::move(lists)}},
            .hand = byHand([title](std::string& output) {
                for (std::size_t count = 0; count < turns; ++count) {
                    output += "<";
                    output += title;
                    output += " ";
                    output += title;
                    output += ">\n";
                }
            }),
            .buildOutputTarget = 0.75,
            .templateTarget = 0.80};
}

workload failingNames() {
    return {.name = "W8",
            .what = "10,000 substitutions that fail",
            .text = {repeated("[missing]", 10000) + "end"},
            .data = {{"name", {std::string("Ada")}}},
            .hand = byHand([](std::string& output) { output += "end"; }),
            .buildOutputTarget = 0.80};
}

} // namespace

std::vector<workload> allWorkloads() {
    return {greeting(),     productPage(10), productPage(1000), table(),  longProse(),  manyTags(),
            includedRows(), distantNames(),  failingNames(),    manual(), escapedPage()};
}

} // namespace bench
