#include "../support/Context.h"
#include "../support/Environment.h"
#include "../support/LogRecorder.h"
#include "../support/Memory.h"
#include "../support/SmallStackThread.h"
#include "../support/Test.h"

#include <libStencilor/Template.h>

#include <cerrno>
#include <ctime>
#include <iomanip>

// Everything here runs in a thread with a stack of 256 KiB, because nesting must not use the call
// stack. STENCILOR_SIZE is the size of all in percent; the preset "exhaustive" has 100.

namespace support {
namespace {

std::string repeated(const std::string& piece, std::size_t count) {
    std::string result;
    result.reserve(piece.size() * count);
    for (std::size_t number = 0; number < count; ++number) {
        result += piece;
    }
    return result;
}

struct Cost {
    double seconds = 0;
    double megabytes = 0;
};

/// The processor time of this program, which other programs hardly affect.
double processorSeconds() {
    timespec time = {};
    if (::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time) != 0) {
        throw std::system_error(errno, std::generic_category());
    }
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

/// Measures the cost of `work` on a small stack.
Cost costOf(const std::function<void()>& work) {
    resetPeakMemory();
    const std::uint64_t before = peakMemory();
    const double start = processorSeconds();
    runWithStack(256 * 1024, work);
    return {processorSeconds() - start, static_cast<double>(peakMemory() - before) / (1024 * 1024)};
}

class Size : public testing::Test {
  protected:
    /// Calls `work` with a quarter, half and all of `largest`, and prints the costs.
    std::array<Cost, 3> costsOf(const char* what, std::size_t largest,
                                const std::function<void(std::size_t)>& work) const {
        const std::size_t full = largest * percent_ / 100;
        std::array<Cost, 3> costs;
        for (std::size_t step = 0; step < costs.size(); ++step) {
            const std::size_t size = (full / 4) << step;
            costs[step] = costOf([&] { work(size); });
            std::cout << std::fixed << std::setprecision(2) << std::setw(11) << size << ' ' << what
                      << ": " << costs[step].seconds << " s, " << std::setprecision(0)
                      << costs[step].megabytes << " MiB\n";
        }
        return costs;
    }

    /// Four times the size may take ten times as long, because it exceeds the caches, and six times
    /// the memory, because blocks double. Quadratic growth would be sixteen times as much.
    void expectLinearGrowth(const char* what, std::size_t largest,
                            const std::function<void(std::size_t)>& work) const {
        const std::array<Cost, 3> costs = costsOf(what, largest, work);
        EXPECT_LE(costs[2].seconds, costs[0].seconds * 10 + 0.2);
        EXPECT_LE(costs[2].megabytes, costs[0].megabytes * 6 + 4);
    }

