#include "Supervisor.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include "BoundedLog.h"
#include "Milestones.h"

extern char **environ;

namespace {

using Clock = std::chrono::steady_clock;

// How long a server may take to say it is ready, and a stopped process to end before SIGKILL.
const int kStartMs = 10000;
const auto kStopGrace = std::chrono::seconds(5);
// After the process ended, how long its output may still come from what it left running.
const auto kDrainAfterExit = std::chrono::seconds(1);
// Between reads of a captured process's output; its pipe is made large enough for what comes.
const auto kReadPause = std::chrono::milliseconds(2);
const int kCapturePipeBytes = 1 << 20;

void Note(const std::string &text)
{
    std::fprintf(stderr, "kelvo-tv-supervisor: %s\n", text.c_str());
}

void ShowFile(const std::string &path)
{
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    std::fputs(text.str().c_str(), stderr);
}

bool MakeFolder(const std::string &path)
{
    std::string partial;
    std::stringstream parts(path);
    for (std::string part; std::getline(parts, part, '/');) {
        partial += part + "/";
        if (mkdir(partial.c_str(), 0755) != 0 && errno != EEXIST)
            return false;
    }
    return true;
}

// What the run cost, for the benchmarks: the process's own CPU time and its peak resident size.
struct Usage {
    double user = -1, system = -1;
    long maxRssKb = -1;
};

// Reaps pid once it has ended, with its usage. The CPU time is read while it is still a zombie:
// fields 14 and 15 of /proc/PID/stat are its own user and system ticks (16 and 17, which wait4
// would add in, belong to the shell and cp of the copy it waited for). wait4's ru_maxrss is the
// largest of the process and those children; the copy's processes are small beside it.
bool ReapedWithUsage(pid_t pid, int &waitStatus, Usage &usage)
{
    siginfo_t info{};
    if (waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT) != 0 || info.si_pid != pid)
        return false;
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    std::string text((std::istreambuf_iterator<char>(stat)), std::istreambuf_iterator<char>());
    size_t close = text.rfind(')');
    if (close != std::string::npos) {
        std::istringstream fields(text.substr(close + 1));
        std::string field;
        const double tick = static_cast<double>(sysconf(_SC_CLK_TCK));
        for (int number = 3; number <= 15 && fields >> field; ++number) {
            if (number == 14)
                usage.user = std::atof(field.c_str()) / tick;
            else if (number == 15)
                usage.system = std::atof(field.c_str()) / tick;
        }
    }
    rusage resources{};
    if (wait4(pid, &waitStatus, 0, &resources) == pid)
        usage.maxRssKb = resources.ru_maxrss;
    return true;
}

int OpenForWriting(const std::string &path, bool truncate)
{
    return open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | (truncate ? O_TRUNC : O_APPEND), 0644);
}

bool ExitedWithin(pid_t pid, Clock::duration limit, int &waitStatus)
{
    Clock::time_point end = Clock::now() + limit;
    do {
        if (waitpid(pid, &waitStatus, WNOHANG) == pid)
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    } while (Clock::now() < end);
    return false;
}

}  // namespace

KelvoSupervisor::KelvoSupervisor(const KelvoSupervisorOptions &options) : m_options(options) {}

KelvoSupervisor::~KelvoSupervisor()
{
    m_StopAll();
}

