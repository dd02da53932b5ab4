// Measures this engine alongside two others, and prints its times as parts of the better one's,
// with the target of each.

#include "allocations.h"
#include "engines.h"
#include "rate.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

namespace {

using namespace bench;

constexpr const char* classic = "buildOutput";
constexpr const char* modern = "Template";
constexpr const char* byHandName = "hand";
const std::vector<std::string> peers = {"ctemplate", "mustache"};
const std::vector<std::string> parsedPeers = {"ctemplate, parsed", "mustache, parsed"};

/// One engine at one workload.
struct contender {
    std::string engine;
    renderer call;
};

struct contest {
    workload work;
    std::vector<contender> contenders;
};

contest prepare(workload work) {
    contest made{std::move(work), {}};
    const workload& each = made.work;
    auto& all = made.contenders;
    if (!each.escaped) {
        all.push_back({classic, buildOutputRenderer(each)});
    }
    all.push_back({modern, templateRenderer(each)});
    if (!each.escaped && !each.inFiles) {
        all.push_back({peers[0], ctemplateRenderer(each, parsing::everyCall)});
        all.push_back({peers[1], mustacheRenderer(each, parsing::everyCall)});
    }
    all.push_back({parsedPeers[0], ctemplateRenderer(each, parsing::beforehand)});
    if (!each.inFiles) {
        all.push_back({parsedPeers[1], mustacheRenderer(each, parsing::beforehand)});
    }
    all.push_back({byHandName, each.hand});
    if (each.name == "W2-1000") {
        all.push_back({"renderTo", renderToRenderer(each)});
    }
    return made;
}

/// Renders twice with each engine, and compares the bytes.
void check(const contest& each) {
    std::string expected;
    for (const contender& engine : each.contenders) {
        engine.call.render();
        engine.call.render();
        const std::string output = engine.call.output();
        if (expected.empty()) {
            expected = output;
        }
        if (output.empty() || output != expected) {
            std::fprintf(stderr, "%s: the output of %s is not that of %s\n", each.work.name.c_str(),
                         engine.engine.c_str(), each.contenders.front().engine.c_str());
            std::exit(1);
        }
    }
}

/// Keeps the medians of the time on the processor, which other work on the machine disturbs less
/// than the time on the clock, and prints nothing: the table follows at the end.
class median_reporter : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.aggregate_name == "median") {
                medians_[run.run_name.function_name] = run.GetAdjustedCPUTime();
            }
        }
    }

    /// @return nanoseconds; 0 if it was not measured
    double median(const std::string& work, const std::string& engine) const {
        const auto found = medians_.find(work + "/" + engine);
        return found == medians_.end() ? 0 : found->second;
    }

  private:
    std::map<std::string, double> medians_;
};

void add(const std::string& name, const std::function<std::size_t()>& call) {
    benchmark::RegisterBenchmark(name.c_str(), [call](benchmark::State& state) {
        for (auto _ : state) {
            benchmark::DoNotOptimize(call());
        }
    });
}

/// @return false where an argument is wrong
bool run(std::vector<std::string> arguments, median_reporter& reporter) {
    // The order of the runs is drawn by chance, so that a disturbance of the machine meets all.
    arguments.insert(arguments.begin() + 1,
                     {"--benchmark_enable_random_interleaving=true", "--benchmark_repetitions=7",
                      "--benchmark_min_time=0.05"});
    std::vector<char*> pointers;
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    int count = static_cast<int>(pointers.size());
    benchmark::Initialize(&count, pointers.data());
    if (benchmark::ReportUnrecognizedArguments(count, pointers.data())) {
        return false;
    }
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return true;
}

/// Compares what is printed, so rounded as it is printed.
const char* verdict(double figure, double target, bool atLeast = false) {
    const double difference = std::round(figure * 100) - std::round(target * 100);
    return (atLeast ? difference >= 0 : difference <= 0) ? "reached" : "MISSED";
}

