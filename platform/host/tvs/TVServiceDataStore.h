// The TV simulator's state: the services and the broadcast guide of the simulated set, kept in
// SQLite files where the set's TVS middleware keeps its own data, so that a dump of the
// middleware's folders finds real files.
//
//   <TZ_SYS_DB>/db-tvs-service.db   table "service": one row per service, one column per tag
//   <TZ_SYS_DB>/db-tvs-epg.db       table "event": the broadcast guide, texts in UTF-8
//
// Service tags (the field numbers of TCCriteriaHelper and TCServiceData) and their columns:
//
//   tag  column          meaning
//     1  service_type    1 digital TV, 2 radio, 3 data, 4 analogue TV, 9 virtual (IP)
//     2  source          antenna: 1 air, 2 cable, 3 satellite
//     3  onid            original network id
//     4  tsid            transport stream id
//     5  program_number  MPEG programme number
//     9  rf              1: received over RF (broadcast), 0: delivered otherwise
//    12  service_id      the 64-bit service id (stored as its two's-complement 64-bit value)
//    13  major           major channel number
//    14  minor           minor channel number (analogue services hold none)
//    17  chmap_index     position in the channel map; -1: the service is not in the map
//
// Text tags, kept as BLOBs byte for byte; every service holds them, a NULL column reads as an
// empty text:
//
//   tag  column          meaning
//   179  package_id      app-on-channel services: the application's package id, narrow text that
//                        may hold NUL characters
//   180  extra_data      app-on-channel services: a JSON text in UTF-16, big-endian bytes
//
// A NULL column is a tag the service does not hold: reading it prints the middleware's
// "missing tag" diagnostics, and a condition on it never matches (Where) or always matches
// (WhereNot, since the service does not hold that value).
#ifndef KELVO_PLATFORM_HOST_TVSERVICEDATASTORE_H
#define KELVO_PLATFORM_HOST_TVSERVICEDATASTORE_H

#include <map>
#include <optional>
#include <string>
#include <vector>

struct sqlite3;

struct TCStoredService {
    std::map<int, long long> tags;     // only the tags the service holds
    std::map<int, std::string> texts;  // text tags as stored bytes (UTF-16 texts big-endian)
    std::string name;
};

struct TCStoredEvent {
    unsigned long long serviceId = 0;
    unsigned int eventId = 0;
    long long startTime = 0;
    long long duration = 0;
    std::string language;  // three letters, e.g. "eng"
    std::string title;     // UTF-8
    std::string extendedText;
};

class TCServiceDataStore {
public:
    static constexpr const char *kServiceDbName = "db-tvs-service.db";
    static constexpr const char *kGuideDbName = "db-tvs-epg.db";
    static constexpr const char *kChannelMapDump = "tvs-chms/data/CHMS_Memory_Dump.sqlite";

    // The tag numbers the store keeps, with their column names, in column order.
    static const std::vector<std::pair<int, const char *>> &Tags();
    static const char *ColumnOfTag(int tag);
    // The text tags, with their column names, in column order after the number tags.
    static const std::vector<std::pair<int, const char *>> &TextTags();
    static const char *ColumnOfTextTag(int tag);
    // The one text tag held in UTF-16.
    static constexpr int kTextTag16 = 180;

    // Creates the file (and its folder chain) afresh and writes all rows in one transaction.
    static bool WriteServices(const std::string &path, const std::vector<TCStoredService> &services);
    static bool WriteGuide(const std::string &path, const std::vector<TCStoredEvent> &events);

    // Services in the middleware's listing order.
    static bool ReadServices(const std::string &path, std::vector<TCStoredService> &out);
    // Events of one service whose start lies in [from, to), by start time (the guide keys them by
    // event id itself: sorting them here would cost a sort per service).
    static bool ReadEvents(const std::string &path, unsigned long long serviceId, long long from, long long to,
                           std::vector<TCStoredEvent> &out);
    // Writes the channel map (the services with a map position, in map order) into a new file.
    // A read-only connection with the store's busy timeout, or null (logged).
    static sqlite3 *OpenForReading(const std::string &path) { return m_Open(path, true); }
    static bool WriteChannelMapDump(const std::string &servicePath, const std::string &dumpPath);

    // "eng" -> 0x656E67, the middleware's language code.
    static unsigned int LanguageCode(const std::string &language);
    // UTF-8 to UTF-16 code units in host order; a malformed sequence becomes U+FFFD.
    static std::u16string Utf8ToUtf16(const std::string &text);
    // UTF-8 to the bytes of its UTF-16BE form, as a text tag holds it.
    static std::string Utf8ToUtf16BEBytes(const std::string &text);

    static bool MakeFolders(const std::string &path);  // mkdir -p of every component
    static std::string FolderOf(const std::string &path);

private:
    static sqlite3 *m_Open(const std::string &path, bool readOnly);
    static bool m_Exec(sqlite3 *db, const char *sql);
    static bool m_CreateFresh(const std::string &path, const char *schema, sqlite3 **db);
};

#endif
