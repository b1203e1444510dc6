#include "model/generator.h"

#include <algorithm>
#include <iterator>
#include <variant>

#include "socket/address.h"

std::vector<unsigned char> model::random_bytes(std::mt19937& random, std::size_t count) {
    std::vector<unsigned char> bytes(count);
    for (unsigned char& byte : bytes) {
        byte = static_cast<unsigned char>(random() & 0xffU);
    }
    return bytes;
}

unsigned model::Bytes::word() {
    static constexpr unsigned edges[] = {95,    96,    127,        128,        255,
                                         6666,  32000, 65535,      48000,      101,
                                         65536, 99999, 0x7fffffff, 0x80000000, 0xffffffff};
    const unsigned choice = byte();
    if (choice < 128) {
        return choice % (choice < 64 ? 4 : 16);
    }
    if (choice < 248) {
        return edges[choice % std::size(edges)];
    }
    unsigned value = 0;
    for (int i = 0; i < 4; ++i) {
        value = value << 8U | byte();
    }
    return value;
}

std::string model::Bytes::text() {
    std::string result;
    const std::size_t length = below(64);
    while (length <= 40 && result.size() < length) {
        result += static_cast<char>(byte());
    }
    return result;
}

std::string model::Bytes::address() {
    static constexpr const char* known[] = {"0.0.0.0",
                                            "10.0.0.1",
                                            "255.255.255.255",
                                            "::",
                                            "::1",
                                            "2001:db8::1",
                                            "fe80::1:0:0:1",
                                            "::ffff:192.0.2.1",
                                            "2001:db8:1:2:3:4:5:6",
                                            "ff02::fb"};
    const unsigned choice = byte();
    if (choice < 200) {
        return known[choice % std::size(known)];
    }
    std::string result = std::to_string(byte());
    for (int i = 0; i < 3; ++i) {
        result += "." + std::to_string(byte());
    }
    return result;
}

std::size_t model::Bytes::length() {
    const std::size_t choice = byte();
    return choice < 250 ? choice % 4 : choice - 230;
}

void model::Bytes::set(std::list<int>& value) {
    value.resize(length());
    for (int& element : value) {
        set(element);
    }
}

model::Attribute model::any_attribute(Bytes& input) {
    static const decltype(Attribute::payload) kinds[] = {Audio(), Audio(), Audio(), Fax(),
                                                         Fax(),   Video(), Data(),  Stranger()};
    Attribute result;
    result.payload = kinds[input.below(std::size(kinds))];
    result.derived = input.below(16) == 1;
    input.set_some(members(result));
    std::visit([&](auto& payload) { input.set_some(members(payload)); }, result.payload);
    return result;
}

model::Crypto model::any_crypto(Bytes& input) {
    Crypto result;
    result.derived = input.below(16) == 1;
    input.set_some(members(result));
    result.keys.resize(input.below(4));
    for (Key& key : result.keys) {
        input.set_all(members(key));
        for (unsigned char& byte : key.mki) {
            input.set(byte);
        }
        key.key.fill(static_cast<unsigned char>(input.byte()));
    }
    return result;
}

model::Media model::any_media(Bytes& input) {
    Media result;
    result.derived = input.below(4) == 1;
    input.set_some(members(result));
    if (!input.flag()) {  // of a kind and status that there are
        result.type = static_cast<int>(1 + input.below(4));
        result.status = static_cast<int>(input.below(4));
    }
    result.address = input.address();
    if (input.flag()) {
        input.set_some(members(result.amr_wb));
    }
    if (input.flag()) {
        input.set_some(members(result.opus));
    }
    for (std::size_t left = input.length(); left != 0; --left) {
        result.attributes.push_back(any_attribute(input));
    }
    for (std::size_t left = input.length(); left != 0; --left) {
        result.cryptos.push_back(any_crypto(input));
    }
    return result;
}

model::Capability model::any_capability(Bytes& input) {
    Capability result;
    input.set_all(members(result));
    for (std::size_t left = input.length(); left != 0; --left) {
        result.media.push_back(any_media(input));
    }
    return result;
}

void model::fill(QOVA_MediaAttribute& real, Attribute& ideal) {
    set_members(real, ideal);
    std::visit(
        [&](auto& payload) {
            using Class = ClassFor<std::decay_t<decltype(payload)>>;
            set_members(dynamic_cast<Class&>(real), payload);
        },
        ideal.payload);
}

void model::fill(QOVA_Crypto& real, Crypto& ideal) {
    set_members(real, ideal);
    real.keys.clear();
    for (Key& key : ideal.keys) {
        QOVA_CryptoKey entry = {};
        set_members(entry, key);
        std::copy(key.mki.begin(), key.mki.end(), entry.mki);
        std::copy(key.key.begin(), key.key.end(), entry.key);
        real.keys.push_back(entry);
    }
}

void model::set_address(QOVA_Media& real, const std::string& address) {
    auto parsed = std::make_unique<IPAddress>();
    IPAddress::Parse(address, *parsed);
    delete real.address;
    real.address = parsed.release();
}

void model::fill(QOVA_Media& real, Media& ideal) {
    set_members(real, ideal);
    set_address(real, ideal.address);
    set_members(*real.amrwbParam, ideal.amr_wb);
    set_members(*real.opusParam, ideal.opus);
    for (const Attribute& attribute : ideal.attributes) {
        real.attributes.push_back(make(attribute).release());
    }
    for (const Crypto& crypto : ideal.cryptos) {
        real.cryptos.push_back(make(crypto).release());
    }
}

std::unique_ptr<QOVA_MediaAttribute> model::make(Attribute ideal) {
    std::unique_ptr<QOVA_MediaAttribute> real;
    std::visit(
        [&](const auto& payload) {
            real = make_default<ClassFor<std::decay_t<decltype(payload)>>>(ideal.derived);
        },
        ideal.payload);
    fill(*real, ideal);
    return real;
}

std::unique_ptr<QOVA_Crypto> model::make(Crypto ideal) {
    auto real = make_default<QOVA_Crypto>(ideal.derived);
    fill(*real, ideal);
    return real;
}

std::unique_ptr<QOVA_Media> model::make(Media ideal) {
    auto real = make_default<QOVA_Media>(ideal.derived);
    fill(*real, ideal);
    return real;
}

std::unique_ptr<QOVA_Capability> model::make(Capability ideal) {
    auto real = std::make_unique<QOVA_Capability>();
    set_members(*real, ideal);
    for (const Media& media : ideal.media) {
        real->filteredMedia.push_back(make(media).release());
    }
    return real;
}
