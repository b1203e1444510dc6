// What a call-control application answers to an offer (RFC 3264, section 6).
//
// The answer has the lines of the offer in its order. What a policy accepts:
//
// - audio over RTP/AVP or RTP/AVPF, with those of its codecs that are offered, in the offer's
//   order, and their tone events;
// - the same over RTP/SAVP or RTP/SAVPF with the first crypto line whose suite it has and that
//   needs no session parameter (RFC 4568): the answer keeps its tag and suite, and has a key of its
//   own;
// - T.38 over UDPTL.
//
// At an address of another family or of a multicast group nothing is accepted. Sendonly is answered
// with recvonly, inactive with inactive; an unspecified address (0.0.0.0) asks to be sent nothing,
// too. A rejected line has no address, no ports and no payloads.

#ifndef QOVA_TOOLS_ANSWER_ANSWERER_H
#define QOVA_TOOLS_ANSWER_ANSWERER_H

#include <functional>
#include <memory>
#include <vector>

#include "netconf/sdp.h"
#include "qova/capability.h"
#include "qova/enumerations.h"
#include "sdp/reader.h"
#include "sdp/text.h"
#include "socket/address.h"

namespace sdp {

// Fills key material from the system's random source. Throws std::system_error.
void random_bytes(unsigned char* to, std::size_t size);

struct Policy {
    IPAddress address;  // of the local plan
    std::vector<QOVA_Codec> codecs = {CODEC_G711_ALAW, CODEC_G711_ULAW, CODEC_G723,   CODEC_G729,
                                      CODEC_G729A,     CODEC_G722,      CODEC_G722_2, CODEC_OPUS};
    std::vector<g_crypto_suite> suites = {CS_AES_CM_128_HMAC_SHA1_80, CS_AES_CM_128_HMAC_SHA1_32,
                                          CS_AES_256_CM_HMAC_SHA1_80, CS_AES_256_CM_HMAC_SHA1_32,
                                          CS_AEAD_AES_128_GCM,        CS_AEAD_AES_256_GCM};
    bool fax = true;
    std::function<void(unsigned char* to, std::size_t size)> random = random_bytes;
};

struct Answer {
    std::unique_ptr<QOVA_Capability> capability;  // in the local plan
    std::vector<std::vector<unsigned>> payloads;  // of each line: what is accepted of it
    std::vector<Warning> rejections;              // why lines that were offered are rejected
    bool accepts = false;                         // any line
};

// Throws what the policy's source of random bytes throws.
Answer answer(const Reading& offer, const Policy& policy);

}  // namespace sdp

#endif