int KelvoSupervisor::Run()
{
    // A terminal that went away must not end the supervisor before it has stopped its children.
    signal(SIGPIPE, SIG_IGN);
    if (!MakeFolder(m_options.out) || !MakeFolder(m_options.runDir)) {
        Note("cannot make " + m_options.out + " and " + m_options.runDir + ": " + strerror(errno));
        return kSetupFailed;
    }
    if (!m_StartBus())
        return kSetupFailed;
    if (m_options.monitor && !m_StartMonitor())
        return kSetupFailed;
    const std::string &build = m_options.build;
    if (m_options.notify &&
        !m_StartServer("the notification server",
                       {build + "/tools/notify-sim/kelvo-notify-sim", "--record", m_options.out + "/notifications.tsv"},
                       m_options.out + "/notify-sim.log"))
        return kSetupFailed;
    const std::string daemon = build + "/tools/daemon-sim/kelvo-daemon-sim";
    if (m_options.daemon && access(daemon.c_str(), X_OK) != 0) {
        Note("note: no content daemon simulator built (" + daemon + "); running without it");
    } else if (m_options.daemon) {
        std::vector<std::string> argv = {daemon, "--address", m_address, "--record",
                                         m_options.out + "/daemon-requests.jsonl"};
        if (!m_options.fixture.empty())
            argv.insert(argv.end(), {"--fixture", m_options.fixture});
        // A TV whose content daemon does not come up still runs: the system copes without it.
        if (!m_StartServer("the content daemon simulator", argv, m_options.out + "/daemon-sim.log") &&
            m_options.mode == KelvoSupervisorOptions::Mode::Serve)
            return kSetupFailed;
    }
    int status = 0;
    switch (m_options.mode) {
    case KelvoSupervisorOptions::Mode::Run:
        status = m_RunCaptured();
        break;
    case KelvoSupervisorOptions::Mode::Shell:
        status = m_RunShell();
        break;
    case KelvoSupervisorOptions::Mode::Serve:
        status = m_Serve();
        break;
    }
    m_NoteEndedServers();
    m_StopAll();
    return status;
}

bool KelvoSupervisor::m_StartBus()
{
    int fds[2];
    if (pipe(fds) != 0)
        return false;
    const std::string log = m_options.runDir + "/dbus-daemon.log";
    int logFd = OpenForWriting(log, true);
    pid_t pid = m_Spawn({"dbus-daemon", "--config-file=" + m_options.busConfig,
                         "--address=unix:path=" + m_options.runDir + "/bus", "--nofork", "--nopidfile", "--nosyslog",
                         "--print-address=" + std::to_string(fds[1])},
                        m_Environment({}), logFd, fds[1], Kind::Server);
    close(fds[1]);
    if (logFd >= 0)
        close(logFd);
    if (pid > 0)
        m_children.push_back({"dbus-daemon", pid});
    bool ok = pid > 0 && m_ReadLine(fds[0], kStartMs, m_address) && !m_address.empty();
    close(fds[0]);
    if (!ok) {
        Note("the private bus did not come up:");
        ShowFile(log);
    }
    return ok;
}

bool KelvoSupervisor::m_StartServer(const std::string &name, std::vector<std::string> argv, const std::string &log)
{
    int fds[2];
    if (pipe(fds) != 0)
        return false;
    argv.insert(argv.end(), {"--ready-fd", std::to_string(fds[1])});
    int logFd = OpenForWriting(log, true);
    std::vector<std::string> overrides = m_SanitizerEnvironment();
    overrides.push_back("DBUS_SESSION_BUS_ADDRESS=" + m_address);
    // The servers stand in for the TV; their heaps in transparent huge pages keep a large
    // fixture's load (the content daemon's) from spending a third of its time in page faults.
    const char *tunables = getenv("GLIBC_TUNABLES");
    overrides.push_back("GLIBC_TUNABLES=" + std::string(tunables ? tunables : "") + (tunables ? ":" : "") +
                        "glibc.malloc.hugetlb=1");
    pid_t pid = m_Spawn(argv, m_Environment(overrides), logFd, fds[1], Kind::Server);
    close(fds[1]);
    if (logFd >= 0)
        close(logFd);
    std::string line;
    bool ok = pid > 0 && m_ReadLine(fds[0], kStartMs, line) && line == "ready";
    close(fds[0]);
    if (pid > 0)
        m_children.push_back({name, pid, log});
    if (!ok) {
        Note(name + " did not start:");
        ShowFile(log);
        if (pid > 0) {
            m_children.pop_back();
            kill(pid, SIGKILL);
            waitpid(pid, nullptr, 0);
        }
    }
    return ok;
}

