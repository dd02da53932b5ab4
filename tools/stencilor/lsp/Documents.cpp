#include <tools/stencilor/lsp/Documents.h>
#include <tools/stencilor/lsp/ResponseError.h>
#include <tools/stencilor/system/System.h>

#include <algorithm>
#include <utility>

namespace stencilor::lsp {

using kel::Stencilor::SyntaxRange;
using kel::Stencilor::Analysis::TemplateFile;

namespace {

/// The engine reads templates of up to 4 GiB, but nobody edits files that large.
constexpr std::size_t longestDocument = std::size_t{256} << 20;

void applyChange(IndexedText& text, const Json& change) {
    const std::string& inserted = change.at("text").get_ref<const std::string&>();
    SyntaxRange range{0, static_cast<unsigned int>(text.text().size())};
    if (const auto given = change.find("range"); given != change.end()) {
        range = rangeFrom(text, *given);
    }
    if (text.text().size() - (range.end - range.begin) + inserted.size() > longestDocument) {
        throw ResponseError(ErrorCode::RequestFailed, "the text is too long to be edited");
    }
    text.replace(range.begin, range.end, inserted);
}

} // namespace

const TemplateFile& Document::syntax() const {
    return *sharedSyntax();
}

std::shared_ptr<const TemplateFile> Document::sharedSyntax() const {
    if (parsed == nullptr) {
        parsed = std::make_shared<const TemplateFile>(name, text.text());
    }
    return parsed;
}

Json Document::rangeOf(SyntaxRange range) const {
    return rangeIn(text, range);
}

void Document::append(std::string& json, SyntaxRange range) const {
    json += "{\"start\":";
    lsp::append(json, text.positionOf(range.begin));
    json += ",\"end\":";
    lsp::append(json, text.positionOf(range.end));
    json += '}';
}

Document& Documents::open(const Json& item) {
    const std::string& uri = item.at("uri").get_ref<const std::string&>();
    auto document =
        std::make_unique<Document>(encoding_, item.at("text").get_ref<const std::string&>());
    document->uri = uri;
    document->languageId = item.value("languageId", "");
    document->version = item.value("version", std::int64_t{0});
    const auto path = system::pathOfUri(uri);
    document->isFile = path.has_value();
    document->name = path ? system::identityOf(*path) : uri;
    if (const auto old = byUri_.find(uri); old != byUri_.end()) {
        byName_.erase(old->second->name);
        byUri_.erase(uri);
    }
    if (const auto same = byName_.find(document->name); same != byName_.end()) {
        byUri_.erase(same->second->uri); // the same file by another path
    }
    Document& opened = *document;
    byName_[opened.name] = std::move(document);
    byUri_[uri] = &opened;
    return opened;
}

Document& Documents::change(const Json& params) {
    Document& document = of(params);
    document.parsed = nullptr;
    for (const Json& change : params.at("contentChanges")) {
        applyChange(document.text, change);
    }
    document.version = params.at("textDocument").value("version", document.version + 1);
    return document;
}

std::string Documents::close(const Json& params) {
    const std::string uri = of(params).uri;
    const std::string name = byUri_.at(uri)->name;
    byUri_.erase(uri);
    byName_.erase(name);
    return name;
}

Document& Documents::of(const Json& params) {
    const std::string& uri = params.at("textDocument").at("uri").get_ref<const std::string&>();
    const auto found = byUri_.find(uri);
    if (found == byUri_.end()) {
        throw ResponseError(ErrorCode::InvalidParams, "this document is not open: " + uri);
    }
    return *found->second;
}

const Document* Documents::find(const std::string& name) const {
    const auto found = byName_.find(name);
    return found == byName_.end() ? nullptr : found->second.get();
}

Json rangeIn(const IndexedText& text, SyntaxRange range) {
    Json json = Json::object();
    json["start"] = toJson(text.positionOf(range.begin));
    json["end"] = toJson(text.positionOf(range.end));
    return json;
}

SyntaxRange rangeFrom(const IndexedText& text, const Json& range) {
    const auto start = static_cast<unsigned int>(text.offsetOf(positionFrom(range.at("start"))));
    const auto end = static_cast<unsigned int>(text.offsetOf(positionFrom(range.at("end"))));
    return {std::min(start, end), std::max(start, end)};
}

} // namespace stencilor::lsp
