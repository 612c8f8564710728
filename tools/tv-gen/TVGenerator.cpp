#include "TVGenerator.h"

#include <sqlite3.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <map>
#include <memory>
#include <set>

namespace {
const long long kDay = 86400;
// No guide event and no server programme starts in the first kQuiet seconds after "now" or after
// "now" + one day: a dump that starts up to kQuiet seconds after the TV was made exports exactly
// the same rows as one that starts at "now".
const long long kQuiet = 1800;

const char *const kAppRoot = "/usr/home/owner/apps_rw";
const char *const kRwApp = "/usr/globalapps";
const char *const kSysDb = "/dbspace";
const char *const kDaemonData = "/usr/home/owner/apps_rw/com.halvorn.tv.kelvo-daemon/data";

// The folders a set has under /opt whether or not they hold data, and the TV simulator's control
// folder.
const char *const kLayout[] = {
    "/dbspace",
    "/var/kelvo-sim",
    "/usr/home/owner/apps_rw/com.halvorn.tv.kelvo-daemon/data",
    "/usr/home/owner/apps_rw/com.halvorn.tv.kelvo-daemon/shared/kelvo/data",
    "/usr/home/owner/apps_rw/org.tizen.content-tiles-provider/data",
    "/usr/home/owner/apps_rw/ContentServiceManager/data",
    "/usr/globalapps/esg-service/data",
    "/usr/globalapps/tvs-chms/data",
    "/usr/globalapps/tvs-iss/data",
    "/usr/globalapps/tvs-sospec/data",
    "/usr/globalapps/tvs-guide/data",
    "/usr/globalapps/reminder/data",
};

struct Language {
    const char *code;  // the middleware's three letters
    const char *meta;  // the server's code
    std::vector<std::string> titles;
    std::vector<std::string> texts;
};

// Broadcast texts in several languages and scripts, with the characters that a dump must carry
// through unharmed or store by its quoting rule: apostrophes, "%%" and "%s", and characters
// outside the Basic Multilingual Plane (surrogate pairs in the middleware's UTF-16).
const std::vector<Language> &Languages()
{
    static const std::vector<Language> languages = {
        {"eng",
         "en",
         {"Evening News", "The Chef's Table", "100%% Natural", "The %s Quiz Hour", "Music 𝄞 Hall",
          "Late Night with Sam O'Neil", "Wildlife Diaries", "Movie Night 🎬"},
         {"Headlines, weather and sport from around the region.", "Tonight's guest cooks a five-course dinner.",
          "A documentary that is 50%% fact and 50%% legend.", "Contestants fill in the %s blanks.",
          "Live from the concert hall: Bach's cello suites."}},
        {"deu",
         "de",
         {"Tagesschau", "Tatort: Schöne Grüße", "Die Sendung mit der Maus", "Straßenfeger"},
         {"Nachrichten und Wetter für Österreich und die Schweiz.", "Kommissarin Lürsen ermittelt in Bremen.",
          "Lach- und Sachgeschichten für Kinder."}},
        {"fra",
         "fr",
         {"Journal de 20 h – Météo", "L'Île mystérieuse", "Des chiffres et des lettres"},
         {"L'actualité du jour, présentée en direct.", "Une aventure d'après Jules Verne : « naufragés »."}},
        {"kor",
         "ko",
         {"뉴스 9", "런닝맨", "한국인의 밥상 🍚"},
         {"오늘의 주요 뉴스와 날씨를 전해 드립니다.", "전국의 맛있는 밥상을 찾아 떠나는 여행."}},
        {"jpn",
         "ja",
         {"ニュースウオッチ9", "きょうの料理", "𠮷野家の一日"},
         {"全国と世界の最新ニュースをお伝えします。", "旬の食材を使った簡単レシピ。"}},
        {"spa",
         "es",
         {"Noticias del día", "¿Quién quiere ser millonario?", "El 100%% de la verdad"},
         {"Resumen informativo con la información más relevante.", "Concurso de preguntas y respuestas."}},
        {"rus",
         "ru",
         {"Время", "Что? Где? Когда?"},
         {"Информационная программа Первого канала.", "Интеллектуальная игра знатоков."}},
        {"ell", "el", {"Ειδήσεις", "Το Καφέ της Χαράς"}, {"Οι ειδήσεις της ημέρας.", "Κωμική σειρά."}},
    };
    return languages;
}

const std::vector<std::string> &ChannelNames()
{
    static const std::vector<std::string> names = {"Halvorn One", "Metro News", "Cine+",       "Sportline",
                                                   "KidsZone",    "Arte Nord",  "Radio Fjord", "Klassik FM",
                                                   "Doku24",      "Weather Now"};
    return names;
}

const std::vector<long long> &Durations()
{
    static const std::vector<long long> durations = {900, 1800, 1800, 2700, 3600, 3600, 5400, 7200};
    return durations;
}

std::string W3CTime(long long seconds)
{
    time_t t = static_cast<time_t>(seconds);
    struct tm tm {};
    gmtime_r(&t, &tm);
    char text[32];
    strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &tm);
    return text;
}

