/// @file
/// The enumerations of the media model: voice codecs, fax transports, directions of early media,
/// and the printable names of codecs and directions.
///
/// The numbers are ABI, because public members store them. Every enumeration has the fixed
/// underlying type `int`, so it can store any `int`. The names are short, so the name functions do
/// not allocate.

#ifndef QOVA_ENUMERATIONS_H
#define QOVA_ENUMERATIONS_H

#include <string>

#include "qova/export.h"

/// The voice codec of an audio payload. A dynamic RTP payload type (96 to 127, RFC 3551) whose
/// codec has no enumerator is stored as its number.
enum QOVA_Codec : int {
    CODEC_NIL = 0,        ///< No codec, or one without an enumerator.
    CODEC_G711_ALAW = 1,  ///< G.711 A-law, RTP payload type 8 (PCMA).
    CODEC_G711_ULAW = 2,  ///< G.711 mu-law, RTP payload type 0 (PCMU).
    CODEC_G723 = 3,       ///< G.723.1, RTP payload type 4.
    CODEC_G729 = 4,       ///< G.729, RTP payload type 18.
    CODEC_G729A = 5,      ///< G.729 Annex A.
    CODEC_G711_NIL = 6,   ///< G.711, A-law or mu-law not specified.
    CODEC_G729_NIL = 7,   ///< G.729, annex not specified.
    CODEC_G722 = 8,       ///< G.722, RTP payload type 9.
    CODEC_G722_2 = 9,     ///< G.722.2, that is AMR-WB (RFC 4867).
    CODEC_OPUS = 10       ///< Opus (RFC 7587).
};

/// The transport of a T.38 fax payload (ITU-T T.38 Annex D).
enum QOVA_FaxTransport : int {
    FT_NIL = 0,        ///< Not set.
    FT_T38_UDPTL = 1,  ///< UDPTL over UDP.
    FT_T38_TCP = 2     ///< TPKT over TCP.
};

/// The direction in which media flows before the call is answered, named like the SDP direction
/// attributes (RFC 4566, section 6).
enum QOVA_EarlyMedia : int {
    EM_NIL = 0,       ///< No early media.
    EM_SENDRECV = 1,  ///< Send and receive.
    EM_SENDONLY = 2,  ///< Send only.
    EM_RECVONLY = 3,  ///< Receive only.
    EM_INACTIVE = 4   ///< Neither send nor receive.
};

/// Returns the printable name of a codec: "G711alaw", "OPUS" and so on, "DYN(101)" for the dynamic
/// payload type 101 (96 to 127), or "NIL" for #CODEC_NIL and for any other value.
/// @param codec any value
/// @return the name; at most 8 characters
QOVA_API std::string ToString(QOVA_Codec codec);

/// Returns the SDP keyword of an early-media direction in lower case, "nil" for #EM_NIL, or
/// "unknown???" for any value without an enumerator.
/// @param direction any value
/// @return the keyword; at most 10 characters
QOVA_API std::string ToString(QOVA_EarlyMedia direction);

#endif
