// Measures this engine alongside two others, and prints its times relative to the faster one, with
// the targets.

#include "allocations.h"
#include "engines.h"
#include "rate.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace bench;

constexpr const char* classic = "buildOutput";
constexpr const char* modern = "Template";
constexpr const char* byHandName = "hand";
constexpr const char* pieces = "renderTo";
constexpr const char* throughC = "C";
constexpr const char* ofValue = "Context";
constexpr const char* ofClasses = "classes";
const std::vector<std::string> peers = {"ctemplate", "mustache"};
const std::vector<std::string> parsedPeers = {"ctemplate, parsed", "mustache, parsed"};

/// One engine with one workload.
struct contender {
    std::string engine;
    renderer call;
    std::size_t calls = 0; // in a slice
};

/// One of our calls, and its rivals; it is compared with the faster one.
struct race {
    std::string engine;
    std::vector<std::string> rivals;
    std::string ratio() const { return engine + ", ratio"; }
};

struct contest {
    workload work;
    std::vector<contender> contenders;
    std::vector<race> races;
};

contest prepare(workload work) {
    contest made{std::move(work), {}, {}};
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
        all.push_back({pieces, renderToRenderer(each)});
    }
    if (!each.inFiles) {
        all.push_back({throughC, cRenderer(each)});
    }
    made.races = {{classic, each.inFiles ? std::vector<std::string>{byHandName} : peers},
                  {modern, parsedPeers},
                  {pieces, {modern}},
                  {ofValue, {ofClasses}},
                  {throughC, {modern}}};
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

/// Processor time in nanoseconds, which other processes disturb less than wall-clock time.
double timeOf(const contender& engine, std::size_t calls) {
    const std::clock_t begin = std::clock();
    for (; calls > 0; --calls) {
        benchmark::DoNotOptimize(engine.call.render());
    }
    return static_cast<double>(std::clock() - begin) * (1e9 / CLOCKS_PER_SEC);
}

/// Sets the number of calls in a slice: one, or enough to take two to four milliseconds.
void setCalls(contender& engine) {
    constexpr double enough = 2e6;
    for (engine.calls = 1; timeOf(engine, engine.calls) < enough;) {
        engine.calls *= 2;
    }
}

using figures = std::map<std::string, double>;

/// The fastest one measured; null if there is none.
const figures::value_type* bestOf(const figures& times, const std::vector<std::string>& engines) {
    const figures::value_type* best = nullptr;
    for (const std::string& engine : engines) {
        const auto time = times.find(engine);
        if (time != times.end() && (best == nullptr || time->second < best->second)) {
            best = &*time;
        }
    }
    return best;
}

/// Measures the engines in alternating slices, so that disturbances affect all of them, and reports
/// their times and ratios.
void measure(benchmark::State& state, contest& each) {
    std::minstd_rand random;
    figures times;
    for (auto _ : state) {
        std::shuffle(each.contenders.begin(), each.contenders.end(), random);
        for (const contender& engine : each.contenders) {
            const double time = timeOf(engine, engine.calls) / static_cast<double>(engine.calls);
            times[engine.engine] += time / static_cast<double>(state.max_iterations);
        }
    }
    state.counters.insert(times.begin(), times.end());
    for (const race& one : each.races) {
        const auto* best = bestOf(times, one.rivals);
        if (best != nullptr && times.contains(one.engine)) {
            state.counters[one.ratio()] = times[one.engine] / best->second;
        }
    }
}

/// Keeps the medians and prints nothing, because the table follows at the end.
class median_reporter : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.aggregate_name == "median") {
                medians[run.run_name.function_name].insert(run.counters.begin(),
                                                           run.counters.end());
            }
        }
    }

    std::map<std::string, figures> medians; // by workload
};

