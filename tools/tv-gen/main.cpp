// kelvo-tv-gen: makes the reference TV (its /opt) and the server metadata its content daemon
// serves, with the expectations a dump of that TV must meet.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "TVGenerator.h"

namespace {
void Usage(FILE *to)
{
    std::fprintf(to,
                 "usage: kelvo-tv-gen --opt DIR --fixture FILE [--services N] [--seed S] [--now T] [--expected DIR]\n"
                 "                    [--edge-service] [--country C]\n"
                 "       kelvo-tv-gen --opt DIR --minimal [--country C]\n"
                 "  --opt DIR       the TV's /opt: services, guide and the middleware's data folders\n"
                 "  --fixture FILE  server metadata for kelvo-daemon-sim --fixture\n"
                 "  --services N    number of TV services (default 240)\n"
                 "  --seed S        seed (default 20261121); the same seed and --now give the same TV\n"
                 "  --now T         the TV's 'now' in seconds since the epoch (default: the current time)\n"
                 "  --expected DIR  where expected.json and expected.db go (default: the fixture's folder)\n"
                 "  --edge-service  one more service with an event starting every second around both ends\n"
                 "                  of the day from --now (its rows depend on when the dump runs)\n"
                 "  --minimal       only the TV's folders, empty: no services, guide, data or fixture\n"
                 "  --country C     the set's country code, which picks the rating table of virtual channels\n"
                 "                  (without it the TV answers 1, a country rated as in the EU)\n");
}

bool Number(const char *text, long long &out)
{
    char *end = nullptr;
    errno = 0;
    long long value = std::strtoll(text, &end, 10);
    if (errno != 0 || end == text || *end != '\0')
        return false;
    out = value;
    return true;
}
}  // namespace

int main(int argc, char **argv)
{
    KelvoTvGenOptions options;
    options.now = static_cast<long long>(std::time(nullptr));
    bool expectedGiven = false;
    bool minimal = false;
    long long country = -1;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        if (arg == "--help" || arg == "-h") {
            Usage(stdout);
            return 0;
        }
        if (arg == "--edge-service") {
            options.edgeService = true;
            continue;
        }
        if (arg == "--minimal") {
            minimal = true;
            continue;
        }
        if (i + 1 >= argc) {
            Usage(stderr);
            return 2;
        }
        const char *value = argv[++i];
        long long n = 0;
        if (arg == "--opt") {
            options.optDir = value;
        } else if (arg == "--fixture") {
            options.fixturePath = value;
        } else if (arg == "--expected") {
            options.expectedDir = value;
            expectedGiven = true;
        } else if (arg == "--services" && Number(value, n) && n > 0 && n <= 4000) {
            options.services = static_cast<int>(n);
        } else if (arg == "--seed" && Number(value, n)) {
            options.seed = static_cast<uint64_t>(n);
        } else if (arg == "--country" && Number(value, n) && n >= 0 && n <= 0xFFFF) {
            country = n;
        } else if (arg == "--now" && Number(value, n) && n > 86400 && n < 4000000000LL - 3LL * 86400) {
            options.now = n;
        } else {
            std::fprintf(stderr, "kelvo-tv-gen: bad option %s %s\n", arg.c_str(), value);
            Usage(stderr);
            return 2;
        }
    }
    if (options.optDir.empty() || (options.fixturePath.empty() && !minimal)) {
        Usage(stderr);
        return 2;
    }
    std::string error;
    bool made = false;
    if (minimal) {
        made = KelvoTvGenerator::MakeLayout(options.optDir, error);
    } else {
        if (!expectedGiven)
            options.expectedDir = TCServiceDataStore::FolderOf(options.fixturePath);
        KelvoTvGenerator generator(options);
        made = generator.Run(error);
    }
    if (made && country >= 0)
        made = KelvoTvGenerator::WriteCountry(options.optDir, static_cast<int>(country), error);
    if (!made) {
        std::fprintf(stderr, "kelvo-tv-gen: %s\n", error.c_str());
        return 1;
    }
    return 0;
}
