// The code of answer.md: reads an SDP offer and answers it.

#include <iostream>
#include <string>
#include <utility>

#include "ownership.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "sdp/reader.h"

namespace {

// [reject]
void reject(QOVA_Media& media) {
    media.mediaStatus = QOVA_Media::MS_REJECTED;
    media.sndPort = media.rcvPort = media.sndPort2 = media.rcvPort2 = 0;
}
// [reject]

// [keep]
// Leaves one payload on a line; the others are freed.
void keep_only(QOVA_Media& media, const QOVA_MediaAttribute* chosen) {
    for (auto it = media.attributes.begin(); it != media.attributes.end();) {
        if (*it == chosen) {
            ++it;
        } else {
            delete *it;
            it = media.attributes.erase(it);
        }
    }
}
// [keep]

// [audio]
// Answers a line with the first of our codecs that it offers.
void answer_audio(QOVA_Media& media, unsigned short port) {
    for (const QOVA_Codec ours : {CODEC_G711_ALAW, CODEC_G711_ULAW}) {
        if (QOVA_AudioAttribute* const chosen = media.find(ours)) {
            keep_only(media, chosen);
            chosen->status = media.mediaStatus = QOVA_Media::MS_ACCEPTED;
            media.sndPort = media.rcvPort = port;
            media.sndPort2 = media.rcvPort2 = static_cast<unsigned short>(port + 1);
            std::swap(media.bsnd, media.brcv);  // sendonly is answered with recvonly
            return;
        }
    }
    reject(media);
}
// [audio]

}  // namespace

int main() {
    // [text]
    const std::string text =
        "v=0\r\n"
        "o=- 1 1 IN IP4 198.51.100.9\r\n"
        "s=-\r\n"
        "c=IN IP4 198.51.100.9\r\n"
        "t=0 0\r\n"
        "m=audio 49170 RTP/AVP 9 8 101\r\n"
        "a=rtpmap:101 telephone-event/8000\r\n"
        "a=ptime:20\r\n"
        "a=sendonly\r\n"
        "m=video 49172 RTP/AVP 99\r\n"
        "a=rtpmap:99 H264/90000\r\n";
    // [text]

    // [read]
    sdp::Reading reading;
    try {
        reading = sdp::read(sdp::Description(text), sdp::Role::OFFER, sdp::Strictness::STRICT);
    } catch (const sdp::Refusal& refusal) {
        std::cerr << "line " << refusal.line << ": " << refusal.what() << '\n';
        return 1;
    }
    const QOVA_Capability& offer = *reading.capability;
    // [read]
    std::cout << static_cast<const std::string&>(offer) << "--\n";

    IPAddress our_address;
    if (!IPAddress::Parse("192.0.2.7", our_address)) {
        return 1;
    }

    // [answer]
    QOVA_Capability answer(offer);  // the same lines in the same order (RFC 3264, section 6)
    answer.offer = false;
    unsigned short port = QOVA_Capability::AUDIO_PORT_BASE;
    for (QOVA_Media* const media : answer.filteredMedia) {
        set_address(*media, our_address);
        if (media->mediaType == QOVA_Media::MT_AUDIO) {
            answer_audio(*media, port);
            port = static_cast<unsigned short>(port + 2);
        } else {
            reject(*media);
        }
    }
    // [answer]
    std::cout << static_cast<const std::string&>(answer) << "--\n";

    // [ask]
    const QOVA_Media* const voice = answer.find(CODEC_G711_ALAW);  // borrowed
    const QOVA_AudioAttribute* const tones = answer.find_mf(static_cast<QOVA_Codec>(101));
    std::cout << "voice on port " << (voice != nullptr ? voice->rcvPort : 0) << '\n'
              << "tones with " << (tones != nullptr ? ToString(tones->codec) : "nothing") << '\n'
              << answer.find(QOVA_Media::MT_VIDEO, QOVA_Media::MS_REJECTED).size()
              << " video line rejected\n"
              << "mute: " << (answer.isMute() ? "yes" : "no") << '\n';
    // [ask]
}
