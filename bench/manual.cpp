// A page the size of a manual: prose, a menu, chapters with sections of notes, a list of sources,
// and twenty includes.

#include "workloads.h"

#include <initializer_list>
#include <string_view>

namespace bench {

namespace {

constexpr std::size_t includes = 20;

/// @param about the text that distinguishes one paragraph from the next
std::string prose(const std::string& about, std::size_t sentences) {
    std::string text = "<p>" + about + ". ";
    for (std::size_t count = 0; count < sentences; ++count) {
        text += "Nothing that grows in the shade of a wall asks for more than a little water.\n";
    }
    return text + "</p>\n";
}

std::string nameOf(const std::string& what, std::size_t number) {
    return what + std::to_string(number);
}

std::string before(std::size_t number) {
    return prose(nameOf("Before part ", number), 20) + "<div>";
}

std::string part(std::size_t number) {
    return prose(nameOf("Part ", number), 45);
}

page pageText() {
    page made;
    made.text = "<html><head><title>[title]</title></head>\n<body><ul>[for entry in menu]"
                "<li><a href=\"[entry.link]\">[entry.name]</a></li>\n[end]</ul>\n";
    for (std::size_t number = 0; number < includes; ++number) {
        const std::string name = nameOf("part", number);
        made.text += before(number) + "[include " + name + "]</div>\n";
        made.included.emplace(name + ".html",
                              "<h2>[title]</h2>\n" + part(number) + "<p>[author]</p>\n");
    }
    made.text += "[for chapter in chapters]<h3>[chapter.heading]</h3>\n"
                 "[for section in chapter.sections]<h4>[section.heading]</h4>\n<ul>"
                 "[for note in section.notes]<li class=\"note\"><b>[note.number]</b> [note.text]"
                 "</li>\n[end]</ul>[end][end]\n<ol>"
                 "[for entry in sources]<li><a href=\"[entry.link]\">[entry.name]</a></li>\n"
                 "[end]</ol></body></html>\n";
    return made;
}

struct entry {
    std::string link;
    std::string name;
};

struct note {
    std::string number;
    std::string text;
};

struct section {
    std::string heading;
    std::vector<note> notes;
};

struct chapter {
    std::string heading;
    std::vector<section> sections;
};

struct content {
    std::string title = "A manual of gardening";
    std::string author = "Ada";
    std::vector<entry> menu;
    std::vector<entry> sources;
    std::vector<chapter> chapters;
};

std::vector<entry> entriesOf(const std::string& kind) {
    std::vector<entry> made;
    for (std::size_t number = 0; number < 100; ++number) {
        made.push_back({nameOf("/" + kind + "/", number), nameOf("One of the " + kind, number)});
    }
    return made;
}

content makeContent() {
    std::vector<note> notes;
    for (std::size_t number = 0; number < 8; ++number) {
        notes.push_back({nameOf("", number), "Water it in the evening, never in the sun of noon."});
    }
    std::vector<section> sections;
    for (std::size_t number = 0; number < 6; ++number) {
        sections.push_back({nameOf("Section ", number), notes});
    }
    content made;
    made.menu = entriesOf("menu");
    made.sources = entriesOf("sources");
    for (std::size_t number = 0; number < 10; ++number) {
        made.chapters.push_back({nameOf("Chapter ", number), sections});
    }
    return made;
}

object toObject(const entry& from) {
    return {{"link", {from.link}}, {"name", {from.name}}};
}

object toObject(const note& from) {
    return {{"number", {from.number}}, {"text", {from.text}}};
}

template <typename Element>
value toList(const std::vector<Element>& from);

object toObject(const section& from) {
    return {{"heading", {from.heading}}, {"notes", toList(from.notes)}};
}

object toObject(const chapter& from) {
    return {{"heading", {from.heading}}, {"sections", toList(from.sections)}};
}

template <typename Element>
value toList(const std::vector<Element>& from) {
    list made;
    for (const Element& each : from) {
        made.push_back({toObject(each)});
    }
    return {std::move(made)};
}

object toObject(const content& from) {
    object made = {{"title", {from.title}},
                   {"author", {from.author}},
                   {"menu", toList(from.menu)},
                   {"chapters", toList(from.chapters)},
                   {"sources", toList(from.sources)}};
    for (std::size_t number = 0; number < includes; ++number) {
        const std::string name = nameOf("part", number);
        made.emplace(name, value{partial{name + ".html"}});
    }
    return made;
}

void append(std::string& output, std::initializer_list<std::string_view> pieces) {
    for (const std::string_view piece : pieces) {
        output += piece;
    }
}

void appendEntries(std::string& output, const std::vector<entry>& entries) {
    for (const entry& each : entries) {
        append(output, {"<li><a href=\"", each.link, "\">", each.name, "</a></li>\n"});
    }
}

void appendChapter(std::string& output, const chapter& from) {
    append(output, {"<h3>", from.heading, "</h3>\n"});
    for (const section& each : from.sections) {
        append(output, {"<h4>", each.heading, "</h4>\n<ul>"});
        for (const note& inner : each.notes) {
            append(output,
                   {"<li class=\"note\"><b>", inner.number, "</b> ", inner.text, "</li>\n"});
        }
        output += "</ul>";
    }
}

/// @param texts alternately the text before a part, and the part
void appendManual(std::string& output, const content& from, const std::vector<std::string>& texts) {
    append(output, {"<html><head><title>", from.title, "</title></head>\n<body><ul>"});
    appendEntries(output, from.menu);
    output += "</ul>\n";
    for (std::size_t index = 0; index < texts.size(); index += 2) {
        append(output, {texts[index], "<h2>", from.title, "</h2>\n", texts[index + 1], "<p>",
                        from.author, "</p>\n</div>\n"});
    }
    for (const chapter& each : from.chapters) {
        appendChapter(output, each);
    }
    output += "\n<ol>";
    appendEntries(output, from.sources);
    output += "</ol></body></html>\n";
}

} // namespace

workload manual() {
    const content from = makeContent();
    std::vector<std::string> texts;
    for (std::size_t number = 0; number < includes; ++number) {
        texts.push_back(before(number));
        texts.push_back(part(number));
    }
    return {.name = "W9",
            .what = "200 KiB of HTML, 20 includes",
            .text = pageText(),
            .data = toObject(from),
            .hand =
                byHand([from, texts](std::string& output) { appendManual(output, from, texts); }),
            .buildOutputTarget = 0.60,
            .templateTarget = 0.75};
}

} // namespace bench
