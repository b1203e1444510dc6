// How crypto lines are read, and how lines with keys are shown.

#include <gtest/gtest.h>

#include <cstring>

#include "readings.h"

namespace {

// The bytes 0 to 45 in base64: prefixes of it are keys of every suite's length.
const std::string key_30 = "AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwd";
const std::string key_46 = "AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh8gISIjJCUmJygpKissLQ==";

TEST(SdpCrypto, TakesTagSuiteLifetimeMkiAndKey) {
    const OneLine line = {"m=audio 5004 RTP/SAVP 0",
                          "a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:" + key_30 + "|2^20|258:4"};
    EXPECT_EQ(line.media().cryptoCount, 1U);
    EXPECT_EQ(line.crypto().tag, 1U);
    EXPECT_EQ(line.crypto().algo, CS_AES_CM_128_HMAC_SHA1_80);
    ASSERT_EQ(line.crypto().keys.size(), 1U);
    const QOVA_CryptoKey& key = line.crypto().keys.front();
    EXPECT_EQ(key.lifetime, 1048576U);
    EXPECT_EQ(key.mkiSize, 4);
    const unsigned char mki[8] = {0, 0, 1, 2};
    EXPECT_EQ(std::memcmp(key.mki, mki, sizeof mki), 0);
    for (unsigned i = 0; i < sizeof key.key; ++i) {
        EXPECT_EQ(key.key[i], i < 30 ? i : 0);
    }
}

TEST(SdpCrypto, TakesLinesAndKeysInOrder) {
    const OneLine line = {"m=audio 5004 RTP/SAVP 0",
                          "a=crypto:7 AES_256_CM_HMAC_SHA1_80 inline:" + key_46 +
                              "|1:1;inline:" + key_46 + "|2:1 FEC_ORDER=FEC_SRTP",
                          "a=crypto:999999999 AEAD_AES_128_GCM inline:" + key_46.substr(0, 38)};
    EXPECT_EQ(line.media().cryptoCount, 2U);
    ASSERT_EQ(line.media().cryptos.size(), 2U);
    ASSERT_EQ(line.crypto().keys.size(), 2U);
    EXPECT_EQ(line.crypto().keys.front().mki[0], 1);
    EXPECT_EQ(line.crypto().keys.back().mki[0], 2);
    EXPECT_EQ(line.crypto().keys.back().lifetime, 0U);
    EXPECT_EQ(line.crypto().keys.back().key[45], 45);
    EXPECT_EQ(line.media().cryptos.back()->tag, 999999999U);
    EXPECT_EQ(line.media().cryptos.back()->keys.front().mkiSize, 0);
    EXPECT_EQ(line.media().cryptos.back()->keys.front().key[27], 27);
}

TEST(SdpCrypto, BelongsToLinesOfEveryKind) {
    const std::string crypto = "a=crypto:1 AES_CM_128_HMAC_SHA1_32 inline:" + key_30;
    const sdp::Reading reading =
        reading_of(session({crypto, "m=video 5004 RTP/SAVP 31", crypto, "m=audio 0 RTP/AVP 0",
                            crypto, crypto, "m=audio 5006 RTP/AVP 0"}));
    EXPECT_EQ(reading.lines[0].media->cryptoCount, 1U);
    EXPECT_EQ(reading.lines[1].media->cryptoCount, 2U);
    EXPECT_EQ(reading.lines[2].media->cryptoCount, 0U);
}

TEST(SdpCrypto, KeepsALineOfAnUnknownSuiteWithoutItsKeys) {
    const OneLine line = {"m=audio 5004 RTP/SAVP 0", "a=crypto:3 NEW_SUITE uri:whatever"};
    EXPECT_EQ(line.media().cryptoCount, 1U);
    EXPECT_EQ(line.crypto().tag, 3U);
    EXPECT_EQ(line.crypto().algo, CS_NIL);
    EXPECT_TRUE(line.crypto().keys.empty());
}

TEST(SdpCrypto, KnowsSuitesInAnyLetterCaseAndByTheirTransposedNames) {
    const auto suite_of = [](const std::string& name) {
        const OneLine line = {"m=audio 5004 RTP/SAVP 0",
                              "a=crypto:1 " + name + " inline:" + key_46};
        EXPECT_EQ(line.crypto().keys.size(), 1U) << name;
        return line.crypto().algo;
    };
    EXPECT_EQ(suite_of("aes_256_cm_hmac_sha1_80"), CS_AES_256_CM_HMAC_SHA1_80);
    EXPECT_EQ(suite_of("AES_CM_256_HMAC_SHA1_80"), CS_AES_256_CM_HMAC_SHA1_80);
    EXPECT_EQ(suite_of("AES_CM_256_HMAC_SHA1_32"), CS_AES_256_CM_HMAC_SHA1_32);
    EXPECT_EQ(suite_of("Aes_Cm_256_Hmac_Sha1_32"), CS_AES_256_CM_HMAC_SHA1_32);
    const std::string key_28 = key_46.substr(0, 38);
    EXPECT_EQ(OneLine({"m=audio 5004 RTP/SAVP 0", "a=crypto:1 aead_aes_128_gcm inline:" + key_28})
                  .crypto()
                  .algo,
              CS_AEAD_AES_128_GCM);
    EXPECT_EQ(OneLine({"m=audio 5004 RTP/SAVP 0", "a=crypto:1 AES_CM_256_NEW inline:" + key_46})
                  .crypto()
                  .algo,
              CS_NIL);
}

TEST(SdpCrypto, ReadsEveryFormOfLifetime) {
    const auto lifetime = [](const std::string& text) {
        return OneLine({"m=audio 5004 RTP/SAVP 0",
                        "a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:" + key_30 + "|" + text})
            .crypto()
            .keys.front()
            .lifetime;
    };
    EXPECT_EQ(lifetime("2^0"), 1U);
    EXPECT_EQ(lifetime("2^31"), 2147483648U);
    EXPECT_EQ(lifetime("2^32"), 4294967295U);
    EXPECT_EQ(lifetime("2^48"), 4294967295U);
    EXPECT_EQ(lifetime("1"), 1U);
    EXPECT_EQ(lifetime("4294967294"), 4294967294U);
    EXPECT_EQ(lifetime("281474976710656"), 4294967295U);
}

TEST(SdpCrypto, ReadsAnMkiOfEightBytes) {
    const OneLine line = {"m=audio 5004 RTP/SAVP 0", "a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:" +
                                                         key_30 + "|18446744073709551614:8"};
    const unsigned char mki[8] = {255, 255, 255, 255, 255, 255, 255, 254};
    EXPECT_EQ(std::memcmp(line.crypto().keys.front().mki, mki, sizeof mki), 0);
}

TEST(SdpCrypto, AcceptsBase64WithoutItsPadding) {
    const OneLine line = {"m=audio 5004 RTP/SAVP 0",
                          "a=crypto:1 AES_256_CM_HMAC_SHA1_80 inline:" + key_46.substr(0, 62)};
    EXPECT_EQ(line.crypto().keys.front().key[45], 45);
}

struct BrokenCrypto {
    std::string value;
    const char* message;
};

class SdpBrokenCrypto : public testing::TestWithParam<BrokenCrypto> {};

TEST_P(SdpBrokenCrypto, IsLeftOutAloneWithAWarningThatHasNoKey) {
    const std::string text = session(
        {"m=audio 5004 RTP/SAVP 0", "a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:" + key_30,
         "a=crypto:" + GetParam().value, "a=crypto:3 AES_CM_128_HMAC_SHA1_32 inline:" + key_30});
    const std::string warnings = warnings_of(text);
    EXPECT_EQ(warnings, std::string("8: a=crypto") + GetParam().message);
    EXPECT_EQ(warnings.find("AAEC"), std::string::npos);
    const sdp::Reading reading = reading_of(text);
    const QOVA_Media& media = *reading.lines[0].media;
    EXPECT_EQ(media.cryptoCount, 2U);
    ASSERT_EQ(media.cryptos.size(), 2U);
    EXPECT_EQ(media.cryptos.front()->tag, 1U);
    EXPECT_EQ(media.cryptos.back()->tag, 3U);
}

const std::string suite = "1 AES_CM_128_HMAC_SHA1_80 ";
const std::string inline_30 = suite + "inline:" + key_30;
INSTANTIATE_TEST_SUITE_P(
    Table, SdpBrokenCrypto,
    testing::Values(
        BrokenCrypto{"", " needs a tag, a suite and a key"},
        BrokenCrypto{"1 AES_CM_128_HMAC_SHA1_80", " needs a tag, a suite and a key"},
        BrokenCrypto{"x AES_CM_128_HMAC_SHA1_80 inline:" + key_30,
                     " tag: expected a number from 0 to 999999999"},
        BrokenCrypto{"1000000000 AES_CM_128_HMAC_SHA1_80 inline:" + key_30,
                     " tag: expected a number from 0 to 999999999"},
        BrokenCrypto{suite + key_30, ": expected an inline key"},
        BrokenCrypto{suite + "uri:" + key_30, ": expected an inline key"},
        BrokenCrypto{inline_30 + ";", ": expected an inline key"},
        BrokenCrypto{suite + "inline:", ": wrong key length for this suite"},
        BrokenCrypto{suite + "inline:" + key_30.substr(4), ": wrong key length for this suite"},
        BrokenCrypto{suite + "inline:" + key_46, ": wrong key length for this suite"},
        BrokenCrypto{suite + "inline:" + key_46 + "AAEC", ": a key is not base64 or is too long"},
        BrokenCrypto{suite + "inline:" + key_46.substr(0, 62) + "AAEC",
                     ": a key is not base64 or is too long"},
        BrokenCrypto{suite + "inline:" + key_30.substr(0, 39), ": wrong key length for this suite"},
        BrokenCrypto{suite + "inline:" + key_30.substr(0, 37),
                     ": a key is not base64 or is too long"},
        BrokenCrypto{inline_30 + "=", ": a key is not base64 or is too long"},
        BrokenCrypto{inline_30 + "====", ": a key is not base64 or is too long"},
        BrokenCrypto{suite + "inline:" + key_30.substr(0, 39) + "*",
                     ": a key is not base64 or is too long"},
        BrokenCrypto{inline_30 + "|", ": expected a lifetime of 1 to 2^48 packets"},
        BrokenCrypto{inline_30 + "|0", ": expected a lifetime of 1 to 2^48 packets"},
        BrokenCrypto{inline_30 + "|2^49", ": expected a lifetime of 1 to 2^48 packets"},
        BrokenCrypto{inline_30 + "|2^", ": expected a lifetime of 1 to 2^48 packets"},
        BrokenCrypto{inline_30 + "|3^2", ": expected a lifetime of 1 to 2^48 packets"},
        BrokenCrypto{inline_30 + "|281474976710657", ": expected a lifetime of 1 to 2^48 packets"},
        BrokenCrypto{inline_30 + "|1:0", ": expected an MKI length from 1 to 8"},
        BrokenCrypto{inline_30 + "|1:9", ": expected an MKI length from 1 to 8"},
        BrokenCrypto{inline_30 + "|1:", ": expected an MKI length from 1 to 8"},
        BrokenCrypto{inline_30 + "|256:1", ": the MKI is not a number of that length"},
        BrokenCrypto{inline_30 + "|x:1", ": the MKI is not a number of that length"},
        BrokenCrypto{inline_30 + "|:1", ": the MKI is not a number of that length"},
        BrokenCrypto{inline_30 + "|1:1|2^20", ": unexpected text after a key"},
        BrokenCrypto{inline_30 + "|2^20|2^20", ": unexpected text after a key"}));

// A line with a key, and how much of it is shown.
struct KeyLine {
    std::string line;
    std::string shown;
};

class SdpKeyLines : public testing::TestWithParam<KeyLine> {};

TEST_P(SdpKeyLines, AreShownUpToTheKey) {
    const auto passed_through = [](const std::string& line) {
        const std::string text = session({"m=text 1 RTP/AVP 98", line});
        const std::string shown = reading_of(text).capability->passThrough;
        return shown.substr(shown.find('\n') + 1);
    };
    const auto& [line, shown] = GetParam();
    for (const std::string indentation : {"", " ", " \t "}) {
        EXPECT_EQ(passed_through(indentation + line), indentation + shown + "(withheld)\r\n");
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, SdpKeyLines,
    testing::Values(
        KeyLine{"k=clear:secret", "k="}, KeyLine{"k=base64:secret", "k="},
        KeyLine{"a=cpar:k=clear:secret", "a=cpar:k="},
        KeyLine{"a=cpar: K=clear:secret", "a=cpar: K="},
        KeyLine{"a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:secret", "a=crypto:"},
        KeyLine{"a=CRYPTO :secret", "a=CRYPTO :"}, KeyLine{"a=x-crypto:1 secret", "a=x-crypto:"},
        KeyLine{"a=acap:1 crypto:1 AES_CM_128_HMAC_SHA1_80 inline:secret", "a=acap:1 crypto:"},
        KeyLine{"a=cpar: a=Crypto:1 x inline:secret", "a=cpar: a=Crypto:"},
        KeyLine{"a=key-mgmt:mikey secret", "a=key-mgmt:"},
        KeyLine{"a=acap:1 key-mgmt:mikey secret", "a=acap:1 key-mgmt:"},
        KeyLine{"a=cpar: a=Key-Mgmt:mikey secret", "a=cpar: a=Key-Mgmt:"},
        KeyLine{"a=ice-pwd:secret", "a=ice-pwd:"},
        KeyLine{"a=acap:2 ice-pwd:secret", "a=acap:2 ice-pwd:"},
        KeyLine{"a=acap:2 ICE-PWD \t: secret", "a=acap:2 ICE-PWD \t:"},
        KeyLine{"a=3ge2ae:secret", "a=3ge2ae:"},
        KeyLine{"a=acap:3 3GE2AE:requested secret", "a=acap:3 3GE2AE:"},
        KeyLine{"a=cpar:a=3GE2AE secret", "a=cpar:a=3GE2AE"},
        KeyLine{"a=x:1 Inline:secret", "a=x:1 Inline:"}, KeyLine{"i=inline:secret", "i=inline:"}));

TEST(SdpPassThrough, ShowsLinesWithoutKeys) {
    for (const std::string line :
         {"a=crypto", "a=kept", "a=tok=en:1", "a=fingerprint:sha-1 00:11", "i=k"}) {
        const std::string text = session({"m=text 1 RTP/AVP 98", line});
        EXPECT_EQ(reading_of(text).capability->passThrough, lines({"m=text 1 RTP/AVP 98", line}));
    }
}

}  // namespace
