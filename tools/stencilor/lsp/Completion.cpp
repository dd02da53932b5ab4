#include <libStencilor/context/context_access.h>
#include <libStencilorAnalysis/editor/Blocks.h>
#include <libStencilorAnalysis/editor/Names.h>
#include <libStencilorAnalysis/editor/TypedPart.h>
#include <tools/stencilor/lsp/Place.h>
#include <tools/stencilor/lsp/Requests.h>

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <utility>

// Completion: what can be typed next.

namespace stencilor::lsp {

using namespace kel::Stencilor;
using namespace kel::Stencilor::Analysis;

namespace {

/// The maximum number of items; if there are more, only those that begin with the typed text.
constexpr std::size_t mostItems = 500;

/// Kinds of items.
constexpr int itemOfVariable = 6;
constexpr int itemOfKeyword = 14;
constexpr int itemOfFile = 17;
constexpr int itemOfFolder = 19;

/// The items for one position, each label once. Editors sort them as they were added: the innermost
/// names and the likeliest tags come first.
class ItemList {
  public:
    ItemList(const Place& place, const TypedPart& typed)
        : range_(place.document.rangeOf(typed.word)),
          typed_(place.file.slice({typed.word.begin, static_cast<unsigned int>(place.offset)})) {}

    void add(const std::string& label, int kind, const std::string& detail, const std::string& text,
             bool isSnippet = false) {
        if ((items_.size() >= mostItems && !label.starts_with(typed_)) ||
            items_.size() >= 2 * mostItems) {
            isIncomplete_ = true;
            return;
        }
        if (!labels_.insert(label).second) {
            return;
        }
        Json item = {{"label", label},
                     {"kind", kind},
                     {"sortText", std::to_string(2 * mostItems + items_.size())},
                     {"textEdit", {{"range", range_}, {"newText", text}}}};
        if (!detail.empty()) {
            item["detail"] = detail;
        }
        if (isSnippet) {
            item["insertTextFormat"] = 2;
        }
        items_.push_back(std::move(item));
    }

    bool has(const std::string& label) const { return labels_.contains(label); }

    Json take() { return {{"isIncomplete", isIncomplete_}, {"items", std::move(items_)}}; }

