#include "cli/program.h"

#include <algorithm>
#include <cstdio>
#include <exception>

#include "cli/files.h"
#include "qova/version.h"
#include "sdp/strings.h"

Status run_program(const Program& program, int argc, char** argv) {
    try {
        const std::string version = std::to_string(QOVA_VERSION_MAJOR) + "." +
                                    std::to_string(QOVA_VERSION_MINOR) + "." +
                                    std::to_string(QOVA_VERSION_PATCH);
        Options options = program.read_options({argv + std::min(1, argc), argv + argc});
        if (options.help || options.version) {
            write_output(options.help ? program.usage
                                      : std::string(program.name) + " " + version + "\n");
            return DONE;
        }
        return program.run(options);
    } catch (const Misuse& misuse) {
        report(program.name, std::string(misuse.what()) + " (see " + program.name + " --help)");
        return MISUSED;
    } catch (const std::exception& exception) {
        return report(program.name, exception.what());
    }
}

Status report(const std::string& program, const std::string& message) {
    std::fputs((program + ": " + sdp::printable(message) + "\n").c_str(), stderr);
    return FAILED;
}
