#include <libStencilorAnalysis/check/TextCheck.h>
#include <libStencilorAnalysis/text/CodePoint.h>

#include <algorithm>
#include <string_view>

namespace kel::Stencilor::Analysis {

namespace {

/// The number of bytes that are examined to detect the encoding.
constexpr std::size_t inspected = 256;

/// True for a byte-order mark of UTF-16, or if every other byte is NUL, as in ASCII text.
bool looksLikeUtf16(std::string_view text) {
    const std::string_view begin = text.substr(0, inspected);
    if (begin.starts_with("\xFF\xFE") || begin.starts_with("\xFE\xFF")) {
        return true;
    }
    std::size_t zeros[2] = {};
    for (std::size_t i = 0; i < begin.size(); ++i) {
        zeros[i % 2] += begin[i] == '\0' ? 1u : 0u;
    }
    const auto [few, many] = std::minmax(zeros[0], zeros[1]);
    return begin.size() >= 4 && few == 0 && many * 5 >= begin.size() * 2;
}

/// The offset of the first malformed bytes, or the size of the text.
std::size_t findMalformed(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const CodePoint point = firstCodePoint(text.substr(at));
        if (point.value == replacement && text.substr(at, point.size) != "\uFFFD") {
            return at;
        }
        at += point.size;
    }
    return text.size();
}

} // namespace

void checkText(const TemplateFile& file, std::vector<Finding>& findings) {
    const std::string_view text = file.text();
    const auto add = [&](std::size_t at, std::size_t size, const char* message) {
        const auto begin = static_cast<unsigned int>(at);
        const auto end = static_cast<unsigned int>(at + size);
        findings.push_back(
            {.rule = Rule::DamagedText, .place = {&file, {begin, end}}, .message = message});
    };
    if (!isDamaged(text)) {
        return;
    }
    if (looksLikeUtf16(text)) {
        add(0, 0, "the file looks like UTF-16; templates are UTF-8");
        return;
    }
    if (text.starts_with("\xEF\xBB\xBF")) {
        add(0, 0, "the file begins with a byte-order mark, which is written to the output");
    }
    const std::size_t end = text.find('\0');
    if (end != text.npos) {
        add(end, 1, "a NUL byte: the template ends here, and what follows is ignored");
    }
    const std::string_view read = text.substr(0, end);
    if (const std::size_t malformed = findMalformed(read); malformed < read.size()) {
        add(malformed, firstCodePoint(read.substr(malformed)).size,
            "malformed UTF-8, which becomes U+FFFD in the output");
    }
}

bool isDamaged(std::string_view text) {
    return text.find('\0') != text.npos || text.starts_with("\xEF\xBB\xBF") ||
           findMalformed(text) < text.size();
}

} // namespace kel::Stencilor::Analysis