bool WriteText(const std::string &path, const std::string &content)
{
    if (!TCServiceDataStore::MakeFolders(TCServiceDataStore::FolderOf(path)))
        return false;
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << content;
    return static_cast<bool>(out);
}

bool WriteJson(const std::string &path, const Json::Value &value)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = " ";
    return WriteText(path, Json::writeString(builder, value) + "\n");
}

struct Database {
    sqlite3 *db = nullptr;
    ~Database() { sqlite3_close(db); }
    bool Create(const std::string &path)
    {
        if (!TCServiceDataStore::MakeFolders(TCServiceDataStore::FolderOf(path)))
            return false;
        std::remove(path.c_str());
        return sqlite3_open(path.c_str(), &db) == SQLITE_OK;
    }
    bool Exec(const std::string &sql) { return sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK; }
};

// A small database of an application's own, so the dump finds a real SQLite file there.
bool WriteAppDatabase(const std::string &path, const std::string &owner)
{
    Database d;
    return d.Create(path) && d.Exec("CREATE TABLE info(key TEXT PRIMARY KEY, value TEXT);") &&
           d.Exec("INSERT INTO info VALUES ('owner', '" + owner + "'), ('schema', '3');");
}

const char *const kRfTable =
    "CREATE TABLE programRF(serviceId integer, eventId integer, starttime integer, duration integer, "
    "language text, tsid integer, onid integer, title text, descript text);";
const char *const kMetaTable =
    "CREATE TABLE programMETA(serviceId integer, actId integer, metaSrcId integer, metaProgId integer, "
    "starttime integer, duration integer, language text, title text, descript text);";

std::string Quoted(const std::string &text)
{
    std::string out = "'";
    for (char c : text)
        out += c == '\'' ? std::string("''") : std::string(1, c);
    return out + "'";
}
}  // namespace

uint64_t KelvoTvGenRandom::Next()
{
    uint64_t z = (m_state += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}

uint32_t KelvoTvGenRandom::Below(uint32_t bound)
{
    return bound == 0 ? 0 : static_cast<uint32_t>(Next() % bound);
}

KelvoTvGenerator::KelvoTvGenerator(const KelvoTvGenOptions &options) : m_options(options), m_random(options.seed) {}

std::string KelvoTvGenerator::StoredText(const std::string &text)
{
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (c == '\'') {
            out += '"';
        } else if (c != '%' || i + 1 == text.size()) {
            out += c;
        } else if (text[i + 1] == '%') {
            out += '%';
            ++i;
        } else {
            size_t j = i + 1;
            while (j < text.size() && std::string("-+ #0!,'").find(text[j]) != std::string::npos)
                ++j;
            while (j < text.size() && (std::isdigit(static_cast<unsigned char>(text[j])) || text[j] == '*' ||
                                       text[j] == '.' || text[j] == 'l' || text[j] == 'h'))
                ++j;
            i = j < text.size() ? j : text.size() - 1;
        }
    }
    return out;
}

bool KelvoTvGenerator::IsExported(const TCStoredService &service)
{
    auto chmap = service.tags.find(17);
    auto rf = service.tags.find(9);
    return (chmap == service.tags.end() || chmap->second != -1) && rf != service.tags.end() && rf->second == 1;
}

void KelvoTvGenerator::m_MakeServices()
{
    int major = 2;
    int minor = 0;
    int chmap = 0;
    for (int i = 0; i < m_options.services; ++i) {
        uint32_t roll = m_random.Below(100);
        // type, RF, in the channel map, channel type of the id
        int type = 1, rf = 1, channelType = 1;
        bool inMap = true;
        if (roll >= 62 && roll < 78) {
            type = 2;
            channelType = 2;
        } else if (roll >= 78 && roll < 83) {
            type = 3;
        } else if (roll >= 83 && roll < 88) {
            type = 4;
            channelType = 3;
        } else if (roll >= 88 && roll < 95) {
            type = 9;
            rf = 0;
            channelType = 9;
        } else if (roll >= 95) {
            inMap = false;  // a service the viewer deleted from the channel map
        }
        if (type == 4 || m_random.Percent(40) || minor >= 9) {
            major += 1 + static_cast<int>(m_random.Below(3));
            minor = 0;
        }
        ++minor;
        TCStoredService service;
        int source = 1 + static_cast<int>(m_random.Below(3));
        int program = 1 + static_cast<int>(m_random.Below(9000));
        unsigned long long id =
            static_cast<unsigned long long>(minor) | (static_cast<unsigned long long>(major) << 10) |
            (static_cast<unsigned long long>(program) << 23) | (static_cast<unsigned long long>(i + 1) << 45) |
            (static_cast<unsigned long long>(channelType) << 60);
        service.tags[1] = type;
        service.tags[2] = source;
        service.tags[3] = 0x2000 + source;
        service.tags[4] = 1000 + major;
        service.tags[5] = program;
        service.tags[9] = rf;
        service.tags[12] = static_cast<long long>(id);
        service.tags[13] = major;
        if (type != 4)  // analogue services have no minor number
            service.tags[14] = minor;
        service.tags[17] = inMap ? chmap++ : -1;
        service.name = ChannelNames()[static_cast<size_t>(i) % ChannelNames().size()] + " " + std::to_string(i + 1);
        m_services.push_back(service);
    }
}

