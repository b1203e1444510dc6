// A plain value model of a capability: no pointers, no virtual functions, nothing of the library.
// What the library does with objects, the model does with values; the driver compares the two.
//
// Enumerations are plain numbers here, and an object's place in a list stands for a pointer to it.

#ifndef QOVA_TESTS_MODEL_H
#define QOVA_TESTS_MODEL_H

#include <array>
#include <cstddef>
#include <list>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace model {

struct Audio {
    int codec = 0;
    int framing = 0;
    bool vad = false;
    bool echo = false;
    int max_framing = 0;
    int tone_codec = 0;
};

struct Video {};

struct Fax {
    unsigned redundancy = 0;
    unsigned depth = 0;
    unsigned max_rate = 0;
    int rate_management = 0;
    int transport = 0;
    bool fill_bit = false;
    bool transcode_mmr = false;
    bool transcode_jbig = false;
    unsigned max_buffer = 0;
    unsigned max_datagram = 0;
    unsigned error_correction = 0;
};

struct Data {
    int type = 0;
};

// A kind of attribute that the library does not know, and that keeps the base's equality.
struct Stranger {};

struct Attribute {
    std::variant<Audio, Video, Fax, Data, Stranger> payload;
    int status = 0;
    int type = 0;
    bool derived = false;  // of a class derived from the payload's own, with a text of its own
};

struct Key {
    unsigned lifetime = 0;
    unsigned char mki_size = 0;
    std::array<unsigned char, 8> mki{};
    std::array<unsigned char, 46> key{};
};

struct Crypto {
    unsigned tag = 0;
    int suite = 0;
    std::vector<Key> keys;
    bool derived = false;
};

// Parameter objects are compared by identity: equal numbers stand for the same object. 0 is null.
using Identity = unsigned;
Identity fresh_identity();

struct AmrWb {
    Identity identity = 0;
    int octet_align = 255;
    std::list<int> mode_set = {};
    int mode_change_period = 255;
    int mode_change_capability = 255;
    int mode_change_neighbor = 255;
    int crc = 255;
    int robust_sorting = 255;
    int interleaving = 255;
    int channels = 255;
    int max_red = 255;
    int payload_type = 0;
};

struct Opus {
    Identity identity = 0;
    int max_playback_rate = 0;
    unsigned short max_capture_rate = 0;
    int max_average_bitrate = 0;
    bool stereo = false;
    bool cbr = false;
    bool in_band_fec = false;
    bool dtx = false;
    unsigned short max_ptime = 0;
    bool sends_stereo = false;
};

struct Media {
    int status = 1;
    int type = 0;
    std::vector<Attribute> attributes;
    std::string address = "0.0.0.0";
    bool sends = true;
    bool receives = true;
    unsigned short send_port = 0;
    unsigned short receive_port = 0;
    unsigned short send_port_2 = 0;
    unsigned short receive_port_2 = 0;
    AmrWb amr_wb = {fresh_identity()};
    Opus opus = {fresh_identity()};
    unsigned crypto_count = 0;
    std::vector<Crypto> cryptos;
    bool derived = false;
};

struct Capability {
    std::vector<Media> media;
    bool marked = false;
    bool offer = false;
    std::string pass_through;
    bool hold = false;
    std::array<unsigned char, 3> spare{};
    bool silence_suppression = false;
};

bool equal(const Attribute& left, const Attribute& right);
bool equal(const Crypto& left, const Crypto& right);
bool equal(const Media& left, const Media& right);
bool equal(const Capability& left, const Capability& right);

// What the copy constructor makes: plain, with parameter objects of its own.
Media copied(const Media& source);
// What the virtual clone makes: of the same class.
Media cloned(const Media& source);
Capability copied(const Capability& source);

void assign(Media& target, const Media& source);
void assign(Capability& target, const Capability& source);

// The place of the first match in the list.
using Place = std::optional<std::size_t>;
Place find_codec(const Media& media, int codec);
Place find_transport(const Media& media, int transport);
Place find_tone_codec(const Media& media, int codec);
Place find_attribute(const Media& media, int type, int status);
bool is_mute(const Media& media);

std::vector<std::size_t> find_media(const Capability& capability, int type, int status);
Place find_codec(const Capability& capability, int codec);
Place find_transport(const Capability& capability, int transport);
// The places of the media and of the attribute in it.
std::optional<std::pair<std::size_t, std::size_t>> find_tone_codec(const Capability& capability,
                                                                   int codec);
bool is_mute(const Capability& capability);

void reject(Capability& capability, int type);
void clear_directions(Capability& capability);
void move_to_public(Capability& capability, const std::string& address, unsigned audio_port,
                    unsigned fax_port);
void move_to_local(Capability& capability, const std::string& address, unsigned audio_port,
                   unsigned fax_port);

}  // namespace model

#endif
