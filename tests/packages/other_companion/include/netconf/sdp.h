// SDP parameters that are kept as text, and crypto suites of other numbers.

#ifndef OTHER_COMPANION_NETCONF_SDP_H
#define OTHER_COMPANION_NETCONF_SDP_H

#include <string>

#include "counted.h"

enum g_crypto_suite { SUITE_NONE, SUITE_ROT13 = 13 };

namespace Sdp {

class Sdp_Amrwb_Param {
public:
    virtual ~Sdp_Amrwb_Param() = default;
    operator const std::string() const;

    Counted counted;
    std::string text;
};

class Sdp_Opus_Param {
public:
    virtual ~Sdp_Opus_Param() = default;
    operator const std::string() const;

    std::string text;
    Counted counted;
};

class CryptoParser {
public:
    static std::string enumToAlgo(const g_crypto_suite& suite);
};

}  // namespace Sdp

#endif