bool KelvoSupervisor::m_StartMonitor()
{
    const std::string path = m_options.out + "/dbus-monitor.txt";
    int fd = OpenForWriting(path, true);
    if (fd < 0)
        return false;
    pid_t pid = m_Spawn({"dbus-monitor", "--address", m_address}, m_Environment({}), fd, -1, Kind::Server);
    close(fd);
    if (pid <= 0)
        return false;
    m_children.push_back({"dbus-monitor", pid});
    // dbus-monitor gives no ready signal; its first line (the name it acquired) comes once it
    // watches, so nothing of the run is missed.
    struct stat st {};
    Clock::time_point end = Clock::now() + std::chrono::milliseconds(kStartMs);
    while (Clock::now() < end) {
        if (stat(path.c_str(), &st) == 0 && st.st_size > 0)
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    Note("dbus-monitor did not start");
    return false;
}

int KelvoSupervisor::m_RunCaptured()
{
    std::vector<std::string> argv = m_options.command;
    if (argv.empty())
        argv = {m_options.build + "/util/kelvo-util"};
    int logFd = OpenForWriting(m_options.out + "/kelvo-util.log", true);
    int fds[2];
    if (logFd < 0 || pipe2(fds, O_CLOEXEC) != 0) {
        Note("cannot open " + m_options.out + "/kelvo-util.log: " + strerror(errno));
        return kSetupFailed;
    }
    fcntl(fds[0], F_SETPIPE_SZ, kCapturePipeBytes);  // the default 64 KiB when refused
    pid_t pid = m_Spawn(argv, m_Environment(m_CommandOverrides()), fds[1], -1, Kind::Captured);
    close(fds[1]);
    if (pid <= 0) {
        close(fds[0]);
        close(logFd);
        return kSetupFailed;
    }

    KelvoBoundedLog log(logFd, STDOUT_FILENO, m_options.logLimit, m_options.verbose);
    KelvoMilestones milestones(STDOUT_FILENO, isatty(STDOUT_FILENO) == 1);
    if (m_options.milestones)
        log.ShowMilestones(&milestones);
    Clock::time_point limit = Clock::now() + std::chrono::seconds(m_options.timeout);
    Clock::time_point exitedAt;
    bool timedOut = false, killed = false, exited = false, eof = false;
    int waitStatus = 0;
    Usage usage;
    char buffer[65536];
    while (!(exited && (eof || Clock::now() - exitedAt > kDrainAfterExit))) {
        Clock::time_point now = Clock::now();
        // The limit ends the process's whole group, as timeout(1) does; SIGKILL if it lingers.
        if (!exited && !timedOut && now >= limit) {
            timedOut = true;
            kill(-pid, SIGTERM);
        } else if (!exited && timedOut && !killed && now >= limit + kStopGrace) {
            killed = true;
            kill(-pid, SIGKILL);
        }
        pollfd p = {fds[0], POLLIN, 0};
        if (!eof && poll(&p, 1, 100) > 0) {
            ssize_t n = read(fds[0], buffer, sizeof buffer);
            if (n > 0) {
                log.Take(buffer, static_cast<size_t>(n));
                // A process that logs line by line would otherwise wake this reader on every
                // line, and pay for it in each of its writes; the pipe holds what comes meanwhile.
                if (static_cast<size_t>(n) < sizeof buffer)
                    std::this_thread::sleep_for(kReadPause);
            } else if (n == 0 || errno != EINTR) {
                eof = true;
            }
        } else if (eof) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        if (!exited && ReapedWithUsage(pid, waitStatus, usage)) {
            exited = true;
            exitedAt = Clock::now();
        }
    }
    log.Finish();
    milestones.Finish();
    close(fds[0]);
    close(logFd);

    int status = timedOut ? kTimedOut : m_StatusOf(waitStatus);
    std::ofstream(m_options.out + "/exit-status") << status << "\n";
    std::ofstream(m_options.out + "/kelvo-util.usage") << "user_seconds " << usage.user << "\nsystem_seconds "
                                                       << usage.system << "\nmax_rss_kb " << usage.maxRssKb << "\n";
    m_FlushNotifications();
    return status;
}

int KelvoSupervisor::m_RunShell()
{
    // A command given instead of the interactive shell keeps its output to itself.
    if (m_options.command.empty()) {
        std::printf("kelvo-tv shell: /opt is the TV, the stick is at %s (none with --no-stick);\n"
                    "run 'kelvo-util'; artefacts go to %s; exit to leave.\n",
                    m_options.usbMounts.empty() ? "(none)" : m_options.usbMounts.c_str(), m_options.out.c_str());
        std::fflush(stdout);
    }
    std::vector<std::string> environment = m_CommandOverrides();
    const char *path = getenv("PATH");
    environment.push_back("PATH=" + m_options.build + "/util:" + (path ? path : "/usr/bin:/bin"));
    environment.push_back("PS1=kelvo-tv$ ");
    std::vector<std::string> argv = m_options.command;
    if (argv.empty())
        argv = {"bash", "--norc", "-i"};
    // The shell owns the terminal's keys; the supervisor waits for it.
    struct sigaction ignore {
    }, oldInt{}, oldQuit{};
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGINT, &ignore, &oldInt);
    sigaction(SIGQUIT, &ignore, &oldQuit);
    pid_t pid = m_Spawn(argv, m_Environment(environment), -1, -1, Kind::Interactive);
    int waitStatus = 0;
    while (pid > 0 && waitpid(pid, &waitStatus, 0) < 0 && errno == EINTR) {}
    sigaction(SIGINT, &oldInt, nullptr);
    sigaction(SIGQUIT, &oldQuit, nullptr);
    return pid > 0 ? m_StatusOf(waitStatus) : kSetupFailed;
}

