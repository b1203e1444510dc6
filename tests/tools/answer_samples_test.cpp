// What is written as the answer to each sample reads as that answer.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "answer/changes.h"
#include "answers.h"

namespace {

namespace files = std::filesystem;

class AnsweredSamples : public testing::TestWithParam<files::path> {};

std::string text_of(const files::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::vector<files::path> samples() {
    std::vector<files::path> found;
    for (const auto& entry : files::directory_iterator(QOVA_SAMPLES)) {
        if (entry.path().extension() == ".sdp") {
            found.push_back(entry.path());
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

// What the answer has to keep of each line, whatever it accepts.
std::vector<std::string> kinds(const sdp::Reading& reading) {
    std::vector<std::string> found;
    for (const sdp::ReadLine& line : reading.lines) {
        found.push_back(line.type + " " + line.transport);
    }
    return found;
}

void check(const std::string& text, const sdp::Policy& policy,
           const std::optional<sdp::Plan>& plan) {
    const sdp::Description description(text);
    const sdp::Reading offer = sdp::read(description, sdp::Role::OFFER, sdp::Strictness::LENIENT);
    const sdp::Answer answer = sdp::answer(offer, policy);
    QOVA_Capability sent = *answer.capability;
    if (plan) {
        sent.setPublicAddrPort(UDPAddr(plan->address.ip(), 0), plan->audio_port, plan->fax_port);
    }
    const std::string written = sdp::write(description, offer, sent, answer.payloads,
                                           (plan ? plan->address : policy.address).ip(), {7, 8});
    const sdp::Reading reread =
        sdp::read(sdp::Description(written), sdp::Role::ANSWER,
                  offer.diagnostics.empty() ? sdp::Strictness::STRICT : sdp::Strictness::LENIENT);
    EXPECT_FALSE(sdp::changed(sent, *reread.capability))
        << written << std::string(sent) << std::string(*reread.capability);
    EXPECT_EQ(kinds(reread), kinds(offer));
    for (const std::string key : {"inline:", "a=key-mgmt:", "a=ice-pwd:", "k=clear:"}) {
        for (std::size_t at = text.find(key); at != std::string::npos;
             at = text.find(key, at + 1)) {
            EXPECT_EQ(written.find(text.substr(at + key.size(), 8)), std::string::npos);
        }
    }

    sdp::CallSide side(policy, plan);
    side.resume(written);
    const sdp::Reply again = side.answer(text, sdp::Strictness::LENIENT);
    const sdp::Reply once_more = side.answer(text, sdp::Strictness::LENIENT);
    EXPECT_EQ(once_more.text, again.text);
    if (written.find("inline:") == std::string::npos) {
        EXPECT_EQ(again.text, written);
    }
}

TEST_P(AnsweredSamples, ReadAsTheirAnswers) {
    const std::string text = text_of(GetParam());
    ASSERT_FALSE(text.empty());
    sdp::Policy narrow = policy_at();
    narrow.codecs = {CODEC_G711_ULAW, CODEC_G722_2};
    narrow.suites = {CS_AES_CM_128_HMAC_SHA1_32};
    narrow.fax = false;
    for (const sdp::Policy& policy : {policy_at(), policy_at("2001:db8::1"), narrow}) {
        check(text, policy, std::nullopt);
        check(text, policy, public_plan());
    }
}

constexpr auto name_of_sample = [](const auto& sample) {
    std::string name = sample.param.stem();
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
};

INSTANTIATE_TEST_SUITE_P(Table, AnsweredSamples, testing::ValuesIn(samples()), name_of_sample);

}  // namespace
