// The frame of both programs: help, version, errors and exit status.

#ifndef QOVA_TOOLS_CLI_PROGRAM_H
#define QOVA_TOOLS_CLI_PROGRAM_H

#include <string>
#include <vector>

#include "cli/options.h"

enum Status { DONE = 0, FAILED = 1, MISUSED = 2 };

struct Program {
    const char* name;
    std::string usage;
    Options (*read_options)(const std::vector<std::string>& arguments);
    Status (*run)(Options& options);
};

// Runs a program: returns its exit status, and reports what it throws.
Status run_program(const Program& program, int argc, char** argv);

// Prints an error on standard error, and returns FAILED.
Status report(const std::string& program, const std::string& message);

#endif
