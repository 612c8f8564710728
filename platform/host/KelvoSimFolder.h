// The simulated TV's control folder, where a test or a person sets what the set's closed parts
// answer (vconf keys, the product's country, failures of the middleware).
#ifndef KELVO_PLATFORM_HOST_KELVOSIMFOLDER_H
#define KELVO_PLATFORM_HOST_KELVOSIMFOLDER_H

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

// Inside the TV's sandbox /opt is the TV's state folder. KELVO_SIM_FOLDER points a unit test of
// the host platform at a folder of its own instead.
inline std::string KelvoSimFolder()
{
    const char *folder = std::getenv("KELVO_SIM_FOLDER");
    return folder != nullptr ? folder : "/opt/var/kelvo-sim";
}

// The file's text (a setting is short: at most 4 KiB are read); false when it is not a regular
// file that can be read.
inline bool KelvoSimReadFile(const std::string &path, std::string &text)
{
    // Non-blocking, so that a FIFO put in a key's place is refused rather than waited on.
    int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return false;
    struct stat st;
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        close(fd);
        return false;
    }
    text.clear();
    char buffer[256];
    // A setting is a short number; more than a few KiB is not one.
    while (text.size() < 4096) {
        ssize_t n = read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            close(fd);
            return false;
        }
        if (n == 0)
            break;
        text.append(buffer, static_cast<size_t>(n));
    }
    close(fd);
    return true;
}

// A decimal int, white space around it allowed and nothing else.
inline bool KelvoSimParseInt(const std::string &text, int &value)
{
    const char *begin = text.c_str();
    char *end = nullptr;
    errno = 0;
    long parsed = std::strtol(begin, &end, 10);
    if (end == begin || errno != 0 || parsed < INT_MIN || parsed > INT_MAX)
        return false;
    for (; *end != '\0'; ++end) {
        if (*end != ' ' && *end != '\t' && *end != '\n' && *end != '\r')
            return false;
    }
    value = static_cast<int>(parsed);
    return true;
}

#endif
