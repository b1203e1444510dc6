// Reads a session description (RFC 4566) into a QOVA_Capability.
//
// Attributes with values are read from their own lines: the parser drops fmtp lines that are broken
// or repeated, and it knows no line numbers.
//
// README.md has the table of what becomes of what.

#ifndef QOVA_TOOLS_SDP_READER_H
#define QOVA_TOOLS_SDP_READER_H

#include <memory>
#include <string>
#include <vector>

#include "qova/capability.h"
#include "qova/crypto.h"
#include "sdp/text.h"

struct sdp_session_s;  // sofia-sip's

namespace sdp {

enum class Role { OFFER, ANSWER };

// A value that the model cannot take: it gets a warning, or the description is refused for it.
enum class Strictness { LENIENT, STRICT };

// A media line, and what the model does not hold of it.
struct ReadLine {
    std::size_t number = 0;  // of its m= line
    std::string kind;        // with the next two, what m= says but for the port, as it came
    std::string transport;
    std::vector<std::string> formats;

    QOVA_Media* media = nullptr;  // the capability's; null: passed through
    bool is_rejected = false;     // port 0
    bool holds = false;           // asks to be sent nothing: by its direction, or its address
    bool suppresses_silence = false;
    std::vector<unsigned> payloads;           // the payload type of each audio attribute
    std::vector<const QOVA_Crypto*> cryptos;  // the media's that need no session parameter
};

struct Reading {
    std::unique_ptr<QOVA_Capability> capability;
    bool suppresses_silence = false;  // all of the session
    std::vector<ReadLine> lines;
    std::vector<Warning> warnings;                 // in the order of the lines; empty when STRICT
    std::shared_ptr<const sdp_session_s> session;  // as sofia-sip's parser has it
};

// Linear in the length of the text. Throws Refusal.
Reading read(const Description& description, Role role, Strictness strictness);

}  // namespace sdp

#endif
