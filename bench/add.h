// Hands operations to Google Benchmark, as <operation>/<contestant>/<number of lines>.

#ifndef QOVA_BENCH_ADD_H
#define QOVA_BENCH_ADD_H

#include <benchmark/benchmark.h>

#include <functional>

#include "allocations.h"
#include "offer.h"
#include "operations.h"

// Registers an operation. Its allocations are counted apart from the clock.
constexpr auto add = [](const char* name, operations::Extent extent, auto make) {
    auto* const benchmark = benchmark::RegisterBenchmark(name, [make](benchmark::State& state) {
                                auto operation = make(static_cast<int>(state.range(0)));
                                for (auto _ : state) {
                                    operation();
                                }
                                state.SetComplexityN(state.range(0));
                                state.counters["allocations"] =
                                    static_cast<double>(allocations::made_by(std::ref(operation)));
                            })->Arg(offer::small);
    if (extent == operations::ALL_LINES) {
        benchmark->RangeMultiplier(4)->Range(1, 1024)->Complexity();
    }
};

#endif
