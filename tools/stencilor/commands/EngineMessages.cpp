#include <libStencilorAnalysis/text/ShownText.h>
#include <tools/stencilor/commands/EngineMessages.h>

#include <algorithm>
#include <iterator>

namespace stencilor {

namespace {

constexpr std::string_view rejection =
    "Could not build formatted output: Failed to parse input correctly.";

/// How the messages begin. The names and paths in them hold no spaces, so that none of these occurs
/// inside a message.
constexpr std::string_view beginnings[] = {
    "Could not find expected ", "The replacement is not of type String for ",
    "Expected named ",          "Could not include file ",
    "Could not load file ",     rejection,
};

/// Where the message that begins `text` ends.
std::size_t findMessageEnd(std::string_view text) {
    for (std::size_t end = 1; end < text.size(); ++end) {
        const std::string_view rest = text.substr(end);
        if (rest.front() == '\n' || std::any_of(std::begin(beginnings), std::end(beginnings),
                                                [rest](std::string_view beginning) {
                                                    return rest.starts_with(beginning);
                                                })) {
            return end;
        }
    }
    return text.size();
}

} // namespace

std::vector<std::string_view> splitMessages(std::string_view text) {
    std::vector<std::string_view> messages;
    while (!text.empty()) {
        const std::size_t end = findMessageEnd(text);
        messages.push_back(text.substr(0, end));
        text.remove_prefix(end);
        if (text.starts_with('\n')) {
            text.remove_prefix(1);
        }
    }
    return messages;
}

std::string shortenQuotation(std::string_view message) {
    const std::size_t quotation = message.find('"');
    if (quotation == message.npos) {
        return std::string(message);
    }
    const std::string_view start = message.substr(0, quotation);
    const std::string_view quoted = message.substr(quotation + 1);
    const std::size_t end = quoted.find('"'); // a missing boolean's name ends with the message
    return std::string(start) + "\"" + kel::Stencilor::Analysis::shorten(quoted.substr(0, end)) +
           std::string(end == quoted.npos ? "" : quoted.substr(end));
}

bool isRejection(std::string_view text) {
    return text == rejection;
}

} // namespace stencilor