void KelvoTvGenerator::m_MakeGuide()
{
    const long long now = m_options.now;
    if (m_options.edgeService) {
        TCStoredService edge = m_services.back();  // a copy of the last service, in the map and on RF
        unsigned long long id = (static_cast<unsigned long long>(m_services.size() + 1) << 45) | (1ull << 60) | 999;
        edge.tags[1] = 1;
        edge.tags[9] = 1;
        edge.tags[12] = static_cast<long long>(id);
        edge.tags[14] = 1;
        edge.tags[17] = 100000;
        edge.name = "Edge Test";
        m_services.push_back(edge);
        unsigned int eventId = 1;
        for (long long from : {now - 60, now + kDay - 60})
            for (long long start = from; start < from + 300; ++start) {
                TCStoredEvent e;
                e.serviceId = id;
                e.eventId = eventId++;
                e.startTime = start;
                e.duration = 1;
                e.language = "eng";
                e.title = "Second " + std::to_string(start - now);
                e.extendedText = "An event of one second.";
                m_events.push_back(e);
            }
    }
    for (size_t s = 0; s < static_cast<size_t>(m_options.services); ++s) {
        const TCStoredService &service = m_services[s];
        long long type = service.tags.at(1);
        if (type == 3 || !m_random.Percent(90))
            continue;  // data services and a few others broadcast no guide
        const Language &language = m_random.Pick(Languages());
        unsigned int eventId = 1 + m_random.Below(60000);
        long long start = now - 600 - m_random.Below(3000);
        bool first = true;
        while (start < now + kDay + 3LL * 3600) {
            long long duration = m_random.Pick(Durations());
            if (first && start + duration < now + kQuiet)
                duration = ((now + kQuiet - start) / 900 + 1) * 900;
            long long next = start + duration;
            if (next >= now + kDay && next < now + kDay + kQuiet) {
                duration += now + kDay + kQuiet - next;
                next = now + kDay + kQuiet;
            }
            TCStoredEvent e;
            e.serviceId = static_cast<unsigned long long>(service.tags.at(12));
            e.eventId = eventId;
            e.startTime = start;
            e.duration = duration;
            e.language = language.code;
            e.title = m_random.Pick(language.titles);
            e.extendedText = m_random.Pick(language.texts);
            if (m_random.Percent(30))
                e.extendedText += " (" + std::to_string(1 + m_random.Below(40)) + "/40)";
            m_events.push_back(e);
            eventId = (eventId + 1) % 65536;
            start = next;
            first = false;
        }
    }
}

void KelvoTvGenerator::m_MakeSources()
{
    const long long now = m_options.now;
    std::set<std::string> used;
    auto newId = [&]() {
        for (;;) {
            uint32_t digits = 4 + m_random.Below(3);
            uint32_t low = digits == 4 ? 1000 : digits == 5 ? 10000 : 100000;
            std::string id = std::to_string(low + m_random.Below(low * 9));
            if (used.insert(id).second)
                return id;
        }
    };
    for (const auto &service : m_services) {
        long long type = service.tags.at(1);
        if ((type == 1 || type == 9) && m_random.Percent(75)) {
            KelvoTvGenSource source;
            source.id = newId();
            source.serviceId = std::to_string(static_cast<unsigned long long>(service.tags.at(12)));
            source.service = &service;
            m_sources.push_back(source);
        }
    }
    // Channels the server knows and the TV does not receive.
    int unmatched = std::max(3, m_options.services / 20);
    for (int i = 0; i < unmatched; ++i) {
        KelvoTvGenSource source;
        source.id = newId();
        m_sources.push_back(source);
    }
    for (size_t s = 0; s < m_sources.size(); ++s) {
        KelvoTvGenSource &source = m_sources[s];
        const Language &language = m_random.Pick(Languages());
        std::string channelNumber =
            source.service ? std::to_string(source.service->tags.at(13)) + "-" +
                                 std::to_string(source.service->tags.count(14) ? source.service->tags.at(14) : 0)
                           : std::to_string(500 + s);
        // The last source has nothing in the coming day: the server sends it no programmes.
        long long start = s + 1 == m_sources.size() ? now + kDay + kQuiet + 3600 : now + kQuiet + m_random.Below(1800);
        long long end = s + 1 == m_sources.size() ? start + 7200 : now + kDay + kQuiet + 7200;
        int number = 0;
        while (start < end) {
            long long duration = m_random.Pick(Durations());
            if (start < now + kDay && start + duration >= now + kDay)
                duration = now + kDay + kQuiet - start;
            Json::Value p(Json::objectValue);
            p["activityID"] = 0;
            p["program source id"] = source.id;
            p["channel name"] = source.service ? source.service->name : "Stream " + source.id;
            p["channel number"] = channelNumber;
            p["program id"] = "EP" + source.id + std::to_string(1000 + number++);
            p["lang"] = language.meta;
            p["start time"] = W3CTime(start);
            p["utc start time"] = static_cast<Json::UInt>(start);
            p["duration"] = static_cast<Json::Int>(duration);
            p["title"] = m_random.Pick(language.titles);
            p["cert flag"] = m_random.Pick(std::vector<std::string>{"TV-G", "TV-PG", "TV-14"});
            Json::Value genres(Json::arrayValue);
            genres.append(m_random.Pick(std::vector<std::string>{"news", "movies", "sports", "kids", "music"}));
            p["genre array"] = genres;
            p["poster url"] =
                "https://img.halvorn.example/posters/" + source.id + "/" + std::to_string(number) + ".jpg";
            p["poster type"] = "banner";
            p["poster overlay"] = "";
            p["poster index"] = std::to_string(number % 4);
            p["short desc"] = p["title"].asString();
            p["desc"] = m_random.Pick(language.texts);
            p["series"] = "SH" + source.id;
            p["EndTime"] = static_cast<Json::UInt>(start + duration);
            p["IsRF"] = source.service != nullptr;
            source.programmes.append(p);
            start += duration;
        }
    }
}

