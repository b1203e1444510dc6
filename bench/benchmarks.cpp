#include <benchmark/benchmark.h>

#include <string>

#include "add.h"
#include "offer.h"
#include "operations.h"

namespace {

// What an offer holds, for whoever judges the figures.
void describe(int lines) {
    const QOVA_Capability offer = offer::make(lines);
    std::size_t cryptos = 0;
    for (const QOVA_Media* media : offer.filteredMedia) {
        cryptos += media->cryptos.size();
    }
    const std::string key = "offer_" + std::to_string(lines);
    benchmark::AddCustomContext(key + "_owned", std::to_string(offer::owned_by(offer)));
    benchmark::AddCustomContext(key + "_cryptos", std::to_string(cryptos));
    benchmark::AddCustomContext(key + "_text",
                                std::to_string(static_cast<std::string>(offer).size()));
}

}  // namespace

int main(int argc, char** argv) {
    operations::for_each(add);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    describe(offer::small);
    describe(1024);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
