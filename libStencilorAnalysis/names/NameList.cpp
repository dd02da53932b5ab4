#include <libStencilorAnalysis/names/NameList.h>
#include <libStencilorAnalysis/text/CodePoint.h>
#include <libStencilorAnalysis/text/JsonText.h>
#include <libStencilorAnalysis/text/ShownText.h>

#include <algorithm>
#include <utility>

namespace kel::Stencilor::Analysis {

namespace {

/// The maximum number of loops, includes and lines per name.
constexpr std::size_t mostListed = 5;

/// The maximum column width, so that one long name does not widen all lines.
constexpr std::size_t widestColumn = 60;

std::string moreThan(std::size_t listed, std::size_t count) {
    return count > listed ? " and " + std::to_string(count - listed) + " more" : "";
}

/// `page.txt:3, page.txt:7`, each line once, for sorted places in one file.
std::string describePlaces(const std::vector<Place>& places) {
    std::string text;
    std::size_t lines = 0;
    std::size_t last = 0;
    for (const Place& place : places) {
        const std::size_t line = place.file->positionOf(place.range.begin).line;
        if (line != last && ++lines <= mostListed) {
            text += (text.empty() ? "" : ", ") + showText(place.file->name()) + ":" +
                    std::to_string(line);
        }
        last = line;
    }
    return text + moreThan(mostListed, lines);
}

void writePlaces(JsonWriter& json, std::string_view name, const std::vector<Place>& places) {
    json.name(name);
    json.beginArray();
    for (const Place& place : places) {
        const Position position = place.file->positionOf(place.range.begin);
        json.beginObject();
        json.member("file", place.file->name());
        json.member("line", position.line);
        json.member("column", position.column);
        json.endObject();
    }
    json.endArray();
}

/// Aligns the columns of rows.
std::string formatColumns(const std::vector<std::vector<std::string>>& rows) {
    std::vector<std::size_t> widths;
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] =
                std::max(widths[column], std::min(countCodePoints(row[column]), widestColumn));
        }
    }
    std::string text;
    for (const auto& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            const std::size_t width = countCodePoints(row[column]);
            text += row[column];
            text.append(widths[column] - std::min(widths[column], width) + 2, ' ');
        }
        text.erase(text.find_last_not_of(' ') + 1);
        text += '\n';
    }
    return text;
}

} // namespace

void NameList::visitName(const NameUse& use) {
    const LoopsId loops = loopsAround(use);
    const auto [known, added] =
        indices_.try_emplace({&use.file, use.text(), use.kind, loops}, entries_.size());
    if (added) {
        entries_.push_back({use.text(), use.kind, loops, {}});
    }
    entries_[known->second].places.push_back({&use.file, use.name});
    if (use.kind == ValueKind::List) {
        openLoop(use, loops);
    }
}

void NameList::visitInclusion(const Inclusion& inclusion) {
    if (inclusion.to.file == nullptr) {
        return;
    }
    Inclusions& inclusions = inclusions_[inclusion.to.file];
    if (++inclusions.count <= mostListed) {
        inclusions.first.push_back({&inclusion.from, inclusion.part.name});
    }
}

NameList::LoopsId NameList::loopsAround(const NameUse& use) const {
    std::size_t loop = use.file.loopAround(use.part);
    while (loop != TemplateFile::none) {
        const auto found = inside_.find({&use.file, loop});
        if (found != inside_.end()) {
            return found->second;
        }
        loop = use.file.loopAround(loop); // a malformed `for` has neither variable nor list
    }
    return 0;
}

/// `use` is the list of a loop. Identical loops count as one.
void NameList::openLoop(const NameUse& use, LoopsId outer) {
    const std::string_view variable = use.file.slice(use.file.parts()[use.part].name);
    const auto [known, added] =
        knownLoops_.try_emplace({outer, variable, use.text()}, loops_.size());
    if (added) {
        loops_.push_back({variable, use.text(), outer, loops_[outer].count + 1});
    }
    inside_.emplace(std::pair(&use.file, use.part), known->second);
}

/// Outermost first.
std::vector<const NameList::Loops*> NameList::innermostLoops(const Entry& entry) const {
    std::vector<const Loops*> innermost;
    for (LoopsId id = entry.loops; id != 0 && innermost.size() < mostListed;
         id = loops_[id].outer) {
        innermost.push_back(&loops_[id]);
    }
    std::reverse(innermost.begin(), innermost.end());
    return innermost;
}

const NameList::Inclusions& NameList::inclusionsOf(const Entry& entry) const {
    static const Inclusions none;
    const auto found = inclusions_.find(entry.places.front().file);
    return found == inclusions_.end() ? none : found->second;
}

std::string NameList::describeLoops(const Entry& entry) const {
    const std::size_t count = loops_[entry.loops].count;
    std::string text = count > mostListed
                           ? std::to_string(count - mostListed) +
                                 (count == mostListed + 1 ? " loop" : " loops") + " around"
                           : "";
    for (const Loops* loop : innermostLoops(entry)) {
        text += (text.empty() ? "for " : ", for ") + shorten(loop->variable) + " in " +
                shorten(loop->list);
    }
    return text;
}

std::string NameList::describeSurroundings(const Entry& entry) const {
    const std::string loops = describeLoops(entry);
    const auto& [first, count] = inclusionsOf(entry);
    if (count == 0) {
        return loops;
    }
    std::string places;
    for (const Place& place : first) {
        places += (places.empty() ? "" : ", ") + describePlaces({place});
    }
    return loops + (loops.empty() ? "" : "; ") + "included at " + places +
           moreThan(first.size(), count);
}

std::string NameList::formatText() const {
    std::vector<std::vector<std::string>> rows;
    for (const Entry& entry : entries_) {
        rows.push_back({std::string(entry.name), kindName(entry.kind), describePlaces(entry.places),
                        describeSurroundings(entry)});
    }
    return formatColumns(rows);
}

std::string NameList::formatJson() const {
    JsonWriter json;
    json.beginObject();
    json.name("names");
    json.beginArray();
    for (const Entry& entry : entries_) {
        writeEntry(json, entry);
    }
    json.endArray();
    json.endObject();
    return json.take();
}

void NameList::writeEntry(JsonWriter& json, const Entry& entry) const {
    const auto loops = innermostLoops(entry);
    const auto& [inclusions, inclusionCount] = inclusionsOf(entry);
    json.beginObject();
    json.member("name", entry.name);
    json.member("kind", kindName(entry.kind));
    json.name("loops");
    json.beginArray();
    for (const Loops* loop : loops) {
        json.beginObject();
        json.member("variable", shorten(loop->variable));
        json.member("list", shorten(loop->list));
        json.endObject();
    }
    json.endArray();
    json.member("moreLoops", loops_[entry.loops].count - loops.size());
    writePlaces(json, "places", entry.places);
    writePlaces(json, "includedAt", inclusions);
    json.member("moreInclusions", inclusionCount - inclusions.size());
    json.endObject();
}

} // namespace kel::Stencilor::Analysis