namespace {

// UTC date-time without zone, as the streaming service's schedules carry it.
std::string ScheduleTime(long long seconds)
{
    time_t t = static_cast<time_t>(seconds);
    struct tm tm = {};
    gmtime_r(&t, &tm);
    char text[32];
    strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &tm);
    return text;
}

// The streaming service's virtual channels on the first virtual services of the TV, with a
// schedule from three hours before "now" to a day after it. Slots of the "CIRCLE" channels play a
// playlist of two to four items that fills the slot; the "LIVE" channel's slots are one stream. A
// generator of their own keeps everything else the TV holds as it was.
void AddVirtualChannels(const std::vector<TCStoredService> &services, const KelvoTvGenOptions &options,
                        Json::Value &fixture)
{
    const int kChannels = 4;
    const char *const kTitles[] = {"Ocean Worlds", "Retro Arcade Hour", "Nordic Kitchen", "Night Drive",
                                   "Alpine Rail",  "Cartoon Classics",  "Jazz at Nine",   "Storm Chasers"};
    KelvoTvGenRandom random(options.seed ^ 0x7654321ull);
    Json::Value &channels = fixture["virtualChannels"] = Json::Value(Json::arrayValue);
    int made = 0;
    for (const auto &service : services) {
        if (made == kChannels)
            break;
        if (service.tags.at(1) != 9)
            continue;
        const int n = made++;
        const bool live = n == 2;
        Json::Value c(Json::objectValue);
        c["TCServiceId"] = std::to_string(static_cast<unsigned long long>(service.tags.at(12)));
        c["name"] = "Halvorn " + service.name;
        c["onTvProviderId"] = "halvorn-tvlume";
        c["onTvServiceId"] = "vc-" + std::to_string(n + 1);
        for (const char *size : {"small", "medium", "large"})
            c["logos"].append("https://img.halvorn.example/vc/" + std::to_string(n + 1) + "/logo-" + size + ".png");
        Json::Value &programs = c["programs"] = Json::Value(Json::arrayValue);
        long long start = options.now - 3 * 3600 + 60LL * random.Below(60);
        for (int k = 0; start < options.now + kDay; ++k) {
            const long long duration = 1800LL * (1 + random.Below(3));
            const std::string id = "VC" + std::to_string(n + 1) + "-" + std::to_string(1000 + k);
            Json::Value p(Json::objectValue);
            p["id"] = id;
            p["starttime"] = ScheduleTime(start);
            p["duration"] = static_cast<Json::UInt>(duration);
            p["relative_offset"] = -1;
            p["playlist_item_index"] = -1;
            p["title"] = kTitles[random.Below(8)];
            p["content_type"] = live ? "LIVE" : "CIRCLE";
            p["content_uri"] = "https://stream.halvorn.example/vc/" + id + (live ? "/live.m3u8" : "");
            p["short_desc"] = p["title"].asString() + ", part " + std::to_string(1 + random.Below(12));
            p["poster"]["url"] = "https://img.halvorn.example/vc/posters/" + id + ".jpg";
            p["poster"]["index"] = std::to_string(k % 4);
            p["rating"] = random.Pick(std::vector<std::string>{"7", "12", "16"});
            p["ratings"] = p["rating"];
            p["sequence"] = k;
            p["thumbnail"] = "https://img.halvorn.example/vc/thumbs/" + id + ".jpg";
            p["background"] = "https://img.halvorn.example/vc/backgrounds/" + id + ".jpg";
            Json::Value &playlist = p["group_play_list"] = Json::Value(Json::arrayValue);
            const int items = live ? 0 : 2 + static_cast<int>(random.Below(3));
            long long left = duration;
            for (int i = 0; i < items; ++i) {
                const long long length = i + 1 == items ? left : (left / (items - i)) - 60 * random.Below(5);
                left -= length;
                Json::Value item(Json::objectValue);
                item["order"] = i + 1;
                item["id"] = id + "-" + std::to_string(i + 1);
                item["title"] = p["title"].asString() + " " + std::to_string(i + 1) + "/" + std::to_string(items);
                item["content_uri"] = "https://stream.halvorn.example/vc/" + id + "/" + std::to_string(i + 1) + ".m3u8";
                item["duration"] = static_cast<Json::UInt>(length);
                item["subtitle"]["url"] =
                    "https://stream.halvorn.example/vc/" + id + "/" + std::to_string(i + 1) + ".vtt";
                item["subtitle"]["lang_order_index"] = "0";
                playlist.append(item);
            }
            programs.append(p);
            start += duration;
        }
        channels.append(c);
    }
    Json::Value &tvlume = fixture["tvlume"] = Json::Value(Json::objectValue);
    tvlume["appID"] = "com.halvorn.tvlume";
    tvlume["url"] = "https://tvlume.halvorn.example/app/index.html";
    tvlume["version"] = "3.2.0";
    tvlume["dataServiceType"] = 1;
    tvlume["deepLink"] = "tvlume://channel/vc-1";
    tvlume["previewData"]["channels"] = static_cast<int>(channels.size());
    tvlume["previewData"]["banner"] = "Free streaming channels";
    for (int rating : {4, 8, 12}) {
        Json::Value r(Json::objectValue);
        r["rating_system"] = 8;
        r["rating"] = rating;
        r["vsld"] = 0;
        tvlume["ratings"].append(r);
    }
}