  private:
    std::size_t percent_ = numberFromEnvironment("STENCILOR_SIZE", 2);
};

const Rendered rejected = {"",
                           "Could not build formatted output: Failed to parse input correctly."};

TEST_F(Size, OfNestedBlocks) {
    const Root root({{"yes", truth(true, {{"inner", text("of yes")}})},
                     {"one", list({dictionary({{"name", text("element")}})})}});
    expectLinearGrowth("nested blocks", 1000000, [&root](std::size_t size) {
        const std::string opening = repeated("{% if yes %}{% for x in one %}", size / 2);
        const std::string closing = repeated("{% endfor %}{% endif %}", size / 2);
        EXPECT_EQ(render(opening + "{{ x.name }} {{ inner }}" + closing, root),
                  (Rendered{"element of yes", ""}));
        EXPECT_EQ(render(opening + "{{ }}" + closing, root), rejected);
        EXPECT_EQ(render("{% if missing %}" + opening + closing + "{% endif %}", root),
                  (Rendered{"", "Could not find expected boolean named \"missing\n"}));
    });
}

TEST_F(Size, OfNestedBlocksThatAreTraced) {
    const Root root({{"yes", truth(true)}});
    expectLinearGrowth("nested blocks, traced", 1000000, [&root](std::size_t size) {
        const LogRecorder recorder(kel::LoggerPriority::PRIORITY_TRACE); // restores the settings
        std::size_t records = 0;
        std::size_t deepest = 0;
        kel::LogFactory::setSink([&](const kel::LogRecord& record) {
            ++records;
            deepest = std::max<std::size_t>(deepest, record.depth);
        });
        const std::string input =
            repeated("{% if yes %}", size) + "deep" + repeated("{% endif %}", size);
        EXPECT_EQ(render(input, root), (Rendered{"deep", ""}));
        // The entry point, a block and its list at each level, and the text: entered and left.
        EXPECT_EQ(records, 2 * (1 + 2 * size + 1));
        EXPECT_EQ(deepest, 1 + 2 * size);
    });
}

TEST_F(Size, OfNestedElseParts) {
    const Root root({{"no", truth(false)}});
    expectLinearGrowth("nested else parts", 1000000, [&root](std::size_t size) {
        const std::string input =
            repeated("{% if no %}a{% else %}", size) + "deep" + repeated("{% endif %}", size);
        EXPECT_EQ(render(input, root), (Rendered{"deep", ""}));
    });
}

TEST_F(Size, OfBlocksThatAreNeverClosed) {
    const Root root;
    expectLinearGrowth("blocks never closed", 1000000, [&root](std::size_t size) {
        EXPECT_EQ(render(repeated("{% if yes %}{% for x in one %}", size / 2), root), rejected);
    });
}

TEST_F(Size, OfBlocksThatAreClosedWrongly) {
    const Root root;
    expectLinearGrowth("blocks closed wrongly", 1000000, [&root](std::size_t size) {
        const std::string input = repeated("{% if yes %}", size - 1) + "{% for x in one %}" +
                                  repeated("{% endif %}", size);
        EXPECT_EQ(render(input, root), rejected);
    });
}

TEST_F(Size, OfOneLine) {
    const Root root;
    expectLinearGrowth("bytes in a line", 256 << 20, [&root](std::size_t size) {
        const std::string line(size, 'x');
        EXPECT_TRUE(render(line, root) == (Rendered{line, ""})); // too long to be printed
    });
}

TEST_F(Size, OfManyTags) {
    const Root root({{"name", text("value")}});
    expectLinearGrowth("tags", 1000000, [&root](std::size_t size) {
        EXPECT_TRUE(render(repeated("{{ name }} ", size), root) ==
                    (Rendered{repeated("value ", size), ""}));
    });
}

TEST_F(Size, OfALongLoop) {
    expectLinearGrowth("null elements", 10000000, [](std::size_t size) {
        const Root root({{"nulls", listOf(size)}});
        EXPECT_TRUE(render("{% for x in nulls %}x{% endfor %}", root) ==
                    (Rendered{std::string(size, 'x'), ""}));
    });
}

TEST_F(Size, OfManyMessages) {
    const Root root;
    const std::string message = "Could not find expected replacement named \"x\"\n";
    expectLinearGrowth("messages", 100000, [&](std::size_t size) {
        const Rendered rendered = render(repeated("{{ x }}", size), root);
        EXPECT_EQ(rendered.output, "");
        EXPECT_TRUE(rendered.errors == repeated(message, size));
    });
}

// Each name is looked up in all scopes and without each of the variables, so the time is quadratic
// in the depth, but not more.
TEST_F(Size, OfNestedLoopsWithNamesOfTheirOwn) {
    const auto work = [](std::size_t size) {
        Root root({{"name", text("root")}});
        std::string input;
        for (std::size_t level = 0; level < size; ++level) {
            const std::string number = std::to_string(level);
            root.insert("list" + number, list({dictionary({{"own", text(number)}})}));
            input += "{% for x" + number + " in list" + number + " %}{{ name }}";
        }
        EXPECT_TRUE(render(input + repeated("{% endfor %}", size), root) ==
                    (Rendered{repeated("root", size), ""}));
    };
    const std::array<Cost, 3> costs = costsOf("nested loops, all names different", 4000, work);
    EXPECT_LE(costs[2].seconds, costs[0].seconds * 40 + 0.2);
    EXPECT_LE(costs[2].megabytes, costs[0].megabytes * 6 + 4);
}

TEST_F(Size, OfTheNamesOfATemplate) {
    expectLinearGrowth("nested loops and names, parsed", 200000, [](std::size_t size) {
        std::string input;
        for (std::size_t level = 0; level < size; ++level) {
            const std::string number = std::to_string(level);
            input +=
                "{% for x" + number + " in list %}{{ x" + number + ".a }}{{ x.a.b" + number + " }}";
        }
        input += repeated("{% endfor %}", size);
        EXPECT_TRUE(kel::Stencilor::Template(input).isWellFormed());
        EXPECT_FALSE(kel::Stencilor::Template(input + "{{").isWellFormed());
    });
}

} // namespace
} // namespace support
