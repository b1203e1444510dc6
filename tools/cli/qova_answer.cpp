// qova-answer: answers SIP calls as qova-sdp answers descriptions.

#include <cstdlib>

#include "cli/files.h"
#include "cli/options.h"
#include "cli/program.h"
#include "sip/server.h"

namespace {

constexpr char name[] = "qova-answer";

// Completes the options with the host that the server listens at.
void set_local(Options& options) {
    const auto host = sip::host_of(options.listen);
    if (!host) {
        throw Misuse("--listen: invalid URI '" + options.listen +
                     "' (example: " + Options().listen + ")");
    }
    if (!options.local) {
        options.local = sdp::MediaAddress::parse(*host);
    }
    if (!options.local) {
        throw Misuse("--listen: the host in '" + options.listen +
                     "' is not a unicast address (use --local)");
    }
    check_families(options);
}

void announce(sip::Server& server) {
    const std::string contact = server.listen();
    try {
        write_output(contact.empty() ? "" : "listening on " + contact + "\n");
    } catch (...) {
        server.stop();
        server.run();
        throw;
    }
}

Status run(Options& options) {
    set_local(options);
    sip::Server server({name, options.listen, options.policy(), options.plan(),
                        options.strictness(), options.quiet});
    announce(server);
    if (!server.run()) {
        // sofia-sip cannot be freed while it has calls.
        std::_Exit(report(name, "calls that did not end: " + std::to_string(server.open_calls())));
    }
    return DONE;
}

}  // namespace

int main(int argc, char** argv) {
    return run_program({name, server_usage(), read_server_options, run}, argc, argv);
}
