#include <libStencilorAnalysis/check/EmptyLines.h>

namespace kel::Stencilor::Analysis {

namespace {

using Kind = SyntaxElement::Kind;

bool isOfBlock(const SyntaxElement& part) {
    return part.kind != Kind::Text && part.kind != Kind::Substitution && part.kind != Kind::Include;
}

bool isSpace(char byte) {
    return byte == ' ' || byte == '\t' || byte == '\r';
}

/// What has been seen of a line.
struct LineState {
    const SyntaxElement* tag = nullptr; // the first one of a block
    unsigned int tagsEnd = 0;
    bool isWritten = false; // something other than spaces
};

} // namespace

void findEmptyLines(const TemplateFile& file, std::vector<Finding>& findings) {
    const std::string& text = file.text();
    LineState line;
    unsigned int at = 0; // the end of the text that was examined
    const auto lookAtText = [&](unsigned int end) {
        for (; at < end; ++at) {
            if (text[at] != '\n') {
                line.isWritten |= !isSpace(text[at]);
                continue;
            }
            if (line.tag != nullptr && !line.isWritten) {
                findings.push_back(
                    {.rule = Rule::EmptyLine,
                     .place = {&file, {line.tag->whole.begin, line.tagsEnd}},
                     .message = "this line is empty in the output: its tags are removed, but "
                                "its line break is not"});
            }
            line = {};
        }
    };
    for (const SyntaxElement& part : file.parts()) {
        lookAtText(part.kind == Kind::Text ? part.whole.end : part.whole.begin);
        if (isOfBlock(part)) {
            line.tag = line.tag != nullptr ? line.tag : &part;
            line.tagsEnd = part.whole.end;
        } else if (part.kind != Kind::Text) {
            line.isWritten = true;
        }
        at = part.whole.end;
    }
}

} // namespace kel::Stencilor::Analysis
