// The command line of qova-sdp.

#ifndef QOVA_EXAMPLES_OPTIONS_H
#define QOVA_EXAMPLES_OPTIONS_H

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "qova/enumerations.h"

struct Options {
    std::string command;  // log, move or answer
    bool help = false;    // then nothing else counts; nor with version
    bool version = false;
    bool answer = false;
    bool strict = false;
    bool back = false;
    bool merge = false;
    bool verbose = false;
    bool fax = true;
    std::optional<std::string> output;
    std::optional<std::string> address;
    std::optional<std::string> local;
    std::optional<std::string> public_address;
    std::optional<std::string> previous;
    std::vector<QOVA_Codec> codecs;  // empty: all
    std::optional<unsigned short> audio_port;
    std::optional<unsigned short> fax_port;
    std::vector<std::string> files;  // "-" is standard input
};

class Misuse : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Reads what follows the program's name. Throws Misuse.
Options read_options(const std::vector<std::string>& arguments);

extern const char usage[];

#endif
