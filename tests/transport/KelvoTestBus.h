// A private D-Bus session bus in a temporary folder, with the content daemon simulator on it.
#ifndef KELVO_TESTS_KELVO_TEST_BUS_H
#define KELVO_TESTS_KELVO_TEST_BUS_H

#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

class KelvoTestBus {
public:
    // The simulator starts with the fixture text (its --fixture) and records to Folder()/records.jsonl.
    explicit KelvoTestBus(const std::string& fixture = "{}", bool startDaemon = true);
    ~KelvoTestBus();
    KelvoTestBus(const KelvoTestBus&) = delete;
    KelvoTestBus& operator=(const KelvoTestBus&) = delete;

    bool Ready() const { return !m_address.empty() && (!m_wantDaemon || m_daemon > 0); }
    const std::string& Address() const { return m_address; }
    const std::string& Folder() const { return m_folder; }

    // Points Call (DBUS_SESSION_BUS_ADDRESS) of this process at the bus.
    void UseForCalls() const;

    bool SetScript(const std::string& method, const std::string& entry);
    bool ClearScript();
    bool ClearRecords();
    // (method, argument) of every request the simulator received since the last ClearRecords.
    std::vector<std::pair<std::string, std::string>> Records();
    std::vector<std::string> RecordFileLines() const;

    void StopDaemon();
    // Takes the bus away and reports whether the simulator then ended by itself with status 0.
    bool DaemonExitsWithTheBus(int timeoutMs);

private:
    bool m_Control(const char* member, const char* signature, const std::string& a, const std::string& b,
                   std::string* reply);

    bool m_wantDaemon;
    std::string m_folder;
    std::string m_address;
    pid_t m_bus = -1;
    pid_t m_daemon = -1;
};

#endif
