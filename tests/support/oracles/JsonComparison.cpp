#include "JsonComparison.h"

#include <libStencilorJson/JsonText.h>
#include <libStencilorJson/json_grammar.h>

#include <nlohmann/json.hpp>

#include <set>
#include <vector>

namespace support {

namespace {

using Json = nlohmann::json;
using kel::Stencilor::JsonError;
using kel::Stencilor::internal::JsonGrammar;
using kel::Stencilor::internal::JsonRange;
using kel::Stencilor::internal::JsonReceiver;

/// A sequence of values and names. Their sizes make it unambiguous.
class Events {
  public:
    void add(std::string_view kind, std::string_view text = "") {
        text_.append(kind).append(" ").append(std::to_string(text.size())).append(":");
        text_.append(text) += '\n';
    }
    const std::string& text() const { return text_; }

  private:
    std::string text_;
};

/// Records what the reader reports, and the first wrong range.
class Reader final : public JsonReceiver {
  public:
    explicit Reader(std::string_view text) : text_(text) {}

    void null(JsonRange range) override {
        events.add("null");
        expect(written(range) == "null", range);
    }
    void boolean(bool value, JsonRange range) override {
        events.add(value ? "true" : "false");
        expect(written(range) == (value ? "true" : "false"), range);
    }
    void number(std::string_view number, JsonRange range) override {
        events.add("number", number == "-0" ? "0" : number); // as an integer, it has no sign
        expect(written(range) == number, range);
    }
    void string(std::string_view text, JsonRange range) override {
        events.add("string", text);
        expectString(text, range);
    }
    void beginArray(std::size_t offset) override { begin("[", offset); }
    void endArray(JsonRange range) override { end("]", range); }
    void beginObject(std::size_t offset) override { begin("{", offset); }
    void name(std::string_view name, JsonRange range) override {
        events.add("name", name);
        expectString(name, range);
    }
    void endObject(JsonRange range) override { end("}", range); }

    Events events;
    std::string misplaced;

  private:
    std::string_view written(JsonRange range) const {
        return text_.substr(range.begin, range.end - range.begin);
    }
    void expect(bool holds, JsonRange range) {
        if (!holds) {
            misplaced = "not the range of what is reported: " + std::string(written(range));
        }
    }
    void expectString(std::string_view text, JsonRange range) {
        expect(Json::parse(written(range), nullptr, false) == std::string(text), range);
    }
    void begin(std::string_view bracket, std::size_t offset) {
        events.add(bracket);
        expect(text_.substr(offset, 1) == bracket, {offset, offset + 1});
        open_.push_back(offset);
    }
    void end(std::string_view bracket, JsonRange range) {
        events.add(bracket);
        expect(range.begin == open_.back() && written(range).ends_with(bracket), range);
        open_.pop_back();
    }

    std::string_view text_;
    std::vector<std::size_t> open_;
};

/// Records what nlohmann-json reports, up to what only the reader rejects.
class Peer final : public nlohmann::json_sax<Json> {
  public:
    bool null() override { return add("null"); }
    bool boolean(bool value) override { return add(value ? "true" : "false"); }
    bool number_integer(std::int64_t value) override { return addNumber(std::to_string(value)); }
    bool number_unsigned(std::uint64_t value) override { return addNumber(std::to_string(value)); }
    bool number_float(double, const std::string& written) override { return addNumber(written); }
    bool string(std::string& text) override { return add("string", text); }
    bool binary(Json::binary_t&) override { return false; }
    bool start_object(std::size_t) override { return open("{"); }
    bool key(std::string& name) override {
        refused = !names_.back().insert(name).second;
        return !refused && add("name", name);
    }
    bool end_object() override { return close("}"); }
    bool start_array(std::size_t) override { return open("["); }
    bool end_array() override { return close("]"); }
    bool parse_error(std::size_t, const std::string&, const Json::exception& error) override {
        constexpr int outOfRange = 406;
        isNumberTooLarge = error.id == outOfRange;
        return false;
    }

    Events events;
    bool refused = false;          // only by the reader
    bool isNumberTooLarge = false; // only for this parser

  private:
    bool add(std::string_view kind, std::string_view text = "") {
        events.add(kind, text);
        return true;
    }
    bool addNumber(std::string_view number) { return add("number", number); }
    bool open(std::string_view bracket) {
        refused = names_.size() == kel::Stencilor::Value::deepest;
        names_.emplace_back();
        return !refused && add(bracket);
    }
    bool close(std::string_view bracket) {
        names_.pop_back();
        return add(bracket);
    }

    std::vector<std::set<std::string>> names_;
};

bool reads(std::string_view text, Reader& reader) {
    try {
        JsonGrammar(text, reader).read();
        return true;
    } catch (const JsonError&) {
        return false;
    }
}

} // namespace

JsonComparison compareJsonReaders(std::string_view text) {
    Reader reader(text);
    const bool accepted = reads(text, reader);
    Peer peer;
    const bool acceptedByPeer = Json::sax_parse(text.begin(), text.end(), &peer);
    const bool hasNul = text.find('\0') != std::string_view::npos;

    const std::string& events = reader.events.text();
    const std::string& peersEvents = peer.events.text();
    const bool acceptedByBoth = acceptedByPeer && !peer.refused && !hasNul;
    if (!reader.misplaced.empty()) {
        return {accepted, reader.misplaced};
    }
    if (accepted != acceptedByBoth && !peer.isNumberTooLarge) {
        return {accepted, accepted ? "accepted only by the reader" : "refused only by the reader"};
    }
    // If one of them stops, either may have found the error first.
    const bool agree = acceptedByBoth
                           ? events == peersEvents
                           : events.starts_with(peersEvents) || peersEvents.starts_with(events);
    return {accepted, agree ? "" : events + "differs from\n" + peersEvents};
}

} // namespace support
