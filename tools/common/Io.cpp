// Reading inputs: files, standard input, and small text helpers.
#include "common/Io.h"

#include "common/Errors.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <sys/stat.h>

namespace zuvocli {

std::string readInput(const std::string& path) {
    if (path == "-") {
        std::ostringstream all;
        all << std::cin.rdbuf();
        if (std::cin.bad())
            throw UsageError("cannot read standard input");
        return all.str();
    }
    struct stat info = {};
    if (::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode))
        throw UsageError("cannot read '" + path + "': it is a directory");
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw UsageError("cannot read '" + path + "': " + std::strerror(errno));
    std::string content;
    if (S_ISREG(info.st_mode)) {
        // One allocation of the file's size: captures can be tens of MB.
        content.resize(static_cast<std::size_t>(info.st_size));
        file.read(&content[0], static_cast<std::streamsize>(content.size()));
        content.resize(static_cast<std::size_t>(file.gcount()));
        file.clear(file.rdstate() & ~(std::ios::failbit | std::ios::eofbit));
    }
    content.append(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    if (file.bad())
        throw UsageError("cannot read '" + path + "': read error");
    return content;
}

std::string trim(const std::string& text) {
    static const char* const blanks = " \t\r\n\v\f";
    const std::string::size_type first = text.find_first_not_of(blanks);
    if (first == std::string::npos)
        return std::string();
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

} // namespace zuvocli
