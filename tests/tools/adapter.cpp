#include "adapter.h"

#include <algorithm>
#include <stdexcept>

#include "answer/call_side.h"
#include "answer/changes.h"
#include "move/mover.h"
#include "netconf/sdp.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "qova/media.h"
#include "sdp/audio.h"
#include "sdp/message.h"
#include "sdp/reader.h"
#include "socket/address.h"

namespace tools {

namespace {

template <class T, class Call>
Result<T> result_of(Call call) {
    try {
        return {std::nullopt, call()};
    } catch (const sdp::Refusal& refusal) {
        return {Message{refusal.line, refusal.what()}, {}};
    } catch (const std::range_error& error) {
        return {Message{0, error.what()}, {}};
    }
}

sdp::Role role_of(Role role) {
    return role == Role::ANSWER ? sdp::Role::ANSWER : sdp::Role::OFFER;
}

sdp::Strictness strictness_of(Strictness strictness) {
    return strictness == Strictness::STRICT ? sdp::Strictness::STRICT : sdp::Strictness::LENIENT;
}

IPAddress address_of(const std::string& text) {
    IPAddress address;
    if (!IPAddress::Parse(text, address)) {
        throw std::invalid_argument("invalid address '" + text + "'");
    }
    return address;
}

std::vector<Message> messages(const std::vector<sdp::Warning>& warnings) {
    std::vector<Message> all;
    for (const sdp::Warning& warning : warnings) {
        all.push_back({warning.line, warning.message});
    }
    return all;
}

std::string key_text(const QOVA_CryptoKey& key) {
    std::string mki;
    for (unsigned i = 0; i < sizeof key.mki; ++i) {
        const auto byte = static_cast<unsigned char>(key.mki[i]);
        mki += {"0123456789abcdef"[byte / 16], "0123456789abcdef"[byte % 16]};
    }
    const auto end = std::find_if(std::rbegin(key.key), std::rend(key.key),
                                  [](unsigned char byte) { return byte != 0; });
    const std::string bytes(std::begin(key.key), end.base());
    return "inline:" + base64(bytes) +
           (key.lifetime == 0 ? "" : "|" + std::to_string(key.lifetime)) +
           (key.mkiSize == 0 ? "" : "|" + mki + ":" + std::to_string(key.mkiSize));
}

std::vector<std::string> crypto_texts(const sdp::Reading& reading) {
    std::vector<std::string> all;
    for (const sdp::ReadLine& line : reading.lines) {
        if (line.media == nullptr) {
            continue;
        }
        for (const QOVA_Crypto* const crypto : line.media->cryptos) {
            all.push_back(std::to_string(line.number) + ": " + std::to_string(crypto->tag) + " " +
                          Sdp::CryptoParser::enumToAlgo(crypto->algo));
            for (const QOVA_CryptoKey& key : crypto->keys) {
                all.back() += " " + key_text(key);
            }
        }
    }
    return all;
}

// Records the random bytes that it hands out: the first block counts down from 255, the next from
// 239, and so on.
class Source {
public:
    explicit Source(std::vector<std::string>& record) : blocks(record) {}
    void operator()(unsigned char* to, std::size_t size) {
        unsigned next = 255U - 16U * static_cast<unsigned>(blocks.size());
        std::generate_n(to, size, [&next] { return static_cast<unsigned char>(next--); });
        blocks.emplace_back(to, to + size);
    }

private:
    std::vector<std::string>& blocks;
};

sdp::CallSide side_of(const Policy& policy, std::vector<std::string>& blocks) {
    sdp::Policy own;
    own.address = address_of(policy.local);
    own.fax = policy.fax;
    own.random = Source(blocks);
    if (!policy.codecs.empty()) {
        own.codecs.clear();
        for (const std::string& name : policy.codecs) {
            own.codecs.push_back(sdp::codec_named(name).value());
        }
    }
    if (!policy.suites.empty()) {
        own.suites.clear();
        for (const std::string& name : policy.suites) {
            own.suites.push_back(Sdp::CryptoParser::algoToEnum(name));
        }
    }
    std::optional<sdp::PublicPlan> plan;
    if (policy.public_plan) {
        plan = {address_of(policy.public_plan->address), policy.public_plan->audio_port,
                policy.public_plan->fax_port};
    }
    return sdp::CallSide(own, plan);
}

sdp::Reading reading_of(const std::string& text) {
    return sdp::read(sdp::Description(text), sdp::Role::OFFER, sdp::Strictness::LENIENT);
}

}  // namespace

Result<Found> find(const std::string& file) {
    return result_of<Found>([&] {
        const sdp::Found found = sdp::find_description(file);
        return Found{found.text, found.lines_before, found.is_part};
    });
}

Result<Read> read(const std::string& text, Role role, Strictness strictness) {
    return result_of<Read>([&] {
        const sdp::Reading reading =
            sdp::read(sdp::Description(text), role_of(role), strictness_of(strictness));
        return Read{*reading.capability, messages(reading.warnings), crypto_texts(reading)};
    });
}

Result<Moved> move(const std::string& text, const Move& move) {
    return result_of<Moved>([&] {
        const sdp::Move moved =
            sdp::move(text, {move.plan.address, move.plan.audio_port, move.plan.fax_port, move.back,
                             move.merge, role_of(move.role), strictness_of(move.strictness)});
        return Moved{moved.text, moved.log_before, moved.log_after, moved.old_address,
                     messages(moved.warnings)};
    });
}

std::pair<std::string, std::string> model_and_text(const std::string& text, const Moved& moved,
                                                   const Plan& plan) {
    const sdp::Reading before = reading_of(text);
    const sdp::Reading after = reading_of(moved.text);
    before.capability->setPublicAddrPort(UDPAddr(address_of(plan.address), 0), plan.audio_port,
                                         plan.fax_port);
    std::pair<std::string, std::string> both;
    for (const QOVA_Media* const media : after.capability->filteredMedia) {
        both.second += media->address->IsAny() != 0 ? "" : std::string(*media);
    }
    auto reread = after.capability->filteredMedia.begin();
    for (const QOVA_Media* const media : before.capability->filteredMedia) {
        both.first += (*reread++)->address->IsAny() != 0 ? "" : std::string(*media);
    }
    return both;
}

Result<Answered> answer(const std::string& text, const Policy& policy,
                        const std::string& previous) {
    std::vector<std::string> blocks;
    return result_of<Answered>([&] {
        sdp::CallSide side = side_of(policy, blocks);
        if (!previous.empty()) {
            side.resume(previous);
        }
        const sdp::Reply reply = side.answer(text, sdp::Strictness::LENIENT);
        Answered answered = {reply.text,
                             reply.log,
                             messages(reply.warnings),
                             messages(reply.rejections),
                             reply.has_common,
                             reply.changed,
                             {}};
        std::copy_if(blocks.begin(), blocks.end(), std::back_inserter(answered.keys),
                     [](const std::string& block) { return block.size() >= 28; });
        return answered;
    });
}

std::string base64(const std::string& bytes) {
    constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        unsigned three = 0;
        for (std::size_t i = at; i < at + 3; ++i) {
            three = three << 8U | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U);
        }
        for (const unsigned shift : {18U, 12U, 6U, 0U}) {
            text += digits[three >> shift & 63U];
        }
    }
    std::fill_n(text.rbegin(), (3 - bytes.size() % 3) % 3, '=');
    return text;
}

bool is_changed(const std::string& before, const std::string& now) {
    return sdp::changed(*reading_of(before).capability, *reading_of(now).capability);
}

}  // namespace tools
