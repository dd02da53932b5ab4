#include "allocations.h"
#include "workloads.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

namespace {

using namespace bench;

/// One engine at one workload.
struct contender {
    std::string engine;
    renderer call;
    allocations memory = {};
    std::size_t bytes = 0;
    double nanoseconds = 0; // median
};

struct contest {
    workload work;
    std::vector<contender> contenders;

    const contender* find(const std::string& engine) const {
        const auto found =
            std::find_if(contenders.begin(), contenders.end(),
                         [&engine](const contender& each) { return each.engine == engine; });
        return found == contenders.end() ? nullptr : &*found;
    }
};

constexpr const char* ours = "stencilor";
constexpr const char* limit = "hand";
const std::vector<std::string> peers = {"ctemplate", "mustache"};
const std::vector<std::string> parsedPeers = {"ctemplate, parsed", "mustache, parsed"};

contest prepare(workload work) {
    contest made{std::move(work), {}};
    const workload& each = made.work;
    made.contenders.push_back({ours, stencilorRenderer(each.stencilor, each.data)});
    if (!each.ctemplate.empty()) {
        for (const parsing when : {parsing::everyCall, parsing::beforehand}) {
            const std::string suffix = when == parsing::beforehand ? ", parsed" : "";
            made.contenders.push_back(
                {"ctemplate" + suffix, ctemplateRenderer(each.ctemplate, each.data, when)});
            made.contenders.push_back(
                {"mustache" + suffix, mustacheRenderer(each.mustache, each.data, when)});
        }
    }
    made.contenders.push_back({limit, each.hand});
    return made;
}

/// Renders once with each engine, compares the bytes and counts the allocations.
void check(contest& each) {
    std::string expected;
    for (contender& engine : each.contenders) {
        engine.call.render(); // warm: what is made once per process does not count
        startCounting();
        engine.bytes = engine.call.render();
        engine.memory = stopCounting();
        const std::string output = engine.call.output();
        if (expected.empty()) {
            expected = output;
        }
        if (output.empty() || output != expected) {
            std::fprintf(stderr, "%s: the output of %s is not that of %s\n", each.work.name.c_str(),
                         engine.engine.c_str(), ours);
            std::exit(1);
        }
    }
}

/// Keeps the medians and prints nothing: the table follows at the end.
class median_reporter : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.aggregate_name == "median") {
                medians[run.run_name.function_name] = run.GetAdjustedRealTime();
            }
        }
    }

    std::map<std::string, double> medians;
};

std::string nameOf(const contest& each, const contender& engine) {
    return each.work.name + "/" + engine.engine;
}

double best(const contest& each, const std::vector<std::string>& engines) {
    double fastest = 0;
    for (const std::string& engine : engines) {
        const contender* found = each.find(engine);
        if (found != nullptr && (fastest == 0 || found->nanoseconds < fastest)) {
            fastest = found->nanoseconds;
        }
    }
    return fastest;
}

std::string ratio(double time, double reference) {
    char text[32];
    std::snprintf(text, sizeof(text), "%.2f", reference > 0 ? time / reference : 0.0);
    return reference > 0 ? text : "-";
}

void printTarget(const char* what, double reached, double allowed) {
    std::printf("      target: %-44s %.2f, at most %.2f: %s\n", what, reached, allowed,
                reached <= allowed ? "reached" : "MISSED");
}

void print(const contest& each) {
    const double peer = best(each, peers);
    const double hand = each.find(limit)->nanoseconds;
    const double own = each.find(ours)->nanoseconds;
    std::printf("\n%s: %s, %zu bytes\n", each.work.name.c_str(), each.work.what.c_str(),
                each.find(ours)->bytes);
    std::printf("  %-18s %12s %9s %8s %8s %9s %12s\n", "engine", "us", "MB/s", "of peer", "of hand",
                "allocs", "peak bytes");
    for (const contender& engine : each.contenders) {
        std::printf(
            "  %-18s %12.2f %9.0f %8s %8s %9zu %12zu\n", engine.engine.c_str(),
            engine.nanoseconds / 1e3, static_cast<double>(engine.bytes) / engine.nanoseconds * 1e3,
            ratio(engine.nanoseconds, peer).c_str(), ratio(engine.nanoseconds, hand).c_str(),
            engine.memory.count, engine.memory.peakBytes);
    }
    if (each.work.ofPeer) {
        printTarget("of the better peer that parses in every call", own / peer, *each.work.ofPeer);
    }
    if (each.work.ofHand) {
        printTarget("of hand", own / hand, *each.work.ofHand);
    }
    if (each.work.aheadOfParsed) {
        printTarget("of the better peer parsed beforehand", own / best(each, parsedPeers), 1.0);
    }
}

} // namespace

int main(int argc, char** argv) {
    std::vector<contest> contests;
    for (workload& work : allWorkloads()) {
        contests.push_back(prepare(std::move(work)));
        check(contests.back());
    }
    for (const contest& each : contests) {
        for (const contender& engine : each.contenders) {
            benchmark::RegisterBenchmark(nameOf(each, engine).c_str(),
                                         [call = engine.call.render](benchmark::State& state) {
                                             for (auto _ : state) {
                                                 benchmark::DoNotOptimize(call());
                                             }
                                         })
                ->UseRealTime();
        }
    }

    // The order of the runs is drawn by chance, so that a disturbance of the machine meets all.
    std::vector<std::string> arguments = {argv[0], "--benchmark_enable_random_interleaving=true",
                                          "--benchmark_repetitions=7", "--benchmark_min_time=0.05"};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    std::vector<char*> pointers;
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    int count = static_cast<int>(pointers.size());
    benchmark::Initialize(&count, pointers.data());
    if (benchmark::ReportUnrecognizedArguments(count, pointers.data())) {
        return 2;
    }

    median_reporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    for (contest& each : contests) {
        bool measured = true;
        for (contender& engine : each.contenders) {
            const auto found = reporter.medians.find(nameOf(each, engine));
            measured = measured && found != reporter.medians.end();
            engine.nanoseconds = measured ? found->second : 0;
        }
        if (measured) {
            print(each);
        }
    }
}