// Applications shown as channels. Each covers one route of deciding whether a service is an
// app-on-channel service: the package id (field 179) may be missing or hold NUL characters, and the
// extra data (field 180, UTF-16) may name another app type or none.
struct AocService {
    const char *name;
    std::string packageId;  // stored as is; empty: the service holds no package id
    const char *extraData;  // JSON text; nullptr: no extra data
    bool published;         // its application has published a programme guide
};

const std::vector<AocService> &AocServices()
{
    static const std::vector<AocService> services = {
        {"Halvorn Games", "com.halvorn.games",
         R"({"appType":1,"isReadableData":1,"providerFlag":"halvorn","realData":"lobby 🎮 level=3",)"
         R"("channelId":"aoc-games","programEventId":"games-1"})",
         true},
        {"Fjord Radio App", std::string("com.fjord\0.radio\0", 17),
         R"({"appType":1,"isReadableData":0,"providerFlag":"fjord","realData":"𝄞 stream=hq","channelId":"aoc-radio"})",
         true},
        {"Orphan App", "", R"({"appType":1,"realData":"no package"})", false},
        {"Widget Board", "com.halvorn.widgets", R"({"appType":2,"realData":"board"})", false},
        {"Untyped App", "com.halvorn.untyped", R"({"realData":"nothing says what I am"})", false},
        {"Nul App", std::string("\0\0", 2), R"({"appType":1})", false},
    };
    return services;
}

}  // namespace

void KelvoTvGenerator::m_MakeAocServices()
{
    const long long now = m_options.now;
    int number = static_cast<int>(m_services.size());
    for (const auto &app : AocServices()) {
        ++number;
        // Channel type 10 in the id: neither broadcast nor a virtual channel of the streaming service.
        unsigned long long id = (static_cast<unsigned long long>(number) << 45) | (10ull << 60) |
                                (static_cast<unsigned long long>(900 + number % 100) << 10);
        TCStoredService service;
        service.tags[1] = 9;
        service.tags[2] = 1;
        service.tags[9] = 0;  // not received over RF: the dump leaves it out
        service.tags[12] = static_cast<long long>(id);
        service.tags[13] = 900 + number % 100;
        service.tags[14] = 1;
        service.tags[17] = 50000 + number;
        service.name = app.name;
        if (!app.packageId.empty())
            service.texts[179] = app.packageId;
        if (app.extraData)
            service.texts[180] = TCServiceDataStore::Utf8ToUtf16BEBytes(app.extraData);
        m_aocServices.push_back(service);
        if (!app.published)
            continue;
        std::string package;
        for (char c : app.packageId)
            if (c != '\0')
                package += c;
        Json::Value &entry = m_aocPrograms[package];
        entry["TCServiceId"] = std::to_string(id);
        Json::Value &programs = entry["programs"] = Json::Value(Json::arrayValue);
        int slot = 0;
        for (long long start = now - 1800; start < now + kDay; start += 1800, ++slot) {
            Json::Value p(Json::objectValue);
            p["programEventId"] = package + "-" + std::to_string(slot);
            p["packageId"] = package;
            p["tvsServiceId"] = std::to_string(id);
            p["title"] = std::string(app.name) + (slot % 2 ? " Live" : " Replay") + " " + std::to_string(slot);
            p["startTime"] = static_cast<Json::UInt>(start);
            p["duration"] = 1800;
            p["shortDescription"] = "Part " + std::to_string(slot) + " of the day";
            p["detailDescription"] = "Published by " + package + ".";
            p["extraData"] = app.extraData;
            p["isReadable"] = slot % 2 == 0;
            p["providerFlag"] = "halvorn";
            p["channelId"] = "aoc-" + std::to_string(number);
            p["contentUri"] = "https://stream.halvorn.example/" + package + "/" + std::to_string(slot);
            p["relativeOffset"] = "0";
            p["channelName"] = app.name;
            programs.append(p);
        }
    }
}

