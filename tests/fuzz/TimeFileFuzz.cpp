// The restore sets the clock from the stick's DumpMWDB/time.txt, read by
//
//     while (fscanf(fp, "%ld", &restoreTime.tv_sec) != EOF)
//
// in KelvoUtilDataHandler::RestoreData. That reading sits between a shell copy into the TV's /opt
// and settimeofday, and cannot be called on its own without changing the restore, so a fuzzer
// on this machine cannot run it where it stands. It is run here as written, on a memory stream,
// with one bound: a pass that converts nothing and consumes nothing leaves the stream as it was,
// so every later pass would do the same; such a file is the kept hang (the run-time limit ends
// that restore) and is recognised instead of spun on. Properties:
//  - the loop ends exactly when the file holds nothing but blanks, digits and signs, and then
//    within one pass per byte;
//  - when it ends, the clock is the last number the file holds (a number beyond the range of a
//    long reads as the nearest end of that range), or 0 when it holds none.
#include <sys/time.h>

#include <cctype>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

enum class Outcome { Ends, Spins };

struct Reading {
    Outcome outcome;
    long seconds;
};

// The restore's loop, stopped when a pass leaves the stream where it was.
Reading ReadAsTheRestoreDoes(const std::string &file)
{
    struct timeval restoreTime = {0, 0};
    if (file.empty())  // an empty file is at its end at once (fmemopen takes no empty buffer)
        return {Outcome::Ends, 0};
    FILE *fp = fmemopen(const_cast<char *>(file.data()), file.size(), "r");
    if (fp == nullptr) {
        std::perror("fmemopen");
        std::abort();
    }
    Reading reading{Outcome::Ends, 0};
    size_t passes = 0;
    for (;;) {
        const long before = std::ftell(fp);
        const int converted = std::fscanf(fp, "%ld", &restoreTime.tv_sec);
        if (converted == EOF)
            break;
        if (converted == 0 && std::ftell(fp) == before) {
            reading.outcome = Outcome::Spins;
            break;
        }
        if (++passes > file.size() + 1) {
            std::fprintf(stderr, "time.txt reading: %zu passes over %zu bytes\n", passes, file.size());
            std::abort();
        }
    }
    std::fclose(fp);
    reading.seconds = restoreTime.tv_sec;
    return reading;
}

bool IsNumberText(unsigned char c)
{
    return std::isspace(c) || std::isdigit(c) || c == '+' || c == '-';
}

// The last decimal number of a text of blanks, digits and signs, clamped to the range of a long.
long LastNumber(const std::string &file)
{
    const unsigned long long limit = static_cast<unsigned long long>(LONG_MAX) + 1;  // |LONG_MIN|
    long last = 0;
    size_t i = 0;
    while (i < file.size()) {
        if (std::isspace(static_cast<unsigned char>(file[i]))) {
            ++i;
            continue;
        }
        bool negative = false;
        if (file[i] == '+' || file[i] == '-')
            negative = file[i++] == '-';
        if (i == file.size() || !std::isdigit(static_cast<unsigned char>(file[i])))
            continue;  // a sign without digits converts nothing; the sign is gone
        unsigned long long magnitude = 0;
        for (; i < file.size() && std::isdigit(static_cast<unsigned char>(file[i])); ++i) {
            const unsigned long long digit = static_cast<unsigned long long>(file[i] - '0');
            magnitude = magnitude > (limit - digit) / 10 ? limit : magnitude * 10 + digit;
        }
        if (negative)
            last = magnitude == limit ? LONG_MIN : -static_cast<long>(magnitude);
        else
            last = magnitude >= limit ? LONG_MAX : static_cast<long>(magnitude);
    }
    return last;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string file(reinterpret_cast<const char *>(data), size);
    const Reading reading = ReadAsTheRestoreDoes(file);

    bool numberText = true;
    for (unsigned char c : file)
        numberText = numberText && IsNumberText(c);
    if ((reading.outcome == Outcome::Ends) != numberText) {
        std::fprintf(stderr, "time.txt reading %s on a file that %s only blanks, digits and signs\n",
                     reading.outcome == Outcome::Ends ? "ends" : "spins", numberText ? "holds" : "does not hold");
        std::abort();
    }
    if (reading.outcome == Outcome::Ends && reading.seconds != LastNumber(file)) {
        std::fprintf(stderr, "time.txt reading gives %ld, the file's last number is %ld\n", reading.seconds,
                     LastNumber(file));
        std::abort();
    }
    return 0;
}
