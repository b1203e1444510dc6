// Writes every member of an object as text, including members that no log text shows. Two objects
// with the same description have equal members; with PLACES, they are also the same object.

#ifndef QOVA_TESTS_DESCRIBE_H
#define QOVA_TESTS_DESCRIBE_H

#include <cxxabi.h>

#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <sstream>
#include <string>
#include <typeinfo>

#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "socket/address.h"

enum Places { NO_PLACES, PLACES };

class Dump {
public:
    explicit Dump(Places with_places) : places(with_places) {}

    std::string text() const { return out.str(); }

    void add(const QOVA_Capability& capability) {
        open(capability);
        fields({{"marked", capability.marked},
                {"offer", capability.offer},
                {"hold", capability.hold},
                {"spare1", capability.spare1},
                {"spare2", capability.spare2},
                {"spare3", capability.spare3},
                {"silenceSuppSdp", capability.silenceSuppSdp}});
        out << " passThrough=\"" << capability.passThrough << '"';
        members("filteredMedia", capability.filteredMedia);
    }

    void add(const QOVA_Media& media) {
        open(media);
        fields({{"mediaStatus", media.mediaStatus},
                {"mediaType", media.mediaType},
                {"bsnd", media.bsnd},
                {"brcv", media.brcv},
                {"sndPort", media.sndPort},
                {"rcvPort", media.rcvPort},
                {"sndPort2", media.sndPort2},
                {"rcvPort2", media.rcvPort2},
                {"cryptoCount", media.cryptoCount}});
        member("address", media.address);
        member("amrwbParam", media.amrwbParam);
        member("opusParam", media.opusParam);
        members("attributes", media.attributes);
        members("cryptos", media.cryptos);
    }

    void add(const QOVA_MediaAttribute& attribute) {
        open(attribute);
        fields({{"status", attribute.status}, {"attributeType", attribute.attributeType}});
        if (const auto* audio = dynamic_cast<const QOVA_AudioAttribute*>(&attribute)) {
            fields({{"codec", audio->codec},
                    {"framing", audio->framing},
                    {"vad", audio->vad},
                    {"echo", audio->echo},
                    {"mxFraming", audio->mxFraming},
                    {"mf", audio->mf}});
        } else if (const auto* fax = dynamic_cast<const QOVA_FaxAttribute*>(&attribute)) {
            fields({{"red", fax->red},
                    {"depth", fax->depth},
                    {"mxRate", fax->mxRate},
                    {"rateMgt", fax->rateMgt},
                    {"transport", fax->transport},
                    {"fillBit", fax->fillBit},
                    {"transMMR", fax->transMMR},
                    {"transJBIG", fax->transJBIG},
                    {"mxBuffer", fax->mxBuffer},
                    {"mxDgram", fax->mxDgram},
                    {"errCorr", fax->errCorr}});
        } else if (const auto* data = dynamic_cast<const QOVA_DataAttribute*>(&attribute)) {
            fields({{"type", data->type}});
        }
    }

    void add(const QOVA_Crypto& crypto) {
        open(crypto);
        fields({{"tag", crypto.tag}, {"algo", crypto.algo}});
        for (const QOVA_CryptoKey& key : crypto.keys) {
            out << " key(";
            fields({{"lifetime", key.lifetime}, {"mkiSize", key.mkiSize}});
            bytes("mki", key.mki);
            bytes("key", key.key);
            out << ')';
        }
    }

    void add(const Sdp::Sdp_Amrwb_Param& amrwb) {
        open(amrwb);
        fields({{"octetAlign", amrwb.octetAlign}});
        bytes("modeSet", amrwb.modeSet);
        fields({{"modeChangePeriod", amrwb.modeChangePeriod},
                {"modeChangeCapability", amrwb.modeChangeCapability},
                {"modeChangeNeighbor", amrwb.modeChangeNeighbor},
                {"crc", amrwb.crc},
                {"robustSorting", amrwb.robustSorting},
                {"interleaving", amrwb.interleaving},
                {"channels", amrwb.channels},
                {"maxRed", amrwb.maxRed},
                {"payloadType", amrwb.payloadType}});
    }

    void add(const Sdp::Sdp_Opus_Param& opus) {
        open(opus);
        fields({{"maxPlaybackRate", opus.maxPlaybackRate},
                {"spropMaxCaptureRate", opus.spropMaxCaptureRate},
                {"maxAverageBitrate", opus.maxAverageBitrate},
                {"stereo", opus.stereo},
                {"cbr", opus.cbr},
                {"useInbandFec", opus.useInbandFec},
                {"useDtx", opus.useDtx},
                {"maxPtime", opus.maxPtime},
                {"spropStereo", opus.spropStereo}});
    }

    void add(const INetAddress& address) {
        open(address);
        out << ' ' << address.ToString();
    }

    void add(const UDPAddr& address) {
        open(address);
        fields({{"port", address.port}});
        member("ipAddress", address.ipAddress);
    }

private:
    struct Field {
        const char* name;
        long long value;
    };

    // Starts with the name of the dynamic class.
    template <class Object>
    void open(const Object& object) {
        const std::unique_ptr<char, void (*)(void*)> name(
            abi::__cxa_demangle(typeid(object).name(), nullptr, nullptr, nullptr), std::free);
        out << name.get();
        if (places == PLACES) {
            out << " at " << &object;
        }
    }

    void fields(std::initializer_list<Field> list) {
        for (const Field& field : list) {
            out << ' ' << field.name << '=' << field.value;
        }
    }

    template <class Bytes>
    void bytes(const char* name, const Bytes& values) {
        out << ' ' << name << '=';
        for (const int value : values) {
            out << value << ',';
        }
    }

    template <class Owned>
    void member(const char* name, const Owned* owned) {
        out << '\n' << name << ": ";
        if (owned == nullptr) {
            out << "null";
        } else {
            add(*owned);
        }
    }

    template <class List>
    void members(const char* name, const List& list) {
        out << '\n' << name << ": " << list.size();
        for (const auto* owned : list) {
            member("-", owned);
        }
    }

    Places places;
    std::ostringstream out;
};

template <class Object>
std::string describe(const Object& object, Places places = NO_PLACES) {
    Dump dump(places);
    dump.add(object);
    return dump.text();
}

#endif