bool KelvoTvGenerator::m_WriteFixture(std::string &error)
{
    Json::Value fixture(Json::objectValue);
    Json::Value &channels = fixture["channels"] = Json::Value(Json::arrayValue);
    Json::Value &programs = fixture["programs"] = Json::Value(Json::objectValue);
    Json::Value &sourceToService = fixture["sourceToService"] = Json::Value(Json::objectValue);
    for (const auto &source : m_sources) {
        Json::Value c(Json::objectValue);
        const TCStoredService *s = source.service;
        std::string major = s ? std::to_string(s->tags.at(13)) : "";
        std::string minor = s && s->tags.count(14) ? std::to_string(s->tags.at(14)) : "";
        c["activityID"] = 0;
        c["str_program_source_id"] = source.id;
        c["str_channel_name"] = source.programmes[0]["channel name"];
        c["str_channel_number"] = source.programmes[0]["channel number"];
        c["str_alias"] = "";
        c["str_major"] = major;
        c["str_minor"] = minor;
        c["str_onid"] = s ? std::to_string(s->tags.at(3)) : "";
        c["str_tsid"] = s ? std::to_string(s->tags.at(4)) : "";
        c["str_sid"] = s ? std::to_string(s->tags.at(5)) : "";
        c["str_frequency"] = s ? std::to_string(473000 + 8000 * (s->tags.at(13) % 40)) : "";
        c["str_ptc"] = s ? std::to_string(14 + s->tags.at(13) % 40) : "";
        c["str_icon_url"] = "https://img.halvorn.example/logos/" + source.id + ".png";
        c["str_url_index"] = "0";
        c["str_dtv"] = s ? "1" : "0";
        c["embed"] = 0;
        c["str_digital_flag"] = s ? "1" : "0";
        c["str_qam_flag"] = "0";
        c["genre id"] = "news";
        c["gere name"] = "News";
        c["ac_rank"] = "0";
        channels.append(c);
        programs[source.id] = source.programmes;
        if (!source.serviceId.empty())
            sourceToService[source.id] = source.serviceId;
    }
    Json::Value &genres = fixture["genres"] = Json::Value(Json::arrayValue);
    for (const char *name : {"news", "movies", "sports", "kids", "music"}) {
        Json::Value g(Json::objectValue);
        g["str_name"] = name;
        g["str_id"] = name;
        g["str_genre_img_url"] = std::string("https://img.halvorn.example/genres/") + name + ".png";
        g["str_genre_img_type"] = "png";
        g["str_genre_img_index"] = "0";
        genres.append(g);
    }
    Json::Value &mso = fixture["msoConfig"] = Json::Value(Json::objectValue);
    mso["strHeadend"] = "HE-4711";
    mso["strDeviceType"] = "TV";
    mso["strZipCode"] = "0150";
    mso["source"] = 1;
    mso["antennaMode"] = 2;
    mso["serviceMode"] = 0;
    mso["str_additional_info_with_json_format"] = "{\"region\":\"north\"}";
    Json::Value &cert = fixture["certRule"] = Json::Value(Json::objectValue);
    for (const char *key :
         {"str_first_screen", "str_adult_default", "str_bar_mode", "str_bar_ratio", "str_service_cert_type",
          "str_service_rule", "str_service_uptime_begin", "str_service_uptime_end"})
        cert[key] = "0";
    Json::Value provider(Json::objectValue);
    provider["string"] = "halvorn-play";
    provider["name"] = "Halvorn Play";
    provider["provider id"] = "hp-01";
    provider["logo"] = "https://img.halvorn.example/vod/hp.png";
    provider["widget id"] = "com.halvorn.play";
    provider["version"] = "2.4.1";
    fixture["vodProviders"].append(provider);
    fixture["aocPrograms"] = m_aocPrograms;
    fixture["countryLang"]["country"] = "NO";
    fixture["countryLang"]["language"] = "nob";
    AddVirtualChannels(m_services, m_options, fixture);
    if (!WriteJson(m_options.fixturePath, fixture)) {
        error = "cannot write " + m_options.fixturePath;
        return false;
    }
    return true;
}

