#include "ReadingComparison.h"

#include "../Test.h"
#include "SecondReading.h"
#include "SyntaxReport.h"
#include "SyntaxTree.h"

#include <libStencilor/template/parse_template.h>

namespace support {

namespace {

using namespace kel::Stencilor::internal;

struct Readings {
    explicit Readings(const std::string& input)
        : accepted(parseTemplate(kel::String(input.data(), static_cast<unsigned int>(input.size())),
                                 parsed.nodes)),
          acceptedOnceMore(readOnceMore(input.c_str(), read.nodes)) {}

    bool agree() const {
        return accepted == acceptedOnceMore && describe(parsed.nodes) == describe(read.nodes);
    }

    syntax_tree parsed;
    syntax_tree read;
    bool accepted;
    bool acceptedOnceMore;
};

} // namespace

bool readsTheSame(const std::string& input) {
    return Readings(input).agree();
}

void expectTheSameReading(const std::string& input) {
    const Readings readings(input);
    EXPECT_TRUE(readings.agree()) << "[" << input << "] is "
                                  << (readings.accepted ? "accepted" : "rejected")
                                  << " by the parser:\n"
                                  << describe(readings.parsed.nodes) << "\nand "
                                  << (readings.acceptedOnceMore ? "accepted" : "rejected")
                                  << " by the second reading:\n"
                                  << describe(readings.read.nodes);
    // Only some of the longer ones, by length, because this takes longer than everything else.
    if (input.size() <= 24 || input.size() % 8 == 0) {
        EXPECT_EQ(findMistakeInReport(input), "") << "[" << input << "]";
    }
}

} // namespace support
