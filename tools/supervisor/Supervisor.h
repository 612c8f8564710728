// The simulated TV's inside, brought up and down by one process: a private session bus from its
// configuration file, the notification server and the content daemon simulator on it (each
// started with a descriptor on which it says it is ready), optionally dbus-monitor, then one
// process (kelvo-util, a shell or a given command) under a run-time limit, or nothing but the
// bus until a signal ("serve"). Everything is stopped in the reverse order of its start.
#ifndef KELVO_TOOLS_SUPERVISOR_H
#define KELVO_TOOLS_SUPERVISOR_H

#include <string>
#include <vector>

#include <sys/types.h>

struct KelvoSupervisorOptions {
    enum class Mode { Run, Shell, Serve };
    Mode mode = Mode::Run;
    std::string build;      // the build folder: tools/*/ and util/kelvo-util
    std::string busConfig;  // dbus-daemon's configuration file
    std::string runDir = "/run/kelvo-bus";
    std::string out = "/run/kelvo-tv";
    std::string fixture;
    std::string usbMounts;  // KELVO_USB_MOUNTS of the process; empty attaches no stick
    bool notify = true;
    bool daemon = true;
    bool monitor = false;
    bool verbose = false;
    bool milestones = false;  // show the run's milestones instead of its log lines
    bool sanitized = false;
    std::string asanOptions;
    std::string ubsanOptions;
    unsigned timeout = 60;
    unsigned long long logLimit = 64ULL << 20;
    int readyFd = -1;
    std::vector<std::string> command;  // empty: kelvo-util of the build
};

class KelvoSupervisor {
public:
    // Exit status of a run that the supervisor could not bring up.
    static constexpr int kSetupFailed = 70;
    // Exit status of a process stopped by the run-time limit, as timeout(1) has it.
    static constexpr int kTimedOut = 124;

    explicit KelvoSupervisor(const KelvoSupervisorOptions &options);
    ~KelvoSupervisor();
    KelvoSupervisor(const KelvoSupervisor &) = delete;
    KelvoSupervisor &operator=(const KelvoSupervisor &) = delete;

    // Brings everything up, runs the mode, stops everything; the process's exit status, or
    // kSetupFailed.
    int Run();

private:
    struct Child {
        std::string name;
        pid_t pid;
        std::string log = {};  // a server's log, shown when it ends before it is stopped
    };
    // A server: no terminal input, ends with the supervisor. Captured: its own process group,
    // output to the bounded log. Interactive: the terminal as it is.
    enum class Kind { Server, Captured, Interactive };

    bool m_StartBus();
    bool m_StartServer(const std::string &name, std::vector<std::string> argv, const std::string &log);
    bool m_StartMonitor();
    int m_RunCaptured();
    int m_RunShell();
    int m_Serve();
    void m_FlushNotifications() const;
    void m_NoteEndedServers() const;
    void m_StopAll();

    std::vector<std::string> m_Environment(const std::vector<std::string> &overrides) const;
    std::vector<std::string> m_SanitizerEnvironment() const;
    std::vector<std::string> m_CommandOverrides() const;
    pid_t m_Spawn(const std::vector<std::string> &argv, const std::vector<std::string> &environment, int out, int keep,
                  Kind kind) const;
    static bool m_ReadLine(int fd, int timeoutMs, std::string &line);
    static int m_StatusOf(int waitStatus);

    KelvoSupervisorOptions m_options;
    std::string m_address;
    std::vector<Child> m_children;
};

#endif
