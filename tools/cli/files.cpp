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

namespace {

struct Close {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using File = std::unique_ptr<std::FILE, Close>;

// A new file beside another, which goes again unless it takes that one's place.
class Replacement {
public:
    explicit Replacement(const std::string& file)
        : target(file), name(file + ".XXXXXX"), descriptor(::mkstemp(name.data())) {
        if (descriptor < 0) {
            throw FileError(target, errno);
        }
    }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;
    ~Replacement() {
        ::close(descriptor);
        if (!is_in_place) {
            ::unlink(name.c_str());
        }
    }

    void write(const std::string& text) {
        for (std::size_t done = 0; done < text.size();) {
            const ssize_t size = ::write(descriptor, text.data() + done, text.size() - done);
            if (size < 0 && errno != EINTR) {
                throw FileError(target, errno);
            }
            done += size < 0 ? 0 : static_cast<std::size_t>(size);
        }
    }

    void take_place(mode_t mode) {
        if (::fchmod(descriptor, mode) != 0 || ::fsync(descriptor) != 0 ||
            std::rename(name.c_str(), target.c_str()) != 0) {
            throw FileError(target, errno);
        }
        is_in_place = true;
    }

private:
    const std::string target;
    std::string name;
    const int descriptor;
    bool is_in_place = false;
};

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

std::string shown(const std::string& text) {
    std::string result = text;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto before = static_cast<unsigned char>(i == 0 ? '\0' : text[i - 1]);
        // U+0080 to U+009F are control characters too.
        if (byte < 0x20 || byte == 0x7f) {
            result[i] = '?';
        } else if (before == 0xc2 && byte >= 0x80 && byte < 0xa0) {
            result.replace(i - 1, 2, "??");
        }
    }
    return result;
}

std::string display_name(const std::string& file) {
    return file == "-" ? "standard input" : shown(file);
}

std::string read_file(const std::string& file) {
    File opened;
    std::FILE* stream = stdin;
    if (file != "-") {
        opened.reset(std::fopen(file.c_str(), "rb"));
        stream = opened.get();
        if (stream == nullptr) {
            throw FileError(file, errno);
        }
    }
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
    if (exists && !S_ISREG(status.st_mode)) {  // nothing can take the place of a device or a pipe
        const File stream(std::fopen(file.c_str(), "wb"));
        if (!stream) {
            throw FileError(file, errno);
        }
        write_to(stream.get(), file, text);
        return;
    }
    const std::filesystem::path target =
        exists ? std::filesystem::canonical(file) : std::filesystem::path(file);  // links stay
    Replacement replacement(target.string());
    replacement.write(text);
    replacement.take_place(exists ? status.st_mode & 07777 : mode_of_new_file());
}

void write_output(const std::string& text) {
    write_to(stdout, "standard output", text);
}
