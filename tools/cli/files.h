// Reads, writes and names files.

#ifndef QOVA_TOOLS_CLI_FILES_H
#define QOVA_TOOLS_CLI_FILES_H

#include <stdexcept>
#include <string>

// A file could not be read or written. The message begins with its name.
class FileError : public std::runtime_error {
public:
    FileError(const std::string& file, int error);
};

// Returns the name for messages: printable, and "standard input" for "-".
std::string display_name(const std::string& file);

// Reads a whole file, or standard input for "-". Throws FileError.
std::string read_file(const std::string& file);

// Replaces or creates a file, completely or not at all. Throws FileError.
void write_file(const std::string& file, const std::string& text);

// Writes to standard output. Throws FileError.
void write_output(const std::string& text);

#endif
