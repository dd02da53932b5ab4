#include <nlohmann/json.hpp>
#include <tools/stencilor/code_point.h>
#include <tools/stencilor/json_output.h>
#include <tools/stencilor/name_list.h>
#include <tools/stencilor/shown_text.h>

#include <algorithm>
#include <iterator>

namespace stencilor {

namespace {

using Json = nlohmann::ordered_json;

bool isSameLoop(const Loop& one, const Loop& other) {
    return one.variable == other.variable && one.list == other.list;
}

bool areSameLoops(const std::vector<Loop>& some, const std::vector<Loop>& others) {
    return std::equal(some.begin(), some.end(), others.begin(), others.end(), isSameLoop);
}

/// `page.txt:3, page.txt:7`, each line once.
std::string describePlaces(const std::vector<Place>& places) {
    std::vector<std::string> lines;
    for (const Place& place : places) {
        lines.push_back(showText(place.file->name()) + ":" +
                        std::to_string(place.file->positionOf(place.range.begin).line));
    }
    std::string text;
    for (auto line = lines.begin(); line != lines.end(); ++line) {
        if (std::find(lines.begin(), line, *line) == line) {
            text += (text.empty() ? "" : ", ") + *line;
        }
    }
    return text;
}

std::string describeLoops(const std::vector<Loop>& loops) {
    std::string text;
    for (const Loop& loop : loops) {
        text += (text.empty() ? "" : ", ") + ("for " + loop.variable + " in ") + loop.list;
    }
    return text;
}

/// Rows whose columns begin below each other.
std::string formatColumns(const std::vector<std::vector<std::string>>& rows) {
    std::vector<std::size_t> widths;
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], countCodePoints(row[column]));
        }
    }
    std::string text;
    for (const auto& row : rows) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column) {
            line +=
                row[column] + std::string(widths[column] - countCodePoints(row[column]) + 2, ' ');
        }
        text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return text;
}

} // namespace

const char* textOf(ValueKind kind) {
    switch (kind) {
    case ValueKind::String:
        return "string";
    case ValueKind::Boolean:
        return "boolean";
    case ValueKind::List:
        break;
    }
    return "list";
}

ValueKind kindOf(const SyntaxElement& part) {
    return part.kind == SyntaxElement::Kind::For  ? ValueKind::List
           : part.kind == SyntaxElement::Kind::If ? ValueKind::Boolean
                                                  : ValueKind::String;
}

SyntaxRange nameOf(const SyntaxElement& part) {
    return part.kind == SyntaxElement::Kind::For ? part.list : part.name;
}

void NameList::visitName(const Use& use) {
    const SyntaxRange range = nameOf(use.part);
    const std::string_view name = use.file.textOf(range);
    const ValueKind kind = kindOf(use.part);
    auto entry = std::find_if(entries_.begin(), entries_.end(), [&](const NameEntry& other) {
        return other.name == name && other.kind == kind && areSameLoops(other.loops, use.loops);
    });
    if (entry == entries_.end()) {
        entry = entries_.insert(entry, {std::string(name), kind, use.loops, {}});
    }
    entry->places.push_back({&use.file, range});
}

std::string NameList::formatText() const {
    std::vector<std::vector<std::string>> rows;
    for (const NameEntry& entry : entries_) {
        rows.push_back({entry.name, textOf(entry.kind), describePlaces(entry.places),
                        describeLoops(entry.loops)});
    }
    return formatColumns(rows);
}

std::string NameList::formatJson() const {
    Json names = Json::array();
    for (const NameEntry& entry : entries_) {
        Json loops = Json::array();
        for (const Loop& loop : entry.loops) {
            loops.push_back({{"variable", loop.variable}, {"list", loop.list}});
        }
        Json places = Json::array();
        for (const Place& place : entry.places) {
            const Position position = place.file->positionOf(place.range.begin);
            places.push_back({{"file", place.file->name()},
                              {"line", position.line},
                              {"column", position.column}});
        }
        names.push_back({{"name", entry.name},
                         {"kind", textOf(entry.kind)},
                         {"loops", std::move(loops)},
                         {"places", std::move(places)}});
    }
    return printJson({{"names", std::move(names)}});
}

} // namespace stencilor