/// @return false if an argument is wrong
bool run(std::vector<std::string> arguments, median_reporter& reporter) {
    arguments.insert(arguments.begin() + 1,
                     {"--benchmark_repetitions=7", "--benchmark_min_time=0.5"});
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

/// Compares the ratio as printed, that is, rounded.
const char* verdict(double figure, double target, bool atLeast = false) {
    const double difference = std::round(figure * 100) - std::round(target * 100);
    return (atLeast ? difference >= 0 : difference <= 0) ? "reached" : "MISSED";
}

/// The columns of one of our calls: its time, that of the faster rival, their ratio, and the
/// target.
void printRace(const figures& medians, const race& each, std::optional<double> target) {
    const auto ratio = medians.find(each.ratio());
    if (ratio == medians.end()) {
        std::printf(" | %11s | %9s %-9s | %5s | %6s %-7s", "-", "-", "", "-", "-", "");
        return;
    }
    const auto& [rival, time] = *bestOf(medians, each.rivals);
    std::printf(" | %11.2f | %9.2f %-9s | %5.2f", medians.at(each.engine) / 1e3, time / 1e3,
                rival.substr(0, rival.find(',')).c_str(), ratio->second);
    if (target) {
        std::printf(" | %6.2f %-7s", *target, verdict(ratio->second, *target));
    } else {
        std::printf(" | %6s %-7s", "-", "");
    }
}

void printTable(const median_reporter& measured, const std::vector<contest>& contests) {
    std::printf("\nMicroseconds on the processor: buildOutput and peers that parse in every call; "
                "Template and peers, parsed beforehand.\n\n");
    std::printf("| %-43s", "workload");
    for (const char* call : {classic, modern}) {
        std::printf(" | %-11s | %-19s | %-5s | %-14s", call, "better peer", "ratio", "target");
    }
    std::printf(" | %-7s |\n|---|---|---|---|---|---|---|---|---|---|\n", byHandName);
    for (const contest& each : contests) {
        const workload& work = each.work;
        const auto medians = measured.medians.find(work.name);
        if (medians == measured.medians.end()) {
            continue;
        }
        std::printf("| %-7s %-35s", work.name.c_str(), work.what.c_str());
        printRace(medians->second, each.races[0], work.buildOutputTarget);
        printRace(medians->second, each.races[1], work.templateTarget);
        std::printf(" | %7.2f |\n", medians->second.at(byHandName) / 1e3);
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

void printFigures(const median_reporter& measured, const std::vector<contest>& contests) {
    std::printf("\n| %-66s | %-6s | %-22s |\n|---|---|---|\n", "", "figure", "target");
    for (const contest& each : contests) {
        const std::string& name = each.work.name;
        if (!measured.medians.contains(name)) {
            continue;
        }
        const figures& medians = measured.medians.at(name);
        if (!each.work.inFiles) {
            // For a small page, the memory of one handle is significant.
            printFigure((name + ": rendering in C, relative to C++").c_str(),
                        medians.at(each.races[4].ratio()), name == "W1" ? 1.2 : 1.05);
        }
        if (name == "W2-1000") {
            printFigure("W2-1000: renderTo, relative to render", medians.at(each.races[2].ratio()),
                        1.0);
            printFigure("W2-1000: Context from a Value, relative to the classic classes",
                        medians.at(each.races[3].ratio()), 1.3);
            printFigure("W2-1000: two threads sharing a Template, relative to one each",
                        ratioInThreads(each.work), 0.95, true);
        }
        if (name == "W5") {
            printFigure("W5: memory of a Template, relative to its text",
                        memoryOfTemplate(each.work), 13);
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    std::vector<contest> contests;
    for (workload& work : allWorkloads()) {
        contest& made = contests.emplace_back(prepare(std::move(work)));
        check(made);
        if (made.work.name == "W2-1000") {
            made.contenders.push_back({ofValue, {contextOfValue(made.work), {}}});
            made.contenders.push_back({ofClasses, {contextByHand(made.work), {}}});
        }
    }
    for (contest& each : contests) {
        std::for_each(each.contenders.begin(), each.contenders.end(), setCalls);
        benchmark::RegisterBenchmark(each.work.name.c_str(),
                                     [&each](benchmark::State& state) { measure(state, each); });
    }
    median_reporter reporter;
    if (!run({argv, argv + argc}, reporter)) {
        return 2;
    }
    printTable(reporter, contests);
    printFigures(reporter, contests);
}