bool KelvoTvGenerator::m_WriteExpectations(std::string &error)
{
    const long long now = m_options.now;
    const std::string dbPath = m_options.expectedDir + "/expected.db";
    Database d;
    if (!d.Create(dbPath) || !d.Exec(kRfTable) || !d.Exec(kMetaTable) ||
        !d.Exec("CREATE TABLE selected(position integer, serviceId integer, major integer, minor integer, type "
                "integer);") ||
        !d.Exec("BEGIN")) {
        error = "cannot write " + dbPath;
        return false;
    }
    Json::Value expected(Json::objectValue);
    expected["now"] = static_cast<Json::Int64>(now);
    expected["seed"] = static_cast<Json::UInt64>(m_options.seed);
    expected["services"] = m_options.services;
    expected["windowStartLatest"] = static_cast<Json::Int64>(now + kQuiet - 1);
    Json::Value &selected = expected["selectedServices"] = Json::Value(Json::arrayValue);
    Json::Value &missingMinor = expected["selectedWithoutMinor"] = Json::Value(Json::arrayValue);
    std::set<unsigned long long> exported;
    int position = 0;
    for (const auto &s : m_services) {
        if (!IsExported(s))
            continue;
        unsigned long long id = static_cast<unsigned long long>(s.tags.at(12));
        exported.insert(id);
        selected.append(std::to_string(id));
        if (!s.tags.count(14))
            missingMinor.append(std::to_string(id));
        d.Exec("INSERT INTO selected VALUES (" + std::to_string(position++) + ", " + std::to_string(id) + ", " +
               std::to_string(s.tags.at(13)) + ", " + std::to_string(s.tags.count(14) ? s.tags.at(14) : 0) + ", " +
               std::to_string(s.tags.at(1)) + ")");
    }
    expected["excludedServices"] = static_cast<int>(m_services.size()) - position;

    // Rows are written the way the dump writes them (numbers as SQL literals, texts quoted), so
    // that the stored values take the same types in both files.
    int rfInWindow = 0;
    std::map<std::string, int> rfPerService;
    for (const auto &e : m_events) {
        if (!exported.count(e.serviceId))
            continue;
        if (e.startTime >= now && e.startTime < now + kDay) {
            ++rfInWindow;
            ++rfPerService[std::to_string(e.serviceId)];
        }
        d.Exec("INSERT INTO programRF VALUES (" + std::to_string(e.serviceId) + ", " + std::to_string(e.eventId) +
               ", " + std::to_string(e.startTime) + ", " + std::to_string(e.duration) + ", " + Quoted(e.language) +
               ", 0, 0, " + Quoted(StoredText(e.title)) + ", " + Quoted(StoredText(e.extendedText)) + ")");
    }
    expected["rfRowsInWindow"] = rfInWindow;
    Json::Value &perService = expected["rfRowsPerService"] = Json::Value(Json::objectValue);
    for (const auto &entry : rfPerService)
        perService[entry.first] = entry.second;

    int metaInWindow = 0;
    Json::Value &perSource = expected["metaRowsPerSource"] = Json::Value(Json::objectValue);
    Json::Value &unmatched = expected["unmatchedSources"] = Json::Value(Json::arrayValue);
    Json::Value &called = expected["sourcesInWindow"] = Json::Value(Json::arrayValue);
    std::vector<const KelvoTvGenSource *> ordered;
    for (const auto &source : m_sources)
        ordered.push_back(&source);
    std::sort(ordered.begin(), ordered.end(), [](auto *a, auto *b) { return a->id < b->id; });
    Json::Value &allSources = expected["sourceIds"] = Json::Value(Json::arrayValue);
    for (const KelvoTvGenSource *source : ordered) {
        allSources.append(source->id);
        std::string serviceId = source->serviceId.empty() ? "18446744073709551615" : source->serviceId;
        int inWindow = 0;
        for (const auto &p : source->programmes) {
            long long start = p["utc start time"].asLargestInt();
            if (start >= now && start < now + kDay)
                ++inWindow;
            d.Exec("INSERT INTO programMETA VALUES (" + serviceId + ", 0, " + Quoted(source->id) + ", " +
                   Quoted(p["program id"].asString()) + ", " + std::to_string(start) + ", " +
                   std::to_string(p["duration"].asInt()) + ", " + Quoted(p["lang"].asString()) + ", " +
                   Quoted(StoredText(p["title"].asString())) + ", " + Quoted(StoredText(p["desc"].asString())) + ")");
        }
        if (inWindow > 0) {
            called.append(source->id);
            perSource[source->id] = inWindow;
            if (source->serviceId.empty())
                unmatched.append(source->id);
        }
        metaInWindow += inWindow;
    }
    expected["metaRowsInWindow"] = metaInWindow;
    expected["stickFiles"] = Json::Value(Json::arrayValue);
    for (const char *name :
         {"time.txt", "kelvoutilInfo.db", "kelvo-content.db", "kelvo-settings.json", "kelvo-shared.json", "thumbnails",
          "esg-service.db", "CHMS_Memory_Dump.sqlite", "chms-config.db", "tvs-guide.cfg", "db-tvs-service.db",
          "db-tvs-epg.db", "reminder.db", ".preview.db", "csm-content.db", "csm-state.db"})
        expected["stickFiles"].append(name);
    expected["notOnStick"].append("csm.log");
    if (!d.Exec("COMMIT") || !WriteJson(m_options.expectedDir + "/expected.json", expected)) {
        error = "cannot write the expectations in " + m_options.expectedDir;
        return false;
    }
    return true;
}

