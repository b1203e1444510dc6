#include "cli/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>

#include "sdp/strings.h"

namespace {

struct Close {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using File = std::unique_ptr<std::FILE, Close>;

File checked(std::FILE* stream, const std::string& name) {
    if (stream == nullptr) {
        throw FileError(name, errno);
    }
    return File(stream);
}

mode_t mode_of_new_file() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

void write_to(std::FILE* stream, const std::string& name, const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stream) != text.size() ||
        std::fflush(stream) != 0) {
        throw FileError(name, errno);
    }
}

}  // namespace

FileError::FileError(const std::string& file, int error)
    : std::runtime_error(display_name(file) + ": " + std::generic_category().message(error)) {}

std::string display_name(const std::string& file) {
    return file == "-" ? "standard input" : sdp::printable(file);
}

std::string read_file(const std::string& file) {
    const File opened = file == "-" ? File() : checked(std::fopen(file.c_str(), "rb"), file);
    std::FILE* const stream = opened ? opened.get() : stdin;
    std::string text;
    char buffer[65536];
    while (const std::size_t size = std::fread(buffer, 1, sizeof buffer, stream)) {
        text.append(buffer, size);
    }
    if (std::ferror(stream) != 0) {
        throw FileError(file, errno);
    }
    return text;
}

void write_file(const std::string& file, const std::string& text) {
    struct stat status = {};
    const bool exists = ::stat(file.c_str(), &status) == 0;
    if (exists && !S_ISREG(status.st_mode)) {  // a device or a pipe cannot be replaced
        write_to(checked(std::fopen(file.c_str(), "wb"), file).get(), file, text);
        return;
    }
    // Replaces the file that a symbolic link points to, not the link.
    const std::string target = exists ? std::filesystem::canonical(file).string() : file;
    const mode_t mode = exists ? status.st_mode & 07777 : mode_of_new_file();
    std::string temporary = target + ".XXXXXX";
    const int descriptor = ::mkstemp(temporary.data());
    if (descriptor < 0) {
        throw FileError(file, errno);
    }
    try {
        const File stream = checked(::fdopen(descriptor, "wb"), file);
        write_to(stream.get(), file, text);
        if (::fchmod(descriptor, mode) != 0 || ::fsync(descriptor) != 0 ||
            std::rename(temporary.c_str(), target.c_str()) != 0) {
            throw FileError(file, errno);
        }
    } catch (const FileError&) {
        ::unlink(temporary.c_str());
        throw;
    }
}

void write_output(const std::string& text) {
    write_to(stdout, "standard output", text);
}
