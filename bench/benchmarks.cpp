#include <benchmark/benchmark.h>

#include "operations.h"

int main(int argc, char** argv) {
    std::vector<operations::Operation> all = operations::of_library();
    const std::vector<operations::Operation> others = operations::of_sofia();
    all.insert(all.end(), others.begin(), others.end());
    for (const operations::Operation& operation : all) {
        auto* const benchmark = benchmark::RegisterBenchmark(
            operation.name.c_str(), [make = operation.make](benchmark::State& state) {
                const operations::Run run = make(static_cast<int>(state.range(0)));
                const auto times = state.max_iterations;
                while (state.KeepRunningBatch(times)) {
                    run(static_cast<std::size_t>(times));
                }
            });
        benchmark->Arg(offer::small);
        if (operation.extent == operations::ALL_LINES) {
            benchmark->RangeMultiplier(4)->Range(1, 1024);
        }
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