bool KelvoTvGenerator::m_WriteDataFolders(std::string &error)
{
    const std::string &opt = m_options.optDir;
    const std::string apps = opt + kAppRoot;
    const std::string tvs = opt + kRwApp;
    const std::string daemon = opt + kDaemonData;
    std::string thumbnail("\x89PNG\r\n\x1a\n", 8);
    thumbnail += "thumbnail of channel 1";
    bool ok = WriteAppDatabase(daemon + "/kelvo-content.db", "com.halvorn.tv.kelvo-daemon") &&
              WriteText(daemon + "/kelvo-settings.json", "{\"country\": \"NO\", \"language\": \"nob\"}\n") &&
              WriteText(apps + "/com.halvorn.tv.kelvo-daemon/shared/kelvo/data/kelvo-shared.json",
                        "{\"channelCRC\": \"5f3a\"}\n") &&
              WriteText(apps + "/com.halvorn.tv.kelvo-daemon/shared/kelvo/data/thumbnails/ch-0001.png", thumbnail) &&
              WriteAppDatabase(tvs + "/esg-service/data/esg-service.db", "esg-service") &&
              WriteAppDatabase(tvs + "/tvs-chms/data/chms-config.db", "tvs-chms") &&
              WriteText(tvs + "/tvs-guide/data/tvs-guide.cfg", "guide_days=8\nlanguage=nob\n") &&
              WriteAppDatabase(tvs + "/reminder/data/reminder.db", "reminder") &&
              WriteAppDatabase(apps + "/org.tizen.content-tiles-provider/data/.preview.db", "content-tiles-provider") &&
              WriteAppDatabase(apps + "/ContentServiceManager/data/csm-content.db", "ContentServiceManager") &&
              WriteAppDatabase(apps + "/ContentServiceManager/data/csm-state.db", "ContentServiceManager") &&
              WriteText(apps + "/ContentServiceManager/data/csm.log", "started\n");
    // An earlier dump's database: the next dump must start from an empty one.
    Database old;
    ok = ok && old.Create(daemon + "/kelvoutilInfo.db") && old.Exec(kRfTable) && old.Exec(kMetaTable) &&
         old.Exec("INSERT INTO programRF VALUES (1, 1, 1, 1, 'eng', 0, 0, 'stale row of an earlier dump', '')") &&
         old.Exec("INSERT INTO programMETA VALUES (1, 0, '1', '1', 1, 1, 'en', 'stale row of an earlier dump', '')");
    if (!ok)
        error = "cannot write the data folders under " + opt;
    return ok;
}

bool KelvoTvGenerator::MakeLayout(const std::string &optDir, std::string &error)
{
    for (const char *folder : kLayout) {
        if (!TCServiceDataStore::MakeFolders(optDir + folder)) {
            error = "cannot make " + optDir + folder;
            return false;
        }
    }
    return true;
}

bool KelvoTvGenerator::WriteCountry(const std::string &optDir, int country, std::string &error)
{
    const std::string path = optDir + "/var/kelvo-sim/country";
    std::ofstream out(path, std::ios::trunc);
    out << country << "\n";
    out.close();
    if (!out) {
        error = "cannot write " + path;
        return false;
    }
    return true;
}

bool KelvoTvGenerator::Run(std::string &error)
{
    if (!MakeLayout(m_options.optDir, error))
        return false;
    m_MakeServices();
    m_MakeGuide();
    m_MakeSources();
    m_MakeAocServices();
    const std::string services = m_options.optDir + kSysDb + "/" + TCServiceDataStore::kServiceDbName;
    const std::string guide = m_options.optDir + kSysDb + "/" + TCServiceDataStore::kGuideDbName;
    // The channel-map memory dump of an earlier day, without the map: a dump must make it afresh.
    std::vector<TCStoredService> all = m_services;
    all.insert(all.end(), m_aocServices.begin(), m_aocServices.end());
    if (!TCServiceDataStore::WriteServices(services, all) || !TCServiceDataStore::WriteGuide(guide, m_events) ||
        !WriteAppDatabase(m_options.optDir + kRwApp + "/" + TCServiceDataStore::kChannelMapDump, "tvs-chms")) {
        error = "cannot write the TV's services and guide under " + m_options.optDir;
        return false;
    }
    return m_WriteDataFolders(error) && m_WriteFixture(error) && m_WriteExpectations(error);
}
