// Files as the program reads, writes and names them.

#ifndef QOVA_TOOLS_CLI_FILES_H
#define QOVA_TOOLS_CLI_FILES_H

#include <stdexcept>
#include <string>

// Why a file could not be read or written; the message begins with its name.
class FileError : public std::runtime_error {
public:
    FileError(const std::string& file, int error);
};

// A text that came from outside, as one line without control characters.
std::string shown(const std::string& text);

// "standard input" for "-".
std::string display_name(const std::string& file);

// Throws FileError, as do the others. "-" is standard input.
std::string read_file(const std::string& file);

// All of it or nothing: a file that stood there stays as it was until the new one is whole.
void write_file(const std::string& file, const std::string& text);

void write_output(const std::string& text);

#endif
