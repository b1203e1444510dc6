/// @file
/// SDP parameters: a small stand-in for the classes of the sibling library libnetconf. libqova
/// uses only what docs/companion.md lists.

#ifndef QOVA_COMPANION_NETCONF_SDP_H
#define QOVA_COMPANION_NETCONF_SDP_H

#include <list>
#include <string>

/// The registered SRTP crypto suites of SDP security descriptions (RFC 4568).
enum g_crypto_suite : int {
    CS_NIL = 0,                    ///< No suite.
    CS_AES_CM_128_HMAC_SHA1_80,    ///< RFC 4568
    CS_AES_CM_128_HMAC_SHA1_32,    ///< RFC 4568
    CS_F8_128_HMAC_SHA1_80,        ///< RFC 4568
    CS_SEED_CTR_128_HMAC_SHA1_80,  ///< RFC 5669
    CS_SEED_128_CCM_80,            ///< RFC 5669
    CS_SEED_128_GCM_96,            ///< RFC 5669
    CS_AES_192_CM_HMAC_SHA1_80,    ///< RFC 6188
    CS_AES_192_CM_HMAC_SHA1_32,    ///< RFC 6188
    CS_AES_256_CM_HMAC_SHA1_80,    ///< RFC 6188
    CS_AES_256_CM_HMAC_SHA1_32,    ///< RFC 6188
    CS_AEAD_AES_128_GCM,           ///< RFC 7714
    CS_AEAD_AES_256_GCM            ///< RFC 7714
};

/// SDP parameters as objects.
namespace Sdp {

/// The AMR-WB format parameters of a media line (RFC 4867, section 8.2). The order of the members
/// is ABI.
class Sdp_Amrwb_Param {
public:
    /// Marks a parameter that was not given.
    enum : int {
        ABSENT = 255  ///< The parameter was not given.
    };

    int octetAlign = ABSENT;            ///< `octet-align`
    std::list<int> modeSet;             ///< `mode-set`; empty when not given
    int modeChangePeriod = ABSENT;      ///< `mode-change-period`
    int modeChangeCapability = ABSENT;  ///< `mode-change-capability`
    int modeChangeNeighbor = ABSENT;    ///< `mode-change-neighbor`
    int crc = ABSENT;                   ///< `crc`
    int robustSorting = ABSENT;         ///< `robust-sorting`
    int interleaving = ABSENT;          ///< `interleaving`
    int channels = ABSENT;              ///< `channels`
    int maxRed = ABSENT;                ///< `max-red`, in milliseconds
    int payloadType = 0;                ///< The RTP payload type; 0 when not given.

    virtual ~Sdp_Amrwb_Param() = default;

    /// Returns the given parameters, the payload type first, as
    /// " AMR-WB(payload-type=98; octet-align=1; mode-set=0,2)".
    /// @return the text; empty if no parameter was given
    /// @throws std::bad_alloc when memory runs out
    operator const std::string() const;
};

/// The Opus format parameters of a media line (RFC 7587, section 6.1). 0 and false stand for a
/// parameter that was not given. The order of the members is ABI.
class Sdp_Opus_Param {
public:
    int maxPlaybackRate = 0;                 ///< `maxplaybackrate`, in Hz
    unsigned short spropMaxCaptureRate = 0;  ///< `sprop-maxcapturerate`, in Hz
    int maxAverageBitrate = 0;               ///< `maxaveragebitrate`, in bit/s
    bool stereo = false;                     ///< `stereo`
    bool cbr = false;                        ///< `cbr`
    bool useInbandFec = false;               ///< `useinbandfec`
    bool useDtx = false;                     ///< `usedtx`
    unsigned short maxPtime = 0;             ///< `maxptime`, in milliseconds
    bool spropStereo = false;                ///< `sprop-stereo`

    virtual ~Sdp_Opus_Param() = default;

    /// Returns the given parameters as " opus(maxplaybackrate=48000; stereo=1)".
    /// @return the text; empty if no parameter was given
    /// @throws std::bad_alloc when memory runs out
    operator const std::string() const;
};

/// The names of crypto suites.
class CryptoParser {
public:
    /// Returns the SDP name of a suite.
    /// @param suite any value
    /// @return the registered name; "NIL" for #CS_NIL and for any value without an enumerator
    /// @throws std::bad_alloc when memory runs out
    static std::string enumToAlgo(const g_crypto_suite& suite);

    /// Returns the suite with an SDP name, the inverse of enumToAlgo().
    /// @param name a registered name; case-sensitive
    /// @return the suite; #CS_NIL for any other text
    static g_crypto_suite algoToEnum(const std::string& name);
};

}  // namespace Sdp

#endif
