/// @file
/// Answers an offer (RFC 3264, section 6).
///
/// The answer has the lines of the offer, in their order. A Policy accepts:
///
/// - audio over RTP/AVP or RTP/AVPF: the policy's codecs, in the order of the offer, and their tone
///   events;
/// - audio over RTP/SAVP or RTP/SAVPF: the same, with the first a=crypto line (RFC 4568) that has
///   one of the policy's suites and no mandatory session parameter. The answer has the same tag and
///   suite, and a key of its own;
/// - T.38 over UDPTL.
///
/// It rejects every other line, and lines with a multicast address or an address of another family
/// than the policy's. It answers sendonly with recvonly and inactive with inactive, and sends
/// nothing to an unspecified address (0.0.0.0). A rejected line has no address, no ports and no
/// payloads.

#ifndef QOVA_TOOLS_ANSWER_ANSWERER_H
#define QOVA_TOOLS_ANSWER_ANSWERER_H

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

#include "netconf/sdp.h"
#include "qova/capability.h"
#include "sdp/diagnostics.h"
#include "sdp/plan.h"
#include "sdp/reader.h"

namespace sdp {

/// Fills `to` with random bytes from the system. Throws std::system_error.
void random_bytes(unsigned char* to, std::size_t size);

/// Decides which lines, codecs and suites of an offer are accepted.
struct Policy {
    MediaAddress address;  ///< The local address.

    /// The accepted codecs.
    std::vector<QOVA_Codec> codecs = {CODEC_G711_ALAW, CODEC_G711_ULAW, CODEC_G723,   CODEC_G729,
                                      CODEC_G729A,     CODEC_G722,      CODEC_G722_2, CODEC_OPUS};

    /// The accepted crypto suites.
    std::vector<g_crypto_suite> suites = {CS_AES_CM_128_HMAC_SHA1_80, CS_AES_CM_128_HMAC_SHA1_32,
                                          CS_AES_256_CM_HMAC_SHA1_80, CS_AES_256_CM_HMAC_SHA1_32,
                                          CS_AEAD_AES_128_GCM,        CS_AEAD_AES_256_GCM};

    bool fax = true;  ///< T.38 is accepted.

    /// Makes keys and session numbers. Leave it as it is, except in tests.
    std::function<void(unsigned char* to, std::size_t size)> random = random_bytes;
};

/// The answer to an offer.
struct Answer {
    /// The answer's media lines, at the policy's address and the local ports. Never null.
    std::unique_ptr<QOVA_Capability> capability;

    /// The accepted payload types of each media line, tone events included; none if it is rejected.
    std::vector<std::vector<unsigned>> payloads;

    Diagnostics diagnostics;  ///< Why lines are rejected, but not those that the offer rejects.
    bool accepts = false;     ///< True if a line is accepted.
};

/// Answers an offer. Linear in the length of the offer, times the numbers of codecs and suites.
/// Throws only what Policy::random throws.
Answer answer(const Reading& offer, const Policy& policy);

}  // namespace sdp

#endif
