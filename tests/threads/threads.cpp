// Runs under ThreadSanitizer what several threads may do at once: read one capability, or use one
// each. In the control, they write to one capability, which ThreadSanitizer must report.

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "building_blocks.h"

namespace {

QOVA_Capability make_offer() {
    QOVA_Capability offer;
    QOVA_Media& media = append_media(offer, QOVA_Media::MT_AUDIO);
    append_audio(media, CODEC_G722);
    append_fax(media, FT_NIL);
    append_crypto(media, 0).keys.push_back({});
    return offer;
}

// Runs every const operation.
void read(const QOVA_Capability& capability) {
    const QOVA_Capability copy(capability);
    const std::string text = capability;
    const bool found =
        capability.find(CODEC_G722) != nullptr && capability.find(FT_T38_TCP) == nullptr &&
        capability.find_mf(CODEC_NIL) != nullptr &&
        capability.find(QOVA_Media::MT_AUDIO, QOVA_Media::MS_UNKNOWN).size() == 1 &&
        capability.isMute() && ToString(CODEC_OPUS) == "OPUS" && ToString(EM_NIL) == "nil";
    if (!found || !(capability == capability) || text != static_cast<const std::string&>(copy)) {
        std::abort();
    }
}

// Runs the edits.
void write(QOVA_Capability& capability) {
    const UDPAddr to(IPAddress::IpAddressAny, 0);
    capability.setPublicAddrPort(to, 40000, 7000);
    capability.setLocalAddrPort(to, 40000, 7000);
    capability.ClearMediaDirection();
    capability.rejectMedia(QOVA_Media::MT_AUDIO);
}

void in_four_threads(const std::function<void()>& work) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 100; ++round) {
                work();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

}  // namespace

int main(int argc, char** argv) {
    const std::string what = argc == 2 ? argv[1] : "";
    QOVA_Capability shared = make_offer();
    if (what == "read") {
        in_four_threads([&] { read(shared); });
    } else if (what == "own") {
        in_four_threads([] {
            QOVA_Capability own = make_offer();
            read(own);
            write(own);
            const QOVA_Capability source = make_offer();
            own = source;
        });
    } else if (what == "write") {
        in_four_threads([&] { shared.ClearMediaDirection(); });
    } else {
        std::fprintf(stderr, "usage: qova_threads read|own|write\n");
        return 2;
    }
    return 0;
}
