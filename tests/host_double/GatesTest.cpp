#include "../support/Test.h"
#include "HostDouble.h"

#include <libStencilor/Stencilor.h>

namespace kel::Stencilor {
namespace {

using testing::ElementsAre;

class Gates : public testing::Test {
  protected:
    Gates() { host_.reset(); }

    std::vector<std::string> callsOf(const char* input) {
        String errors;
        buildOutput(input, ContextBase(), errors);
        return host_.takeCalls();
    }

    HostDouble& host_ = HostDouble::instance();
};

/// What the gates query and pass while "{{ x }}" is rendered without an `x`. The first one that
/// needs the logger creates it.
class ExpectedCalls {
  public:
    ExpectedCalls(std::int32_t global, std::int32_t threshold, std::int32_t effective)
        : global_(global), threshold_(threshold), effective_(effective) {}

    std::vector<std::string> ofOneRendering() {
        calls_.clear();
        trace("> buildOutput:408");
        trace("> content_visit::replace_expr:184");
        calls_.emplace_back("< content_visit::replace_expr");
        message();
        calls_.emplace_back("< buildOutput");
        return calls_;
    }

  private:
    bool loggerAtPriority(std::int32_t bound) {
        calls_.emplace_back("getPriority");
        if (global_ > bound) {
            return false;
        }
        if (!made_) {
            calls_.emplace_back("createLogger libStencilor");
            made_ = true;
        }
        return threshold_ <= bound;
    }

    void trace(const std::string& scope) {
        const bool passes = loggerAtPriority(1);
        calls_.push_back(passes ? scope : scope + " null");
    }

    void message() {
        if (!loggerAtPriority(2)) {
            return;
        }
        calls_.emplace_back("resolvePriority");
        if (effective_ <= 2) {
            calls_.insert(calls_.end(),
                          {"stream", "+ narrow 437 ", "+ narrow Errors: ",
                           "+ string Could not find expected replacement named \"x\"\n", "log 2",
                           "~stream"});
        }
    }

    std::int32_t global_;
    std::int32_t threshold_;
    std::int32_t effective_;
    bool made_ = false;
    std::vector<std::string> calls_;
};

TEST_F(Gates, RequestNothingUnneededForAnyPriorities) {
    for (std::int32_t global = -1; global <= 4; ++global) {
        for (std::int32_t threshold = -1; threshold <= 4; ++threshold) {
            for (std::int32_t effective = 0; effective <= 4; ++effective) {
                SCOPED_TRACE(std::to_string(global) + ", " + std::to_string(threshold) + " and " +
                             std::to_string(effective));
                host_.takeLoggersBack();
                host_.globalPriority = global;
                host_.logger.threshold = threshold;
                host_.resolvedPriority = effective;
                ExpectedCalls expected(global, threshold, effective);
                EXPECT_EQ(callsOf("{{ x }}"), expected.ofOneRendering());
                EXPECT_EQ(callsOf("{{ x }}"), expected.ofOneRendering()) << "the second time";
            }
        }
    }
}

TEST_F(Gates, NameOneSourceFileForAllScopes) {
    host_.files["file"] = "text";
    callsOf("{% if x %}{% endif %}{% for x in y %}{% endfor %}{{ x }}{% include \"file\" %}text");
    EXPECT_THAT(host_.sourcePaths, ElementsAre("libStencilor/render/content_visit.cpp"));
}

TEST_F(Gates, OfTheMessageAreNotTestedWithoutOneAndForARejectedTemplate) {
    host_.globalPriority = 2;
    EXPECT_THAT(callsOf("x"), ElementsAre("getPriority", "> buildOutput:408 null", "getPriority",
                                          "> content_visit::string:120 null",
                                          "< content_visit::string", "< buildOutput"));
    EXPECT_THAT(callsOf("{{"),
                ElementsAre("getPriority", "> buildOutput:408 null", "< buildOutput"));
}

} // namespace
} // namespace kel::Stencilor
