#include "adapter.h"

#include <algorithm>
#include <iterator>
#include <list>
#include <set>
#include <sstream>
#include <stdexcept>

#include "answer/changes.h"
#include "netconf/sdp.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "qova/media.h"
#include "sdp/audio.h"

namespace tools {

namespace {

template <class T, class Call>
Result<T> result_of(Call call) {
    Result<T> result;
    try {
        sdp::warn_of_refusal(result.refusal, [&] { result.value = call(); });
    } catch (const std::range_error& error) {
        result.refusal.push_back({0, sdp::Severity::WARNING, error.what()});
    }
    return result;
}

std::string key_text(const QOVA_CryptoKey& key) {
    const auto end = std::find_if(std::rbegin(key.key), std::rend(key.key),
                                  [](unsigned char byte) { return byte != 0; });
    return "inline:" + base64(std::string(std::begin(key.key), end.base())) +
           (key.lifetime == 0 ? "" : "|" + std::to_string(key.lifetime)) +
           (key.mkiSize == 0 ? ""
                             : "|" + hexadecimal({std::begin(key.mki), std::end(key.mki)}) + ":" +
                                   std::to_string(key.mkiSize));
}

std::string crypto_text(const sdp::ReadLine& line, const QOVA_Crypto& crypto) {
    std::string text = std::to_string(line.number) + ": " + std::to_string(crypto.tag) + " " +
                       Sdp::CryptoParser::enumToAlgo(crypto.algo);
    for (const QOVA_CryptoKey& key : crypto.keys) {
        text += " " + key_text(key);
    }
    return text + "\r\n";
}

using Words = std::istream_iterator<std::string>;

sdp::Plan plan_of(std::istream& words) {
    std::string text;
    unsigned short audio_port = 0;
    unsigned short fax_port = 0;
    words >> text >> audio_port >> fax_port;
    return {address(text), audio_port, fax_port};
}

std::unique_ptr<QOVA_Capability> capability_of(const std::string& text) {
    return sdp::read(sdp::Description(text), Role::OFFER, Strictness::LENIENT).capability;
}

}  // namespace

std::vector<std::string> shown(const Diagnostics& diagnostics, std::size_t lines_before) {
    std::vector<std::string> all;
    for (const sdp::Diagnostic& one : diagnostics) {
        const std::size_t line = one.line == 0 ? 0 : one.line + lines_before;
        all.push_back(std::to_string(line) + ": " + one.message);
    }
    return all;
}

Result<sdp::Found> find(const std::string& file) {
    return result_of<sdp::Found>([&] { return sdp::find_description(file); });
}

Result<Read> read(const std::string& text, Role role, Strictness strictness) {
    return result_of<Read>([&] {
        const sdp::Reading reading = sdp::read(sdp::Description(text), role, strictness);
        Read result = {*reading.capability, reading.diagnostics, {}, {}};
        for (const sdp::ReadLine& line : reading.lines) {
            result.kinds.push_back(line.type + " " + line.transport);
            for (const QOVA_Crypto* const crypto :
                 line.media == nullptr ? std::list<QOVA_Crypto*>() : line.media->cryptos) {
                result.crypto += crypto_text(line, *crypto);
            }
        }
        return result;
    });
}

sdp::MediaAddress address(const std::string& text) {
    const auto parsed = sdp::MediaAddress::parse(text);
    if (!parsed) {
        throw std::invalid_argument("invalid address '" + text + "'");
    }
    return *parsed;
}

Result<sdp::Move> move(const std::string& text, const Journey& journey) {
    return result_of<sdp::Move>([&] { return sdp::move(text, journey.plan, journey.options); });
}

void Options::add(const std::string& line) {
    std::istringstream words(line);
    const std::string option = *Words(words);
    if (option == "answer") {
        journey.options.role = Role::ANSWER;
    } else if (option == "move") {
        journey.plan = plan_of(words);
        const std::set<std::string> rest(Words(words), {});
        journey.options.back = rest.count("back") != 0;
        journey.options.merge = rest.count("merge") != 0;
        journey.options.strictness =
            rest.count("strict") != 0 ? Strictness::STRICT : Strictness::LENIENT;
    } else if (option == "local") {
        side.policy.address = address(*Words(words));
    } else if (option == "public") {
        side.plan = plan_of(words);
    } else if (option == "codecs") {
        side.policy.codecs.clear();
        std::transform(Words(words), {}, std::back_inserter(side.policy.codecs),
                       [](const std::string& name) { return sdp::codec_named(name).value(); });
    } else if (option == "suites") {
        side.policy.suites.clear();
        std::transform(Words(words), {}, std::back_inserter(side.policy.suites),
                       Sdp::CryptoParser::algoToEnum);
    } else if (option == "no-fax") {
        side.policy.fax = false;
    } else {
        throw std::invalid_argument("unknown option '" + line + "'");
    }
}

Result<Answered> answer(const std::string& text, const Side& side, const std::string& previous) {
    return result_of<Answered>([&] {
        // The first random bytes, of the session's number, count down from 255, the next from 239,
        // and so on.
        std::vector<std::string> blocks;
        sdp::Policy policy = side.policy;
        policy.random = [&blocks](unsigned char* to, std::size_t size) {
            unsigned next = 255U - 16U * static_cast<unsigned>(blocks.size());
            std::generate_n(to, size, [&next] { return static_cast<unsigned char>(next--); });
            blocks.emplace_back(to, to + size);
        };
        sdp::CallSide call(policy, side.plan);
        if (!previous.empty()) {
            call.resume(previous);
        }
        Answered answered = {call.answer(text, Strictness::LENIENT), {}, {}, {}};
        answered.keys.assign(blocks.begin() + 1, blocks.end());
        for (const sdp::Diagnostic& one : answered.diagnostics) {
            const bool is_warning = one.severity == sdp::Severity::WARNING;
            (is_warning ? answered.warnings : answered.rejections).push_back(one);
        }
        return answered;
    });
}

bool is_changed(const std::string& before, const std::string& now) {
    return sdp::changed(*capability_of(before), *capability_of(now));
}

std::string hexadecimal(const std::string& bytes) {
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        text += {digits[value / 16], digits[value % 16]};
    }
    return text;
}

std::string base64(const std::string& bytes) {
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
        unsigned three = 0;
        for (std::size_t i = at; i < at + 3; ++i) {
            three = three << 8U | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U);
        }
        for (const unsigned shift : {18U, 12U, 6U, 0U}) {
            text += base64_digits[three >> shift & 63U];
        }
    }
    std::fill_n(text.rbegin(), (3 - bytes.size() % 3) % 3, '=');
    return text;
}

}  // namespace tools