int KelvoSupervisor::m_Serve()
{
    sigset_t stop;
    sigemptyset(&stop);
    sigaddset(&stop, SIGTERM);
    sigaddset(&stop, SIGINT);
    sigaddset(&stop, SIGHUP);
    sigprocmask(SIG_BLOCK, &stop, nullptr);
    std::string line = m_address + "\n";
    int fd = m_options.readyFd >= 0 ? m_options.readyFd : STDOUT_FILENO;
    if (write(fd, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
        return kSetupFailed;
    if (m_options.readyFd >= 0)
        close(m_options.readyFd);
    int signal = 0;
    sigwait(&stop, &signal);
    return 0;
}

// Notify returns once the server has recorded the notification; a call answered after it proves
// that every notification the process posted is on record.
void KelvoSupervisor::m_FlushNotifications() const
{
    if (!m_options.notify)
        return;
    sd_bus *bus = nullptr;
    if (sd_bus_new(&bus) < 0)
        return;
    if (sd_bus_set_address(bus, m_address.c_str()) >= 0 && sd_bus_set_bus_client(bus, 1) >= 0 &&
        sd_bus_start(bus) >= 0) {
        sd_bus_message *reply = nullptr;
        sd_bus_call_method(bus, "org.freedesktop.Notifications", "/org/freedesktop/Notifications",
                           "org.freedesktop.Notifications", "GetServerInformation", nullptr, &reply, "");
        sd_bus_message_unref(reply);
    }
    sd_bus_flush_close_unref(bus);
}

// A server that ended while the process ran (a content daemon whose fixture did not load, say)
// explains what the process saw of it. It is left unreaped for m_StopAll.
void KelvoSupervisor::m_NoteEndedServers() const
{
    for (const Child &child : m_children) {
        siginfo_t info{};
        if (child.log.empty() || waitid(P_PID, static_cast<id_t>(child.pid), &info, WEXITED | WNOHANG | WNOWAIT) != 0 ||
            info.si_pid != child.pid)
            continue;
        Note("note: " + child.name + " ended during the run:");
        ShowFile(child.log);
    }
}

void KelvoSupervisor::m_StopAll()
{
    // All are asked at once, so that the stop takes as long as the slowest, not their sum.
    for (const Child &child : m_children)
        kill(child.pid, SIGTERM);
    while (!m_children.empty()) {
        Child child = m_children.back();
        m_children.pop_back();
        int waitStatus = 0;
        if (!ExitedWithin(child.pid, kStopGrace, waitStatus)) {
            Note(child.name + " did not stop; killing it");
            kill(child.pid, SIGKILL);
            waitpid(child.pid, &waitStatus, 0);
        }
    }
}

std::vector<std::string> KelvoSupervisor::m_Environment(const std::vector<std::string> &overrides) const
{
    std::vector<std::string> environment;
    auto overridden = [&](const std::string &entry) {
        for (const auto &o : overrides)
            if (entry.compare(0, o.find('=') + 1, o, 0, o.find('=') + 1) == 0)
                return true;
        return false;
    };
    for (char **e = environ; *e; ++e)
        if (!overridden(*e))
            environment.emplace_back(*e);
    environment.insert(environment.end(), overrides.begin(), overrides.end());
    return environment;
}

std::vector<std::string> KelvoSupervisor::m_SanitizerEnvironment() const
{
    std::vector<std::string> environment;
    if (!m_options.sanitized)
        return environment;
    // The clock recorder is preloaded ahead of the sanitizer runtime.
    environment.push_back("ASAN_OPTIONS=" + (m_options.asanOptions.empty() ? "" : m_options.asanOptions + ":") +
                          "verify_asan_link_order=0:detect_leaks=1");
    if (!m_options.ubsanOptions.empty())
        environment.push_back("UBSAN_OPTIONS=" + m_options.ubsanOptions);
    return environment;
}

std::vector<std::string> KelvoSupervisor::m_CommandOverrides() const
{
    std::vector<std::string> environment = m_SanitizerEnvironment();
    environment.insert(environment.end(),
                       {"DBUS_SESSION_BUS_ADDRESS=" + m_address, "KELVO_CLOCK_LOG=" + m_options.out + "/clock.log",
                        "LD_PRELOAD=" + m_options.build + "/tools/clock-recorder/libkelvo-clock-recorder.so",
                        "KELVO_USB_MOUNTS=" + m_options.usbMounts});
    return environment;
}

pid_t KelvoSupervisor::m_Spawn(const std::vector<std::string> &argv, const std::vector<std::string> &environment,
                               int out, int keep, Kind kind) const
{
    std::vector<char *> args, env;
    for (const auto &a : argv)
        args.push_back(const_cast<char *>(a.c_str()));
    args.push_back(nullptr);
    for (const auto &e : environment)
        env.push_back(const_cast<char *>(e.c_str()));
    env.push_back(nullptr);
    pid_t pid = fork();
    if (pid > 0 && kind == Kind::Captured)
        setpgid(pid, pid);  // as the child does: the group exists whichever of the two runs first
    if (pid != 0)
        return pid;
    // The child: a clean signal state, the descriptors it is given, nothing else of the supervisor.
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    signal(SIGPIPE, SIG_DFL);
    signal(SIGINT, SIG_DFL);
    signal(SIGQUIT, SIG_DFL);
    if (kind == Kind::Captured)
        setpgid(0, 0);
    if (kind == Kind::Server) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        int null = open("/dev/null", O_RDONLY);
        dup2(null, STDIN_FILENO);
    }
    if (out >= 0) {
        dup2(out, STDOUT_FILENO);
        dup2(out, STDERR_FILENO);
    }
    for (int fd = 3; fd < 1024; ++fd)
        if (fd != keep)
            close(fd);
    execvpe(args[0], args.data(), env.data());
    std::fprintf(stderr, "kelvo-tv-supervisor: cannot run %s: %s\n", args[0], strerror(errno));
    _exit(127);
}

bool KelvoSupervisor::m_ReadLine(int fd, int timeoutMs, std::string &line)
{
    line.clear();
    Clock::time_point end = Clock::now() + std::chrono::milliseconds(timeoutMs);
    for (;;) {
        auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd p = {fd, POLLIN, 0};
        if (left <= 0 || poll(&p, 1, static_cast<int>(left)) <= 0) {
            if (errno == EINTR && left > 0)
                continue;
            return false;
        }
        char c = 0;
        ssize_t n = read(fd, &c, 1);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;  // it ended before it said anything
        if (c == '\n')
            return true;
        line += c;
    }
}

int KelvoSupervisor::m_StatusOf(int waitStatus)
{
    if (WIFEXITED(waitStatus))
        return WEXITSTATUS(waitStatus);
    if (WIFSIGNALED(waitStatus))
        return 128 + WTERMSIG(waitStatus);
    return kSetupFailed;
}
