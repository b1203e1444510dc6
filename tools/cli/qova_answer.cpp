// qova-answer: answers SIP calls as qova-sdp answers descriptions.

#include <algorithm>

#include "cli/files.h"
#include "cli/options.h"
#include "sip/server.h"

int main(int argc, char** argv) {
    return run_program("qova-answer", [&] {
        const Options options = read_server_options({argv + std::min(1, argc), argv + argc});
        if (options.help || options.version) {
            write_output(options.help ? server_usage : version_of("qova-answer"));
        } else {
            SipServer(options).run();
        }
        return DONE;
    });
}
