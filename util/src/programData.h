// One programme as the dump database stores it, built from a broadcast guide event of the TV
// middleware or from a remote metadata programme.
#ifndef KELVO_UTIL_PROGRAM_DATA_H
#define KELVO_UTIL_PROGRAM_DATA_H

#include <string>

class TCProgramData;
class FCRemoteProgram;

class KelvoUtilProgramData {
public:
    explicit KelvoUtilProgramData(TCProgramData *event);
    KelvoUtilProgramData(FCRemoteProgram &program, unsigned long long serviceId);
    KelvoUtilProgramData(const KelvoUtilProgramData &) = default;
    // A row is handed by value to the database; its texts move along with it.
    KelvoUtilProgramData(KelvoUtilProgramData &&) noexcept = default;
    KelvoUtilProgramData &operator=(const KelvoUtilProgramData &) = default;
    KelvoUtilProgramData &operator=(KelvoUtilProgramData &&) noexcept = default;
    ~KelvoUtilProgramData();

    unsigned long long ServiceId() const { return m_serviceId; }
    unsigned short EventId() const { return m_eventId; }
    unsigned long Starttime() const { return m_startTime; }
    unsigned long Duration() const { return m_duration; }
    std::string Language() const { return m_language; }
    unsigned short TSID() const { return m_tsid; }
    unsigned short ONID() const { return m_onid; }
    std::string Title() const { return m_title; }
    std::string Description() const { return m_description; }
    unsigned short ActivityId() const { return m_activityId; }
    std::string ProgramSourceId() const { return m_programSourceId; }
    std::string MetaProgramId() const { return m_metaProgramId; }

    void SetLanguageFromTVS(TCProgramData &event);
    void SetTitleFromTVS(const TCProgramData &event);
    void SetDescriptionFromTVS(const TCProgramData &event);
    // Converts big-endian UTF-16 (the middleware's byte order) into UTF-8; `out` keeps whatever
    // was converted before a failure.
    void Unicode2Utf8(char *out, unsigned int outSize, char *in, unsigned int inBytes);

private:
    unsigned long long m_serviceId = 0;
    unsigned short m_eventId = 0;
    unsigned long m_startTime = 0;
    unsigned long m_duration = 0;
    std::string m_language;
    unsigned short m_tsid = 0;
    unsigned short m_onid = 0;
    std::string m_title;
    std::string m_description;
    unsigned short m_activityId = 0;
    std::string m_programSourceId;
    std::string m_metaProgramId;
};

#endif