  private:
    Json range_;
    std::string typed_;
    std::set<std::string> labels_;
    Json items_ = Json::array();
    bool isIncomplete_ = false;
};

struct Keyword {
    const char* word;
    const char* rest;    ///< the text after it in a tag
    const char* snippet; ///< the whole block, from the word on
};

constexpr Keyword openers[] = {
    {"if", " ", "if ${1:name} %}$0{% endif %}"},
    {"for", " ", "for ${1:item} in ${2:list} %}$0{% endfor %}"},
    {"include", " ", "include \"${1:path}\" %}$0"},
};

/// A closing tag is offered with its delimiter, if that is missing.
void addCloser(const std::string& word, const TypedPart& typed, ItemList& items) {
    items.add(word, itemOfKeyword, "{% " + word + " %}", word + (typed.isClosed ? "" : " %}"));
}

void completeKeyword(Session& session, const Place& place, const TypedPart& typed,
                     ItemList& items) {
    // The tag may already count as the end of the block that it will close.
    const std::size_t tag = place.file.text().rfind("{%", typed.word.begin);
    const std::vector<std::size_t> open = blocksAround(place.file, tag);
    if (!open.empty()) {
        const bool isLoop = place.file.parts()[open.back()].kind == SyntaxElement::Kind::For;
        addCloser(isLoop ? "endfor" : "endif", typed, items);
        if (!isLoop && !isAfterElse(place.file, open.back(), tag)) {
            addCloser("else", typed, items);
        }
    }
    const bool asSnippet = session.client.takesSnippets && !typed.isClosed;
    for (const Keyword& keyword : openers) {
        items.add(keyword.word, itemOfKeyword, "",
                  asSnippet ? keyword.snippet : keyword.word + std::string(keyword.rest),
                  asSnippet);
    }
}

bool isWanted(TypedPart::Kind kind, const ContextBase& value) {
    switch (kind) {
    case TypedPart::Kind::Condition:
        return dynamic_cast<const ContextBoolean*>(&value) != nullptr;
    case TypedPart::Kind::List:
        return dynamic_cast<const ContextIterable*>(&value) != nullptr;
    default:
        return dynamic_cast<const ContextString*>(&value) != nullptr;
    }
}

const char* kindOf(TypedPart::Kind kind) {
    switch (kind) {
    case TypedPart::Kind::Condition:
        return "boolean";
    case TypedPart::Kind::List:
        return "list";
    default:
        return "string";
    }
}

/// The variable of the loop whose element is a scope, if the loop is in the same file.
std::string_view variableOf(const PlaceScope& scope, const TemplateFile& file) {
    if (scope.file != &file || file.parts()[scope.tag].kind != SyntaxElement::Kind::For) {
        return "";
    }
    return file.slice(file.parts()[scope.tag].name);
}

/// The names of values of the wanted kind; names of an element are members of the variable.
void addNames(const Moment& moment, const Place& place, TypedPart::Kind kind, ItemList& items) {
    for (auto scope = moment.scopes.rbegin(); scope != moment.scopes.rend(); ++scope) {
        const std::string_view variable = variableOf(*scope, place.file);
        for (const auto& [key, value] : internal::context_access::children(*scope->value)) {
            if (value == nullptr || !isWanted(kind, *value) || !isName(key.view())) {
                continue;
            }
            const std::string prefix = variable.empty() ? "" : std::string(variable) + ".";
            const std::string name = prefix + key.str();
            if (items.has(name)) {
                continue;
            }
            if (const auto found = moment.find(name); found && found->value == value) {
                items.add(name, itemOfVariable, kindOf(kind), name);
            }
        }
    }
}

/// Without a context: the names in other tags with the same loops around them.
void addUsedNames(const Place& place, TypedPart::Kind kind, ItemList& items) {
    const TemplateFile& file = place.file;
    const std::vector<std::size_t> open = blocksAround(file, place.offset);
    for (const std::size_t tag : open) {
        const std::string_view variable = file.slice(file.parts()[tag].name);
        if (file.parts()[tag].kind == SyntaxElement::Kind::For && !variable.empty()) {
            const std::string prefix = std::string(variable) + ".";
            items.add(prefix, itemOfVariable, "member of an element", prefix);
        }
    }
    for (std::size_t i = 0; i < file.parts().size(); ++i) {
        const NameUse use = nameOf(file, i);
        const bool isTyped = use.name.begin <= place.offset && place.offset <= use.name.end;
        if (use.name.isEmpty() || isTyped || std::string(kindName(use.kind)) != kindOf(kind)) {
            continue;
        }
        const std::size_t loop = findLoopOf(file, i);
        if (loop == TemplateFile::none || std::find(open.begin(), open.end(), loop) != open.end()) {
            const std::string name(use.text());
            items.add(name, itemOfVariable, kindOf(kind), name);
        }
    }
}

void completeName(Session& session, const Place& place, const TypedPart& typed, ItemList& items) {
    const KnownNames known = findNamesAt(session, place);
    for (const Moment& moment : known.moments) {
        addNames(moment, place, typed.kind, items);
    }
    if (known.context == nullptr) {
        addUsedNames(place, typed.kind, items);
    }
}

/// The files and folders that can complete a path; none outside the root.
void completePath(Session& session, const Place& place, const TypedPart& typed, ItemList& items) {
    const std::string_view word = place.file.slice(typed.word);
    const std::size_t before = std::min<std::size_t>(place.offset - typed.word.begin, word.size());
    const std::size_t slash = word.substr(0, before).rfind('/');
    const std::string folder(slash == word.npos ? "" : word.substr(0, slash + 1));
    const std::string root = session.checks.rootOf(place.document);
    const std::string full = system::identityOf(joinPath(root, folder));
    if (!isInside(full, system::identityOf(root))) {
        return;
    }
    for (const std::string& name : system::namesIn(full)) {
        const std::string path = folder + name;
        if (isName(path)) {
            const bool isFolder = path.ends_with('/');
            items.add(path, isFolder ? itemOfFolder : itemOfFile, "",
                      path + (isFolder || typed.isQuoted ? ""
                              : typed.isClosed           ? "\""
                                                         : "\" %}"));
        }
    }
}

} // namespace

Json completion(Session& session, const Json& params) {
    const Document& document = session.documents.of(params);
    const std::size_t offset = document.text.offsetOf(positionFrom(params.at("position")));
    const TypedPart typed = findTypedPart(document.text.text(), offset);
    if (typed.kind == TypedPart::Kind::None || typed.kind == TypedPart::Kind::Variable) {
        return {{"isIncomplete", false}, {"items", Json::array()}};
    }
    const Place place{document, document.syntax(), offset};
    ItemList items(place, typed);
    switch (typed.kind) {
    case TypedPart::Kind::Keyword:
        completeKeyword(session, place, typed, items);
        break;
    case TypedPart::Kind::In:
        items.add("in", itemOfKeyword, "", "in ");
        break;
    case TypedPart::Kind::Path:
        completePath(session, place, typed, items);
        break;
    default:
        completeName(session, place, typed, items);
    }
    return items.take();
}

} // namespace stencilor::lsp
