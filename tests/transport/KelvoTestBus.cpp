#include "KelvoTestBus.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>

#include <fcntl.h>
#include <json/json.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

namespace {

// Starts argv with fd `keep` left open for it and stderr into `log`; returns the pid.
pid_t Spawn(const std::vector<std::string>& args, int keep, const std::string& log) {
    pid_t pid = fork();
    if (pid != 0) return pid;
    int err = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
    if (err >= 0) dup2(err, 2);
    for (int fd = 3; fd < 256; ++fd) {
        if (fd != keep) close(fd);
    }
    std::vector<char*> argv;
    for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    execvp(argv[0], argv.data());
    _exit(127);
}

// Reads from the pipe until it closes (or the line is complete); the text without the newline.
std::string ReadLine(int fd) {
    std::string text;
    char c;
    while (read(fd, &c, 1) == 1 && c != '\n') text += c;
    return text;
}

void Stop(pid_t& pid) {
    if (pid <= 0) return;
    kill(pid, SIGTERM);
    int status = 0;
    waitpid(pid, &status, 0);
    pid = -1;
}

}  // namespace

KelvoTestBus::KelvoTestBus(const std::string& fixture, bool startDaemon) : m_wantDaemon(startDaemon) {
    const char* tmp = getenv("TMPDIR");
    std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/kelvo-transport-XXXXXX";
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    if (!mkdtemp(buffer.data())) return;
    m_folder = buffer.data();

    // Only what a session bus needs: no service activation, so an absent daemon stays absent.
    std::ofstream(m_folder + "/bus.conf")
        << "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\"\n"
           " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
           "<busconfig><type>session</type><listen>unix:path="
        << m_folder
        << "/bus</listen><auth>EXTERNAL</auth>"
           "<policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
           "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy>"
           "<limit name=\"max_replies_per_connection\">50000</limit>"
           "<limit name=\"max_connections_per_user\">1000</limit>"
           "</busconfig>\n";
    std::ofstream(m_folder + "/fixture.json") << fixture;

    int pipeFds[2];
    if (pipe(pipeFds) != 0) return;
    m_bus = Spawn({"dbus-daemon", "--nofork", "--config-file=" + m_folder + "/bus.conf",
                   "--print-address=" + std::to_string(pipeFds[1])},
                  pipeFds[1], m_folder + "/bus.log");
    close(pipeFds[1]);
    m_address = ReadLine(pipeFds[0]);
    close(pipeFds[0]);
    if (m_address.empty() || !startDaemon) return;

    if (pipe(pipeFds) != 0) return;
    m_daemon = Spawn({KELVO_DAEMON_SIM, "--address", m_address, "--fixture", m_folder + "/fixture.json", "--record",
                      m_folder + "/records.jsonl", "--ready-fd", std::to_string(pipeFds[1])},
                     pipeFds[1], m_folder + "/daemon.log");
    close(pipeFds[1]);
    if (ReadLine(pipeFds[0]) != "ready") Stop(m_daemon);
    close(pipeFds[0]);
}

KelvoTestBus::~KelvoTestBus() {
    Stop(m_daemon);
    Stop(m_bus);
    if (!m_folder.empty()) {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
}

void KelvoTestBus::UseForCalls() const { setenv("DBUS_SESSION_BUS_ADDRESS", m_address.c_str(), 1); }

void KelvoTestBus::StopDaemon() { Stop(m_daemon); }

bool KelvoTestBus::DaemonExitsWithTheBus(int timeoutMs) {
    Stop(m_bus);
    for (int waited = 0; waited < timeoutMs; waited += 10) {
        int status = 0;
        if (waitpid(m_daemon, &status, WNOHANG) == m_daemon) {
            m_daemon = -1;
            return WIFEXITED(status) && WEXITSTATUS(status) == 0;
        }
        usleep(10000);
    }
    return false;
}

bool KelvoTestBus::m_Control(const char* member, const char* signature, const std::string& a, const std::string& b,
                             std::string* reply) {
    sd_bus* bus = nullptr;
    sd_bus_message* answer = nullptr;
    sd_bus_error error = SD_BUS_ERROR_NULL;
    int r = sd_bus_new(&bus);
    if (r >= 0) r = sd_bus_set_address(bus, m_address.c_str());
    if (r >= 0) r = sd_bus_set_bus_client(bus, 1);
    if (r >= 0) r = sd_bus_start(bus);
    const char* destination = "com.halvorn.tv.KelvoDaemon";
    const char* path = "/com/halvorn/tv/KelvoDaemon";
    const char* interface = "com.halvorn.tv.KelvoDaemon.Control";
    if (r >= 0) {
        if (strcmp(signature, "ss") == 0) {
            r = sd_bus_call_method(bus, destination, path, interface, member, &error, &answer, "ss", a.c_str(),
                                   b.c_str());
        } else {
            r = sd_bus_call_method(bus, destination, path, interface, member, &error, &answer, "");
        }
    }
    const char* text = nullptr;
    if (r >= 0 && reply) {
        r = sd_bus_message_read(answer, "s", &text);
        if (r >= 0) *reply = text;
    }
    sd_bus_error_free(&error);
    sd_bus_message_unref(answer);
    sd_bus_flush_close_unref(bus);
    return r >= 0;
}

bool KelvoTestBus::SetScript(const std::string& method, const std::string& entry) {
    return m_Control("SetScript", "ss", method, entry, nullptr);
}

bool KelvoTestBus::ClearScript() { return m_Control("ClearScript", "", "", "", nullptr); }

bool KelvoTestBus::ClearRecords() { return m_Control("ClearRecords", "", "", "", nullptr); }

std::vector<std::pair<std::string, std::string>> KelvoTestBus::Records() {
    std::string text;
    std::vector<std::pair<std::string, std::string>> records;
    if (!m_Control("GetRecords", "", "", "", &text)) return records;
    Json::Value array;
    Json::CharReaderBuilder builder;
    std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    if (!reader->parse(text.data(), text.data() + text.size(), &array, nullptr)) return records;
    for (const auto& record : array) records.emplace_back(record["method"].asString(), record["argument"].asString());
    return records;
}

std::vector<std::string> KelvoTestBus::RecordFileLines() const {
    std::vector<std::string> lines;
    std::ifstream in(m_folder + "/records.jsonl");
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}
