// A qova-answer that leaks memory with each call, to show that scripts/load detects it.

#include <cstddef>
#include <list>
#include <string>

#include "answer/answerer.h"
#include "cli/files.h"
#include "cli/options.h"
#include "cli/program.h"
#include "sip/server.h"

namespace {

Status run(Options& options) {
    options.local = sdp::MediaAddress::parse("127.0.0.1");
    sdp::Policy policy = options.policy();
    policy.random = [](unsigned char* to, std::size_t size) {
        static std::list<std::string> never_freed;
        never_freed.emplace_back(2000, 'x');
        sdp::random_bytes(to, size);
    };
    sip::Server server({"leaking-answer", options.listen, policy, {}, options.strictness(), true});
    write_output("listening on " + server.listen() + "\n");
    server.run();
    return DONE;
}

}  // namespace

int main(int argc, char** argv) {
    return run_program({"leaking-answer", "", read_server_options, run}, argc, argv);
}
