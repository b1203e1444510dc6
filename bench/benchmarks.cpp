// Runs the contestants of an operation in turn: see docs/performance.md. A round is a repetition of
// Google Benchmark, whose own timing would run all rounds of one contestant before the next.

#include <benchmark/benchmark.h>
#include <fmt/compile.h>
#include <malloc.h>
#include <sofia-sip/sdp.h>

#include <cstring>
#include <ctime>
#include <functional>
#include <stdexcept>
#include <vector>

#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "qova/ownership.h"
#include "socket/address.h"

namespace {

using Audio = QOVA_AudioAttribute;
using Capability = QOVA_Capability;
using Media = QOVA_Media;

void expect(bool condition, const char* otherwise) {
    if (!condition) {
        throw std::logic_error(otherwise);
    }
}

// The lines alternate: audio with eight payloads and two crypto lines, T.38 fax, video. Equality
// compares parameter objects by identity, so only offers without them can be equal.
std::shared_ptr<Capability> make_offer(int lines, bool with_parameters = true) {
    auto offer = std::make_shared<Capability>();
    for (int line = 0; line < lines; ++line) {
        auto& media = qova::append<Media>(offer->filteredMedia);
        if (!with_parameters) {
            qova::replace(media.amrwbParam, std::unique_ptr<Sdp::Sdp_Amrwb_Param>());
            qova::replace(media.opusParam, std::unique_ptr<Sdp::Sdp_Opus_Param>());
        }
        auto address = std::make_unique<IPAddress>();
        IPAddress::Parse("10.1.20.101", *address);
        qova::replace(media.address, std::move(address));
        media.sndPort = media.rcvPort = 20000;
        media.sndPort2 = media.rcvPort2 = 20001;
        constexpr Media::e_MediaType types[] = {Media::MT_AUDIO, Media::MT_FAX, Media::MT_VIDEO};
        media.mediaType = types[line % 3];
        if (media.mediaType == Media::MT_FAX) {
            auto& fax = qova::append<QOVA_FaxAttribute>(media.attributes);
            fax.mxRate = 14400;
            fax.mxBuffer = 2000;
        } else if (media.mediaType == Media::MT_VIDEO) {
            qova::append<QOVA_VideoAttribute>(media.attributes);
        } else {
            for (const auto codec :
                 {CODEC_G711_ALAW, CODEC_G711_ULAW, CODEC_G723, CODEC_G729, CODEC_G722,
                  CODEC_G722_2, CODEC_OPUS, line == lines - 3 ? CODEC_G711_NIL : CODEC_G729A}) {
                auto& audio = qova::append<Audio>(media.attributes);
                audio.codec = codec;
                audio.framing = 20;
                audio.mxFraming = 40;
                audio.mf = static_cast<QOVA_Codec>(101);
            }
            for (const auto suite : {CS_AES_CM_128_HMAC_SHA1_80, CS_AES_CM_128_HMAC_SHA1_32}) {
                auto& crypto = qova::append<QOVA_Crypto>(media.cryptos);
                crypto.tag = ++media.cryptoCount;
                crypto.algo = suite;
                crypto.keys.push_back({1048576, 4, {0, 0, 0, 1}, {}});
            }
        }
    }
    return offer;
}

// The same offer as sofia-sip reads it from a session description (RFC 4566).
std::shared_ptr<const sdp_session_t> make_session(int lines) {
    std::string text = "v=0\no=- 1 1 IN IP4 10.1.20.101\ns=-\nt=0 0\n";
    for (int line = 0; line < lines; line += 3) {
        text += fmt::format(
            "m=audio 20000 RTP/SAVP 8 0 4 18 9 104 105 {0}\n{1}a=rtpmap:8 PCMA/8000\n"
            "a=rtpmap:0 PCMU/8000\na=rtpmap:4 G723/8000\na=rtpmap:18 G729/8000\n"
            "a=rtpmap:9 G722/8000\na=rtpmap:104 AMR-WB/16000\na=rtpmap:105 opus/48000/2\n"
            "a=rtpmap:{0} type{0}/8000\na=ptime:20\na=maxptime:40\n"
            "a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:{2:A>40}|2^20|1:4\n"
            "a=crypto:2 AES_CM_128_HMAC_SHA1_32 inline:{2:A>40}|2^20|1:4\n"
            "m=image 20000 udptl t38\n{1}a=T38MaxBitRate:14400\na=T38FaxMaxBuffer:2000\n"
            "m=video 20000 RTP/AVP 98\n{1}a=rtpmap:98 H264/90000\n",
            line == lines - 3 ? 127 : 101, "c=IN IP4 10.1.20.101\na=rtcp:20001\n", "");
    }
    const std::shared_ptr<sdp_parser_t> parser(
        sdp_parse(nullptr, text.data(), static_cast<issize_t>(text.size()), 0), sdp_parser_free);
    expect(sdp_parsing_error(parser.get()) == nullptr, "sofia-sip rejects the offer");
    return {parser, sdp_session(parser.get())};
}

// Visits each block that a copy has to allocate: its size, and the members that equality compares.
template <class Visit>
void each_block(const Capability& offer, Visit visit) {
    const std::size_t node = 3 * sizeof(void*);
    for (const Media* media : offer.filteredMedia) {
        const unsigned char* const ip = media->address->Bytes();
        visit(sizeof *media, media->mediaStatus, media->mediaType, media->bsnd, media->brcv,
              media->sndPort, media->rcvPort, media->sndPort2, media->rcvPort2, media->cryptoCount);
        visit(sizeof(IPAddress), ip[0], ip[1], ip[2], ip[3]);
        for (const QOVA_MediaAttribute* attribute : media->attributes) {
            if (media->mediaType == Media::MT_AUDIO) {
                const auto& audio = static_cast<const Audio&>(*attribute);
                visit(sizeof audio, audio.codec, audio.framing, audio.vad, audio.echo,
                      audio.mxFraming, audio.mf);
            } else if (media->mediaType == Media::MT_FAX) {
                const auto& fax = static_cast<const QOVA_FaxAttribute&>(*attribute);
                visit(sizeof fax, fax.red, fax.depth, fax.mxRate, fax.rateMgt, fax.transport,
                      fax.fillBit, fax.transMMR, fax.transJBIG, fax.mxBuffer, fax.mxDgram,
                      fax.errCorr);
            } else {
                visit(sizeof *attribute);
            }
            visit(node);
        }
        visit(sizeof(Sdp::Sdp_Amrwb_Param));
        visit(sizeof(Sdp::Sdp_Opus_Param));
        for (const QOVA_Crypto* crypto : media->cryptos) {
            const auto& [lifetime, mki_size, mki, key] = crypto->keys.front();
            visit(sizeof *crypto, crypto->tag, crypto->algo);
            visit(2 * sizeof(void*) + sizeof(QOVA_CryptoKey), lifetime, mki_size, mki[0], mki[1],
                  mki[2], mki[3], mki[4], mki[5], mki[6], mki[7]);
            visit(node);
        }
        visit(node);
    }
}

using Contestant = std::pair<std::string, std::function<void(int times)>>;
using Contestants = std::vector<Contestant>;  // libqova comes first

template <class Operation>
Contestant contestant(const char* name, Operation operation) {
    return {name, [operation](int times) mutable {
                for (; times > 0; --times) {
                    auto result = operation();
                    benchmark::DoNotOptimize(result);
                }
            }};
}

// The floor of a copy: allocates the blocks, fills each with one memcpy, and frees them. The floor
// of an assignment to an equal offer frees them first.
Contestant floor_of(const Capability& offer, bool free_first) {
    std::vector<std::pair<std::vector<char>, void*>> blocks;  // sources and copies
    each_block(offer, [&](std::size_t size, auto...) {
        blocks.push_back({std::vector<char>(size), nullptr});
    });
    return contestant("floor", [blocks, free_first]() mutable {
        for (const bool free : {free_first, !free_first}) {
            for (auto& [source, block] : blocks) {
                if (free) {
                    operator delete(block);
                } else {
                    block = std::memcpy(operator new(source.size()), source.data(), source.size());
                }
            }
        }
        return 0;
    });
}

Contestants copy(int lines) {
    const auto offer = make_offer(lines);
    return {contestant("libqova", [offer]() -> Capability { return *offer; }),
            floor_of(*offer, false)};
}

Contestants assignment(int lines) {
    const auto offer = make_offer(lines);
    const auto target = std::make_shared<Capability>();
    return {contestant("libqova", [offer, target] { return &(*target = *offer); }),
            floor_of(*offer, true)};
}

// The members that equality compares: a node and a block of numbers for each object.
std::shared_ptr<std::list<std::vector<unsigned>>> plain(const Capability& offer) {
    auto all = std::make_shared<std::list<std::vector<unsigned>>>();
    each_block(offer, [&all](std::size_t, auto... members) {
        if (sizeof...(members) > 0) {
            all->push_back({static_cast<unsigned>(members)...});
        }
    });
    return all;
}

Contestants equality(int lines) {
    const auto left = make_offer(lines, false);
    const auto right = make_offer(lines, false);
    const auto compare = [left, right] { return *left == *right; };
    const auto walk = [left = plain(*left), right = plain(*right)] { return *left == *right; };
    const auto compare_sessions = [left = make_session(lines), right = make_session(lines)] {
        return sdp_session_cmp(left.get(), right.get()) == 0;
    };
    expect(compare() && walk() && compare_sessions(), "equal offers differ");
    return {contestant("libqova", compare), contestant("walk", walk),
            contestant("sofia-sip", compare_sessions)};
}

Contestants search(int lines, bool hit) {
    // Only the last audio line has the first codec, and none has the second.
    const auto codec = hit ? CODEC_G711_NIL : CODEC_G729_NIL;
    const auto offer = make_offer(lines);
    const auto find = [offer, codec] { return offer->find(codec) != nullptr; };
    // Does not check the class of an object.
    const auto walk = [offer, codec] {
        for (const Media* media : offer->filteredMedia) {
            if (media->mediaType == Media::MT_AUDIO) {
                for (const QOVA_MediaAttribute* attribute : media->attributes) {
                    if (static_cast<const Audio*>(attribute)->codec == codec) {
                        return true;
                    }
                }
            }
        }
        return false;
    };
    const char* const name = hit ? "type127" : "GSM";
    const sdp_rtpmap_t wanted = {sizeof wanted, nullptr, name, 8000, nullptr, nullptr, 0, 0, 0};
    const auto find_map = [session = make_session(lines), wanted] {
        const sdp_media_t* media = session->sdp_media;
        while (media != nullptr && (media->m_type != sdp_media_audio ||
                                    !sdp_rtpmap_find_matching(media->m_rtpmaps, &wanted))) {
            media = media->m_next;
        }
        return media != nullptr;
    };
    expect(find() == hit && walk() == hit && find_map() == hit, "a search has the wrong result");
    return {contestant("libqova", find), contestant("walk", walk),
            contestant("sofia-sip", find_map)};
}

// The log text as a user would write it, each line into an array on the stack.
std::string fmt_text(const Capability& offer) {
    static constexpr std::string_view types[] = {"Nil", "Audio", "Video", "Fax"};
    static constexpr std::string_view codecs[] = {"NIL",  "G711alaw", "G711ulaw", "G723",
                                                  "G729", "G729a",    "G711nil",  "G729nil",
                                                  "G722", "G722.2",   "OPUS"};
    std::string text = "Capability(answer, Not Hold, silenceSuppSdp=no)\n\tFiltered=\n";
    const auto add = [&text](const auto& format, const auto&... values) {
        char line[256];
        text.append(line, static_cast<std::size_t>(fmt::format_to(line, format, values...) - line));
    };
    for (const Media* media : offer.filteredMedia) {
        add(FMT_COMPILE("\t-> media({})/Accepted @{}/snd={}~{}/rcv={}~{}/bsnd={:d}/brcv={:d}{}{}"
                        "\n\t   Attributes :"),
            types[media->mediaType], media->address->ToString(), media->sndPort, media->sndPort2,
            media->rcvPort, media->rcvPort2, media->bsnd, media->brcv,
            static_cast<const std::string>(*media->amrwbParam),
            static_cast<const std::string>(*media->opusParam));
        for (const QOVA_MediaAttribute* attribute : media->attributes) {
            if (media->mediaType == Media::MT_AUDIO) {
                const auto& audio = static_cast<const Audio&>(*attribute);
                add(FMT_COMPILE("\t\t -> {} / Unknown / framing={} / vad={} / echo={} / "
                                "mxFraming={} / MF={}\n"),
                    codecs[audio.codec], audio.framing, int{audio.vad}, int{audio.echo},
                    audio.mxFraming, int{audio.mf});
            } else if (media->mediaType == Media::MT_FAX) {
                const auto& fax = static_cast<const QOVA_FaxAttribute&>(*attribute);
                add(FMT_COMPILE("\t\t -> fax / transport=NIL / red={} / depth={} / mxRate={}\n"
                                "\t\t    rateMgt=NIL / fillBit={} / transMMR={} / transJBIG={}\n"
                                "\t\t    mxBuffer={}/ mxDgram={} / errCorr={}\n"),
                    fax.red, fax.depth, fax.mxRate, int{fax.fillBit}, int{fax.transMMR},
                    int{fax.transJBIG}, fax.mxBuffer, fax.mxDgram, fax.errCorr);
            } else {
                text += "\t\t -> video : not implemented\n";
            }
        }
        add(FMT_COMPILE("\t   Crypto attributes ({}) :\n"), media->cryptoCount);
        for (const QOVA_Crypto* crypto : media->cryptos) {
            const auto& [lifetime, size, mki, key] = crypto->keys.front();
            add(FMT_COMPILE("\t\ttag={}, algo={}, key=(lifetime={} / mki={}{}{}{}{}{}{}{} / "
                            "mkiSize={})\n"),
                crypto->tag, Sdp::CryptoParser::enumToAlgo(crypto->algo), lifetime, mki[0], mki[1],
                mki[2], mki[3], mki[4], mki[5], mki[6], mki[7], size);
        }
    }
    return text;
}

Contestants text(int lines) {
    const auto offer = make_offer(lines);
    expect(fmt_text(*offer) == std::string(*offer), "the texts differ");
    const auto print_session = [session = make_session(lines)] {
        const std::unique_ptr<sdp_printer_t, decltype(&sdp_printer_free)> printer(
            sdp_print(nullptr, session.get(), nullptr, 0, 0), sdp_printer_free);
        return *sdp_message(printer.get());
    };
    return {contestant("libqova", [offer] { return std::string(*offer); }),
            contestant("fmt", [offer] { return fmt_text(*offer); }),
            contestant("sofia-sip", print_session)};
}

// In each turn, a contestant handles `lines_per_turn` lines in all, which takes a few milliseconds.
void add(const std::string& name, int lines_per_turn, Contestants (*make)(int lines)) {
    for (const int lines : {3, 96, 1536}) {
        const auto round = [=, all = Contestants()](benchmark::State& state) mutable {
            if (all.empty()) {
                all = make(lines);
            }
            for ([[maybe_unused]] const auto once : state) {
                for (const auto& [who, run] : all) {
                    run(1);  // fills the caches
                    const std::clock_t start = std::clock();
                    run(lines_per_turn / lines);
                    const auto time = static_cast<double>(std::clock() - start);
                    state.counters[who] = time * lines / lines_per_turn;  // in microseconds
                }
            }
        };
        const std::string title = name + "/" + std::to_string(lines);
        benchmark::RegisterBenchmark(title.c_str(), round)->Iterations(1);
    }
}

const bool registered = [] {
    mallopt(M_MMAP_THRESHOLD, 1 << 25);  // keeps freed blocks: no system calls
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    add("copy", 12288, copy);
    add("assignment", 12288, assignment);
    add("equality", 49152, equality);
    add("search, hit", 393216, [](int lines) { return search(lines, true); });
    add("search, miss", 393216, [](int lines) { return search(lines, false); });
    add("text", 12288, text);
    return true;
}();

}  // namespace