/// The columns of one of our calls: its time, the better rival's, their ratio, and the target.
void printCall(const median_reporter& times, const std::string& work, const char* call,
               std::vector<std::string> rivals, std::optional<double> target) {
    std::erase_if(rivals, [&](const auto& each) { return times.median(work, each) == 0; });
    const double own = times.median(work, call);
    if (own == 0 || rivals.empty()) {
        std::printf(" | %11s | %9s %-9s | %5s | %6s %-7s", "-", "-", "", "-", "-", "");
        return;
    }
    const std::string best = *std::min_element(
        rivals.begin(), rivals.end(), [&](const std::string& left, const std::string& right) {
            return times.median(work, left) < times.median(work, right);
        });
    const double other = times.median(work, best);
    std::printf(" | %11.2f | %9.2f %-9s | %5.2f", own / 1e3, other / 1e3,
                best.substr(0, best.find(',')).c_str(), own / other);
    if (target) {
        std::printf(" | %6.2f %-7s", *target, verdict(own / other, *target));
    } else {
        std::printf(" | %6s %-7s", "-", "");
    }
}

void printTable(const median_reporter& times, const std::vector<contest>& contests) {
    std::printf("\nMicroseconds on the processor: buildOutput and peers that parse in every call; "
                "Template and "
                "peers, parsed beforehand.\n\n");
    std::printf("| %-43s", "workload");
    for (const char* call : {classic, modern}) {
        std::printf(" | %-11s | %-19s | %-5s | %-14s", call, "better peer", "ratio", "target");
    }
    std::printf(" | %-7s |\n|---|---|---|---|---|---|---|---|---|---|\n", byHandName);
    for (const contest& each : contests) {
        const workload& work = each.work;
        const double hand = times.median(work.name, byHandName);
        if (hand == 0) {
            continue;
        }
        std::printf("| %-7s %-35s", work.name.c_str(), work.what.c_str());
        printCall(times, work.name, classic,
                  work.inFiles ? std::vector<std::string>{byHandName} : peers,
                  work.buildOutputTarget);
        printCall(times, work.name, modern, parsedPeers, work.templateTarget);
        std::printf(" | %7.2f |\n", hand / 1e3);
    }
}

void printFigure(const char* what, double figure, double target, bool atLeast = false) {
    std::printf("| %-66s | %6.2f | at %-5s %5.2f %-7s |\n", what, figure,
                atLeast ? "least" : "most", target, verdict(figure, target, atLeast));
}

double ratioInThreads(const workload& work) {
    constexpr int turns = 7;
    std::vector<double> ratios;
    const auto shared = forTwoThreads(work, sharing::oneTemplate);
    const auto separate = forTwoThreads(work, sharing::templateEach);
    for (int turn = 0; turn < turns; ++turn) {
        const double together = rate(shared);
        ratios.push_back(together / rate(separate));
    }
    std::nth_element(ratios.begin(), ratios.begin() + turns / 2, ratios.end());
    return ratios[turns / 2];
}

double memoryOfTemplate(const workload& work) {
    const std::string text = translated(work.text.text, language::stencilor);
    startCounting();
    const auto kept = keptTemplate(text);
    return static_cast<double>(stopCounting().heldBytes) / static_cast<double>(text.size());
}

void printFigures(const median_reporter& times, const std::vector<contest>& contests) {
    std::printf("\n| %-66s | %-6s | %-22s |\n|---|---|---|\n", "", "figure", "target");
    for (const contest& each : contests) {
        const std::string& name = each.work.name;
        if (times.median(name, "renderTo") != 0) {
            printFigure("W2-1000: renderTo, of render",
                        times.median(name, "renderTo") / times.median(name, modern), 1.0);
            printFigure("W2-1000: Context of a Value, of the same by the classic classes",
                        times.median(name, "Context") / times.median(name, "classes"), 1.3);
            printFigure("W2-1000: two threads on one Template, of two with a Template each",
                        ratioInThreads(each.work), 0.95, true);
        }
        if (name == "W5" && times.median(name, modern) != 0) {
            printFigure("W5: bytes that a Template holds, of its text", memoryOfTemplate(each.work),
                        13);
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    std::vector<contest> contests;
    for (workload& work : allWorkloads()) {
        contests.push_back(prepare(std::move(work)));
        const contest& made = contests.back();
        check(made);
        for (const contender& engine : made.contenders) {
            add(made.work.name + "/" + engine.engine, engine.call.render);
        }
        if (made.work.name == "W2-1000") {
            add("W2-1000/Context", contextOfValue(made.work));
            add("W2-1000/classes", contextByHand(made.work));
        }
    }
    median_reporter reporter;
    if (!run({argv, argv + argc}, reporter)) {
        return 2;
    }
    printTable(reporter, contests);
    printFigures(reporter, contests);
}
