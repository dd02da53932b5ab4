#include <libStencilorAnalysis/names/NameList.h>
#include <libStencilorAnalysis/text/CodePoint.h>
#include <libStencilorAnalysis/text/JsonText.h>
#include <libStencilorAnalysis/text/ShownText.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>

namespace kel::Stencilor::Analysis {

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

void NameList::visitName(const NameUse& use) {
    entryOf(use).places.push_back({&use.file, use.name});
}

/// The entry that a name belongs to, which may be new.
NameEntry& NameList::entryOf(const NameUse& use) {
    const auto [first, last] = indices_.equal_range(use.text());
    for (auto known = first; known != last; ++known) {
        NameEntry& entry = entries_[known->second];
        if (entry.kind == use.kind && areSameLoops(entry.loops, use.loops)) {
            return entry;
        }
    }
    indices_.emplace_hint(last, use.text(), entries_.size());
    return entries_.emplace_back(NameEntry{std::string(use.text()), use.kind, use.loops, {}});
}

std::string NameList::formatText() const {
    std::vector<std::vector<std::string>> rows;
    for (const NameEntry& entry : entries_) {
        rows.push_back({entry.name, kindName(entry.kind), describePlaces(entry.places),
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
                         {"kind", kindName(entry.kind)},
                         {"loops", std::move(loops)},
                         {"places", std::move(places)}});
    }
    return jsonDocument({{"names", std::move(names)}});
}

} // namespace kel::Stencilor::Analysis
