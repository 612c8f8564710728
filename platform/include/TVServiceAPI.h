// TVS middleware client: services, programme guide, backup and restore, product information.
#ifndef KELVO_PLATFORM_TVSERVICEAPI_H
#define KELVO_PLATFORM_TVSERVICEAPI_H

#include <list>
#include <map>
#include <string>
#include <vector>

// Prints one line of the middleware's diagnostics (the "ASSERT TAG" lines among them).
void TCApiPrintMessage(const char *format, ...) __attribute__((format(printf, 1, 2)));

// A service query: conditions on field numbers, and the fields to fetch.
class TCCriteriaHelper {
public:
    struct Condition {
        int field;
        long long value;  // wide enough for a 64-bit service id (field 12)
        bool negated;     // WhereNot
    };

    void Where(int field, long long value) { m_conditions.push_back({field, value, false}); }
    void WhereNot(int field, long long value) { m_conditions.push_back({field, value, true}); }
    void Fetch(int field) { m_fetched.push_back(field); }

    const std::vector<Condition> &Conditions() const { return m_conditions; }
    const std::vector<int> &FetchedFields() const { return m_fetched; }

private:
    std::vector<Condition> m_conditions;
    std::vector<int> m_fetched;
};

// A text of the middleware in UTF-16: code units stored big-endian in memory.
using TCString16 = std::basic_string<unsigned short>;

// One service record: values by field number. Reading a field the record does not hold
// prints the middleware's "missing tag" diagnostics and yields 0 (or an empty text).
//
// Most fields are numbers; a few are texts: narrow text (field 179, the package id of an
// app-on-channel service, which may hold NUL characters) and UTF-16 text (field 180, the
// service's extra data, a JSON text).
class TCServiceData {
public:
    TCServiceData() = default;
    virtual ~TCServiceData() = default;

    bool Has(int field) const { return m_fields.count(field) + m_texts.count(field) + m_texts16.count(field) != 0; }
    long long Get(int field) const;
    void Set(int field, long long value) { m_fields[field] = value; }

    std::string GetString(int field) const;
    void SetString(int field, const std::string &text) { m_texts[field] = text; }
    TCString16 GetString16(int field) const;
    // Units already big-endian in memory, as the middleware stores them.
    void SetString16(int field, const TCString16 &text) { m_texts16[field] = text; }

private:
    void m_MissingTag(int field) const;

    std::map<int, long long> m_fields;
    std::map<int, std::string> m_texts;
    std::map<int, TCString16> m_texts16;
};

// One broadcast guide event. Title and extended text are UTF-16 code units stored
// big-endian in memory, the middleware's byte order on every target.
class TCProgramData {
public:
    TCProgramData() = default;
    TCProgramData(const TCProgramData &) = default;
    TCProgramData &operator=(const TCProgramData &) = default;
    virtual ~TCProgramData() = default;

    unsigned long long ServiceId() const { return m_serviceId; }
    unsigned short EventId() const { return m_eventId; }
    unsigned int StartTime() const { return m_startTime; }
    unsigned int Duration() const { return m_duration; }
    // Three characters in the low 24 bits, the first in bits 16 to 23.
    unsigned int Language() const { return m_language; }

    unsigned int TitleLength() const { return static_cast<unsigned int>(m_title.size()); }
    // Copies at most *length units into buffer and sets *length to the units copied.
    bool Title(unsigned short *buffer, unsigned int *length);
    unsigned int ExtendedTextLength() const { return static_cast<unsigned int>(m_extendedText.size()); }
    bool ExtendedText(unsigned short *buffer, unsigned int *length);

    void SetServiceId(unsigned long long v) { m_serviceId = v; }
    void SetEventId(unsigned short v) { m_eventId = v; }
    void SetStartTime(unsigned int v) { m_startTime = v; }
    void SetDuration(unsigned int v) { m_duration = v; }
    void SetLanguage(unsigned int v) { m_language = v; }
    // Units in host order; stored big-endian.
    void SetTitle(const std::u16string &text);
    void SetExtendedText(const std::u16string &text);

private:
    unsigned long long m_serviceId = 0;
    unsigned short m_eventId = 0;
    unsigned int m_startTime = 0;
    unsigned int m_duration = 0;
    unsigned int m_language = 0;
    std::vector<unsigned short> m_title;         // big-endian units
    std::vector<unsigned short> m_extendedText;  // big-endian units
};

class ITVService {
public:
    virtual ~ITVService() = default;
};

class IService : public ITVService {
public:
    // Services matching the criteria, each with the fetched fields; the caller deletes them.
    virtual int FindServiceList(const TCCriteriaHelper &criteria, std::list<TCServiceData *> &out) = 0;
    // The first service matching the criteria, with the fetched fields, into out: 1; no such
    // service (or no service database): a negative number, out untouched.
    virtual int FindService(const TCCriteriaHelper &criteria, TCServiceData &out) = 0;
    // Regenerates the channel-map memory dump (tvs-chms/data/CHMS_Memory_Dump.sqlite).
    virtual int WriteChannelMapMemoryDump() = 0;
};

class IServiceGuide : public ITVService {
public:
    // Events of the service starting in [startTime, startTime + duration), keyed by event id;
    // the caller deletes them. Returns the number of events.
    virtual int FindProgramList(unsigned long long serviceId, unsigned int startTime, unsigned int duration,
                                std::map<unsigned int, TCProgramData *> &out) = 0;
};

class IUtil : public ITVService {
public:
    // > 0 on success.
    virtual int BackupTVSData(const char *folder) = 0;
    virtual int RestoreTVSData(const char *folder) = 0;
};

// The set's product information, read item by item.
enum ESOSpecItem : int {
    SOSPEC_ITEM_COUNTRY = 1  // the country code of the set
};

class ISOSpecApp : public ITVService {
public:
    // The integer item; false when the set does not hold it (value untouched).
    virtual bool GetIntValue(int item, int &value) = 0;
};

class TVServiceAPI {
public:
    static IService *CreateService();
    static IServiceGuide *CreateServiceGuide();
    static IUtil *CreateUtil();
    // The product-information object of a profile into *app (null when there is none); 0 on
    // success. The caller releases it with Destroy.
    static int CreateSOSpecApp(int profile, int flags, ISOSpecApp **app);
    static void Destroy(ITVService *service);
};

#endif
