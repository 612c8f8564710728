// kelvo-tv-supervisor: the first process of the simulated TV's sandbox (tools/kelvo-tv), and the
// private bus of the C++ tests and benchmarks (--serve). See Supervisor.h.
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <unistd.h>

#include "KelvoDaemonBus.h"
#include "Supervisor.h"

namespace {

void Usage(FILE *to)
{
    std::fprintf(to,
                 "usage: kelvo-tv-supervisor [OPTIONS] [-- COMMAND [ARGUMENT...]]\n"
                 "Brings up a private D-Bus session bus with the notification server and the content daemon\n"
                 "simulator, runs kelvo-util (or COMMAND, or a shell) under a run-time limit, stops everything.\n"
                 "  --build DIR         build folder of the tools and kelvo-util (default: the one of this binary)\n"
                 "  --bus-config FILE   bus configuration (default: kelvo-bus.conf beside this binary)\n"
                 "  --run-dir DIR       folder of the bus socket and its log (default /run/kelvo-bus)\n"
                 "  --out DIR           artefacts: kelvo-util.log, exit-status, notifications.tsv, clock.log,\n"
                 "                      daemon-requests.jsonl, dbus-monitor.txt (default /run/kelvo-tv)\n"
                 "  --fixture FILE      the content daemon simulator's fixture\n"
                 "  --no-daemon         no content daemon simulator\n"
                 "  --no-notify         no notification server\n"
                 "  --monitor           dbus-monitor of the bus into OUT/dbus-monitor.txt\n"
                 "  --usb-mounts VALUE  KELVO_USB_MOUNTS of the process (default empty: no stick)\n"
                 "  --timeout SECONDS   run-time limit (default 60); exit status 124 when it ends the process\n"
                 "  --log-limit BYTES   output kept in OUT/kelvo-util.log and shown (default 64 MiB)\n"
                 "  --verbose           show debug lines (D/...) too; they are always in the log\n"
                 "  --milestones        show the run's milestones (branch, phases with row counts, result)\n"
                 "                      instead of its log lines; counts update in place on a terminal\n"
                 "  --sanitized         the build uses ASan/UBSan; --asan-options/--ubsan-options TEXT add to\n"
                 "                      the options the processes get\n"
                 "  --shell             an interactive shell instead of kelvo-util\n"
                 "  --serve             run nothing: once all is up, write the bus address and a newline to\n"
                 "                      --ready-fd FD (or standard output), then wait for SIGTERM\n"
                 "  --print-bus-names   the content daemon's bus name, object path, provider and control\n"
                 "                      interfaces as \"key value\" lines, and exit\n");
}

bool Unsigned(const char *text, unsigned long long max, unsigned long long &out)
{
    char *end = nullptr;
    if (*text < '0' || *text > '9')
        return false;
    errno = 0;
    out = std::strtoull(text, &end, 10);
    return errno == 0 && *end == '\0' && out <= max;
}

// The folder of this binary, from /proc.
std::string OwnFolder()
{
    char path[PATH_MAX];
    ssize_t n = readlink("/proc/self/exe", path, sizeof path - 1);
    if (n <= 0)
        return ".";
    std::string self(path, static_cast<size_t>(n));
    return self.substr(0, self.rfind('/'));
}

bool ParseOptions(int argc, char **argv, KelvoSupervisorOptions &options, bool &printNames)
{
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i] != nullptr ? argv[i] : "";
        const char *value = i + 1 < argc ? argv[i + 1] : nullptr;
        unsigned long long n = 0;
        auto take = [&](std::string &out) {
            if (!value)
                return false;
            out = value;
            ++i;
            return true;
        };
        if (arg == "--") {
            options.command.assign(argv + i + 1, argv + argc);
            break;
        }
        if (arg == "--build" || arg == "--bus-config" || arg == "--run-dir" || arg == "--out" || arg == "--fixture" ||
            arg == "--usb-mounts" || arg == "--asan-options" || arg == "--ubsan-options") {
            std::string *target = arg == "--build"          ? &options.build
                                  : arg == "--bus-config"   ? &options.busConfig
                                  : arg == "--run-dir"      ? &options.runDir
                                  : arg == "--out"          ? &options.out
                                  : arg == "--fixture"      ? &options.fixture
                                  : arg == "--usb-mounts"   ? &options.usbMounts
                                  : arg == "--asan-options" ? &options.asanOptions
                                                            : &options.ubsanOptions;
            if (!take(*target))
                return false;
        } else if (arg == "--timeout" && value && Unsigned(value, 86400, n) && n > 0) {
            options.timeout = static_cast<unsigned>(n);
            ++i;
        } else if (arg == "--log-limit" && value && Unsigned(value, 1ULL << 40, n)) {
            options.logLimit = n;
            ++i;
        } else if (arg == "--ready-fd" && value && Unsigned(value, 65535, n)) {
            options.readyFd = static_cast<int>(n);
            ++i;
        } else if (arg == "--no-daemon") {
            options.daemon = false;
        } else if (arg == "--no-notify") {
            options.notify = false;
        } else if (arg == "--monitor") {
            options.monitor = true;
        } else if (arg == "--verbose") {
            options.verbose = true;
        } else if (arg == "--milestones") {
            options.milestones = true;
        } else if (arg == "--sanitized") {
            options.sanitized = true;
        } else if (arg == "--shell") {
            options.mode = KelvoSupervisorOptions::Mode::Shell;
        } else if (arg == "--serve") {
            options.mode = KelvoSupervisorOptions::Mode::Serve;
        } else if (arg == "--print-bus-names") {
            printNames = true;
        } else {
            std::fprintf(stderr, "kelvo-tv-supervisor: bad option %s\n", arg.c_str());
            return false;
        }
    }
    return true;
}

}  // namespace

int main(int argc, char **argv)
{
    if (argc > 1 && (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0)) {
        Usage(stdout);
        return 0;
    }
    KelvoSupervisorOptions options;
    bool printNames = false;
    if (!ParseOptions(argc, argv, options, printNames)) {
        Usage(stderr);
        return 2;
    }
    if (printNames) {
        std::printf("name %s\npath %s\nprovider %s\ncontrol %s\n", KelvoDaemonBus::kBusName,
                    KelvoDaemonBus::kObjectPath, KelvoDaemonBus::kProviderInterface, KelvoDaemonBus::kControlInterface);
        return 0;
    }
    const std::string own = OwnFolder();
    if (options.build.empty())
        options.build = own + "/../..";
    if (options.busConfig.empty())
        options.busConfig = own + "/kelvo-bus.conf";
    KelvoSupervisor supervisor(options);
    return supervisor.Run();
}
