// qova-answer: answers SIP calls as qova-sdp answers descriptions.

#include <cstdlib>

#include "cli/files.h"
#include "cli/options.h"
#include "cli/program.h"
#include "sip/server.h"

namespace {

constexpr char name[] = "qova-answer";

Status run(Options& options) {
    const auto host = sip::host_of(options.listen);
    misuse_if(!host,
              "--listen: invalid URI '" + options.listen + "' (example: " + Options().listen + ")");
    if (!options.local) {
        options.local = sdp::MediaAddress::parse(*host);
    }
    misuse_if(!options.local, "--listen: the host in '" + options.listen +
                                  "' is not a unicast address (use --local)");
    check_families(options);
    sip::Server server({name, options.listen, options.policy(), options.plan(),
                        options.strictness(), options.quiet});
    const std::string uri = server.listen();
    write_output(uri.empty() ? "" : "listening on " + uri + "\n");
    if (!server.run()) {  // the server cannot be destroyed
        std::_Exit(report(name, "some calls did not end"));
    }
    return DONE;
}

}  // namespace

int main(int argc, char** argv) {
    return run_program({name, server_usage(), read_server_options, run}, argc, argv);
}
