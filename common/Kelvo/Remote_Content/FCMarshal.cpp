#include "FCMarshal.h"

#include <cstdlib>
#include <cstring>
#include <type_traits>
#include <utility>

#include "FCDebug.h"
#include "FCJsonHelper.h"

namespace {

// ---- Scalars: the JSON type of a field follows its C++ type ----

Json::Value ToValue(bool value)
{
    return Json::Value(value);
}
Json::Value ToValue(int value)
{
    return Json::Value(value);
}
Json::Value ToValue(unsigned short value)
{
    return Json::Value(static_cast<Json::UInt>(value));
}
Json::Value ToValue(unsigned int value)
{
    return Json::Value(static_cast<Json::UInt>(value));
}
Json::Value ToValue(unsigned long value)
{
    return Json::Value(static_cast<Json::UInt64>(value));
}
Json::Value ToValue(const std::string &value)
{
    return Json::Value(value);
}
template <typename E, typename = std::enable_if_t<std::is_enum<E>::value>>
Json::Value ToValue(E value)
{
    return Json::Value(static_cast<int>(value));
}

void FromValue(const Json::Value &value, bool &out)
{
    out = value.asBool();
}
void FromValue(const Json::Value &value, int &out)
{
    out = value.asInt();
}
void FromValue(const Json::Value &value, unsigned short &out)
{
    out = static_cast<unsigned short>(value.asUInt());
}
void FromValue(const Json::Value &value, unsigned int &out)
{
    out = value.asUInt();
}
void FromValue(const Json::Value &value, unsigned long &out)
{
    out = static_cast<unsigned long>(value.asLargestUInt());
}
void FromValue(const Json::Value &value, std::string &out)
{
    out = value.asString();
}
template <typename E, typename = std::enable_if_t<std::is_enum<E>::value>>
void FromValue(const Json::Value &value, E &out)
{
    out = static_cast<E>(value.asInt());
}

// ---- Writer shape: one member per (key, value) pair, in argument order ----

bool Write(Json::Value &)
{
    return true;
}

template <typename T, typename... Rest>
bool Write(Json::Value &out, const char *key, const T &value, Rest &&...rest)
{
    out[key] = ToValue(value);
    return Write(out, std::forward<Rest>(rest)...);
}

// ---- Reader shapes: they differ only in how the member is fetched ----

template <typename Fetch, typename In>
bool ReadMembers(const Fetch &, In &)
{
    return true;
}

template <typename Fetch, typename In, typename T, typename... Rest>
bool ReadMembers(const Fetch &fetch, In &in, const char *key, T &out, Rest &&...rest)
{
    FromValue(fetch(in, key), out);
    return ReadMembers(fetch, in, std::forward<Rest>(rest)...);
}

// The get() shapes: the member or a default, without copying it (FCJsonHelper::MemberOr).
struct GetOr {
    Json::Value fallback;
    const Json::Value &operator()(const Json::Value &in, const char *key) const
    {
        return FCJsonHelper::MemberOr(in, key, fallback);
    }
};

// R-get-text: get() with "" as default, so a missing number raises jsoncpp's logic error on
// conversion. A reply without the number is an error, not a zero.
template <typename... Args>
bool ReadGetText(const Json::Value &in, Args &&...args)
{
    return ReadMembers(GetOr{Json::Value("")}, in, std::forward<Args>(args)...);
}

// R-get-zero: a missing number reads 0.
template <typename... Args>
bool ReadGetZero(const Json::Value &in, Args &&...args)
{
    return ReadMembers(GetOr{Json::Value(0)}, in, std::forward<Args>(args)...);
}

// R-get-string: a missing text reads "".
template <typename... Args>
bool ReadGetString(const Json::Value &in, Args &&...args)
{
    return ReadMembers(GetOr{Json::Value("")}, in, std::forward<Args>(args)...);
}

// R-index: the non-const member operator, which leaves a null member behind when absent.
template <typename... Args>
bool ReadIndex(Json::Value &in, Args &&...args)
{
    auto fetch = [](Json::Value &value, const char *key) -> const Json::Value & { return value[key]; };
    return ReadMembers(fetch, in, std::forward<Args>(args)...);
}

// R-const: the const member operator; absent reads as null, nothing is added.
template <typename... Args>
bool ReadConst(const Json::Value &in, Args &&...args)
{
    auto fetch = [](const Json::Value &value, const char *key) -> const Json::Value & { return value[key]; };
    return ReadMembers(fetch, in, std::forward<Args>(args)...);
}

// ---- Decimal-text identifiers: 64-bit ids travel as text, since JSON numbers may not hold them ----

template <typename T>
bool WriteDecimal(Json::Value &out, const char *key, T value)
{
    out[key] = std::to_string(value);
    return true;
}

// Any text is accepted: the conversion stops at the first non-digit.
template <typename T, typename Convert>
bool ReadDecimal(const Json::Value &in, const char *key, const char *defaultText, T &out, Convert convert)
{
    const Json::Value text = in.get(key, defaultText);
    const char *digits = text.asCString();
    out = static_cast<T>(digits != nullptr ? convert(digits, nullptr, 10) : 0);
    return true;
}

// ---- Element codecs of the containers ----

struct StringCodec {
    static void Write(const std::string &value, Json::Value &element) { element = value; }
    static void Read(const Json::Value &element, std::string &value) { value = element.asString(); }
};

// Records whose reader uses the non-const member operator read a copy, so that a reply is
// never changed by reading it.
template <typename Record>
struct RecordCodec {
    static void Write(Record &record, Json::Value &element) { Record::ToJson(record, element); }
    static void Read(const Json::Value &element, Record &record)
    {
        Json::Value copy(element);
        Record::FromJson(copy, record);
    }
};

struct ProgramCodec {
    static void Write(const FCRemoteProgram &program, Json::Value &element)
    {
        FCRemoteProgram::ToJson(program, element);
    }
    static void Read(const Json::Value &element, FCRemoteProgram &program)
    {
        FCRemoteProgram::FromJson(element, program);
    }
};

struct VirtualProgramCodec {
    static void Write(const FCVirtualProgramData &program, Json::Value &element)
    {
        FCVirtualProgramData::ToJson(program, element);
    }
    static void Read(const Json::Value &element, FCVirtualProgramData &program)
    {
        FCVirtualProgramData::FromJson(element, program);
    }
};

struct MBRChannelCodec {
    static void Write(FCMBRNetworkChannel &channel, Json::Value &element)
    {
        FCMBRNetworkChannel::MBRNetworkChannelToJson(channel, element);
    }
    static void Read(const Json::Value &element, FCMBRNetworkChannel &channel)
    {
        FCMBRNetworkChannel::JsonToMBRNetworkChannel(element, channel);
    }
};

struct MBRProgramCodec {
    static void Write(FCMBRNetworkProgram &program, Json::Value &element)
    {
        FCMBRNetworkProgram::MBRNetworkProgramToJson(program, element);
    }
    static void Read(const Json::Value &element, FCMBRNetworkProgram &program)
    {
        FCMBRNetworkProgram::JsonToMBRNetworkProgram(element, program);
    }
};

struct ServiceIdCodec {
    static void Write(const unsigned long long &id, Json::Value &element) { FCMarshal::VCServiceIdToJson(id, element); }
    static void Read(const Json::Value &element, unsigned long long &id) { FCMarshal::VCJsonToServiceId(element, id); }
};

struct RatingCodec {
    static void Write(const RatingInfo &rating, Json::Value &element) { FCMarshal::RatingInfoToJson(rating, element); }
    static void Read(const Json::Value &element, RatingInfo &rating) { FCMarshal::JsonToRatingInfo(element, rating); }
};

// ---- List shape ----

// The array member key of in, or null when in holds no array there. A reply may hold any value
// under any key; indexing a value that is not an array would raise or misread.
const Json::Value *ArrayMember(const Json::Value &in, const char *key)
{
    if (!in.isObject())
        return nullptr;
    const Json::Value *member = in.find(key, key + std::strlen(key));
    return member != nullptr && member->isArray() ? member : nullptr;
}

template <typename T>
void Reserve(std::vector<T> &items, size_t extra)
{
    items.reserve(items.size() + extra);
}
template <typename Container>
void Reserve(Container &, size_t)
{}

// Each element's JSON form appended to the array member key; an empty list leaves it absent.
template <typename Codec, typename Container>
bool WriteList(Json::Value &out, const char *key, Container &items)
{
    if (items.empty())
        return true;
    Json::Value &array = out[key];
    for (auto &item : items) {
        Json::Value element;
        Codec::Write(item, element);
        array.append(std::move(element));
    }
    return true;
}

// Each element read into a fresh item appended to items (which is not cleared first).
template <typename Codec, typename Container>
bool ReadList(const Json::Value &in, const char *key, Container &items)
{
    const Json::Value *array = ArrayMember(in, key);
    if (array == nullptr)
        return true;
    Reserve(items, array->size());
    for (const Json::Value &element : *array) {
        typename Container::value_type item{};
        Codec::Read(element, item);
        items.push_back(std::move(item));
    }
    return true;
}

// ---- Keyed-map shape: one array element per entry, in key order, carrying its key ----

// Map values that sit in the element under a member of their own rather than forming it.
struct CountValue {
    static void Write(const int &count, Json::Value &element) { element["count"] = count; }
    static void Read(const Json::Value &element, int &count) { count = element["count"].asInt(); }
};

struct ProgramArrayValue {
    static void Write(std::vector<FCRemoteProgram> &programs, Json::Value &element)
    {
        WriteList<ProgramCodec>(element, "program_array", programs);
    }
    static void Read(const Json::Value &element, std::vector<FCRemoteProgram> &programs)
    {
        ReadList<ProgramCodec>(element, "program_array", programs);
    }
};

template <typename Codec, typename Map>
bool WriteKeyedMap(Json::Value &out, const char *arrayKey, const char *keyName, Map &entries)
{
    if (entries.empty())
        return true;
    Json::Value &array = out[arrayKey];
    for (auto &entry : entries) {
        Json::Value element;
        Codec::Write(entry.second, element);
        element[keyName] = ToValue(entry.first);
        array.append(std::move(element));
    }
    return true;
}

// Each element's value is assigned under its key: a later element replaces an earlier one with
// the same key, and entries under other keys stay.
template <typename Codec, typename Map>
bool ReadKeyedMap(const Json::Value &in, const char *arrayKey, const char *keyName, Map &entries)
{
    const Json::Value *array = ArrayMember(in, arrayKey);
    if (array == nullptr)
        return true;
    for (const Json::Value &element : *array) {
        typename Map::key_type key{};
        FromValue(element[keyName], key);
        typename Map::mapped_type value{};
        Codec::Read(element, value);
        entries[key] = std::move(value);
    }
    return true;
}

}  // namespace

// ---- Scalars ----

bool FCMarshal::IsFirstEntryToJson(const bool &isFirstEntry, Json::Value &out)
{
    return Write(out, "IsFirstEntry", isFirstEntry);
}
bool FCMarshal::JsonToIsFirstEntry(Json::Value &in, bool &isFirstEntry)
{
    return ReadIndex(in, "IsFirstEntry", isFirstEntry);
}
bool FCMarshal::IsInstantOnToJson(const bool &isInstantOn, Json::Value &out)
{
    return Write(out, "IsInstantOn", isInstantOn);
}
bool FCMarshal::JsonToIsInstantOn(Json::Value &in, bool &isInstantOn)
{
    return ReadIndex(in, "IsInstantOn", isInstantOn);
}
bool FCMarshal::CountryAndLangToJson(const std::string &country, const std::string &language, Json::Value &out)
{
    return Write(out, "country", country, "language", language);
}
bool FCMarshal::JsonToCountryAndLang(Json::Value &in, std::string &country, std::string &language)
{
    return ReadIndex(in, "country", country, "language", language);
}
bool FCMarshal::TVSourceAndTVModeToJson(const int &source, const int &tvMode, Json::Value &out)
{
    return Write(out, "in_source", source, "in_tvmode", tvMode);
}
bool FCMarshal::JsonToTVSourceAndTVMode(Json::Value &in, ESource &source, int &tvMode)
{
    return ReadIndex(in, "in_source", source, "in_tvmode", tvMode);
}
bool FCMarshal::TVSourceAndTVModeToJson(const int &source, const int &antennaMode, const int &serviceMode,
                                        Json::Value &out)
{
    return Write(out, "in_source", source, "in_antennaMode", antennaMode, "in_serviceMode", serviceMode);
}
bool FCMarshal::JsonToTVSourceAndTVMode(Json::Value &in, ESource &source, int &antennaMode, int &serviceMode)
{
    return ReadIndex(in, "in_source", source, "in_antennaMode", antennaMode, "in_serviceMode", serviceMode);
}
bool FCMarshal::activityIDToJson(const eRemoteContentActivity &activity, Json::Value &out)
{
    return Write(out, "activityID", activity);
}
bool FCMarshal::JsonToactivityID(Json::Value &in, eRemoteContentActivity &activity)
{
    return ReadIndex(in, "activityID", activity);
}
bool FCMarshal::ChannelCRCToJson(const std::string &crc, Json::Value &out)
{
    return Write(out, "crc", crc);
}
bool FCMarshal::JsonToChannelCRC(const Json::Value &in, std::string &crc)
{
    return ReadConst(in, "crc", crc);
}
bool FCMarshal::JsonToStr(const Json::Value &in, std::string &str)
{
    return ReadConst(in, "str", str);
}

bool FCMarshal::ProgramSourceIDAndUtcCurrentTimeToJson(const eRemoteContentActivity &activity,
                                                       const std::string &programSourceId,
                                                       const unsigned long &utcCurrentTime, Json::Value &out)
{
    return Write(out, "activityID", activity, "program source id", programSourceId, "utc current time", utcCurrentTime);
}
bool FCMarshal::JsonToProgramSourceIdAndUtcCurrentTime(Json::Value &in, eRemoteContentActivity &activity,
                                                       std::string &programSourceId, unsigned long &utcCurrentTime)
{
    return ReadIndex(in, "activityID", activity, "program source id", programSourceId, "utc current time",
                     utcCurrentTime);
}
bool FCMarshal::ProgramSourceIDToJson(const eRemoteContentActivity &activity, const std::string &programSourceId,
                                      Json::Value &out)
{
    return Write(out, "activityID", activity, "program source id", programSourceId);
}
bool FCMarshal::JsonToProgramSourceID(const Json::Value &in, eRemoteContentActivity &activity,
                                      std::string &programSourceId)
{
    return ReadGetZero(in, "activityID", activity) && ReadGetString(in, "program source id", programSourceId);
}

bool FCMarshal::SourceIDListAndUtcStartTimeAndDurationAndFCFilterCriteriaToJson(
    const eRemoteContentActivity &activity, std::vector<std::string> &sourceIds, const int &utcStartTime,
    const int &duration, FCFilterCriteria &filter, Json::Value &out)
{
    return Write(out, "activityID", activity, "utc start time", utcStartTime, "duration", duration) &&
           WriteList<StringCodec>(out, "sourceIDArray", sourceIds) && FCFilterCriteria::ToJson(filter, out);
}
bool FCMarshal::JsonToSourceIDLstAndUtcStartTimeAndDurationAndFCFilterCriteria(Json::Value &in,
                                                                               eRemoteContentActivity &activity,
                                                                               std::vector<std::string> &sourceIds,
                                                                               int &utcStartTime, int &duration,
                                                                               FCFilterCriteria &filter)
{
    return ReadIndex(in, "activityID", activity, "utc start time", utcStartTime, "duration", duration) &&
           ReadList<StringCodec>(in, "sourceIDArray", sourceIds) && FCFilterCriteria::FromJson(in, filter);
}
bool FCMarshal::SourceIDListAndUtcStartTimeAndDurationToJson(const eRemoteContentActivity &activity,
                                                             std::vector<std::string> &sourceIds,
                                                             const unsigned long &utcStartTime, const int &duration,
                                                             Json::Value &out)
{
    return Write(out, "activityID", activity, "utc_starttime", utcStartTime, "duration", duration) &&
           WriteList<StringCodec>(out, "sourceIDArray", sourceIds);
}
bool FCMarshal::JsonToSourceIDListAndUtcStartTimeAndDuration(Json::Value &in, eRemoteContentActivity &activity,
                                                             std::vector<std::string> &sourceIds,
                                                             unsigned long &utcStartTime, int &duration)
{
    return ReadIndex(in, "activityID", activity, "utc_starttime", utcStartTime, "duration", duration) &&
           ReadList<StringCodec>(in, "sourceIDArray", sourceIds);
}
bool FCMarshal::UtcCurrentTimeToJson(const eRemoteContentActivity &activity, const unsigned long &utcCurrentTime,
                                     Json::Value &out)
{
    return Write(out, "activityID", activity, "utc_current_time", utcCurrentTime);
}
bool FCMarshal::JsonToUtcCurrentTime(Json::Value &in, eRemoteContentActivity &activity, unsigned long &utcCurrentTime)
{
    return ReadIndex(in, "activityID", activity, "utc_current_time", utcCurrentTime);
}
bool FCMarshal::UtcStartTimeToJson(const unsigned long &utcStartTime, Json::Value &out)
{
    return Write(out, "utc_start_time", utcStartTime);
}
bool FCMarshal::JsonToUtcStartTime(Json::Value &in, unsigned long &utcStartTime)
{
    return ReadIndex(in, "utc_start_time", utcStartTime);
}
bool FCMarshal::UtcEndTimeToJson(const unsigned long &utcEndTime, Json::Value &out)
{
    return Write(out, "utc_end_time", utcEndTime);
}
bool FCMarshal::JsonToUtcEndTime(Json::Value &in, unsigned long &utcEndTime)
{
    return ReadIndex(in, "utc_end_time", utcEndTime);
}
bool FCMarshal::MarshalingForGetRecommendationOnNow(const eRemoteContentActivity &activity,
                                                    const std::string &currentWatchingProgramSourceId,
                                                    const unsigned long &utcCurrentTime,
                                                    const int &numberOfRecommendation, FCFilterCriteria &filter,
                                                    Json::Value &out)
{
    return Write(out, "activityID", activity, "current_watching_program_source_id", currentWatchingProgramSourceId,
                 "utc_currenttime", utcCurrentTime, "number_of_recommendation", numberOfRecommendation) &&
           FCFilterCriteria::ToJson(filter, out);
}
bool FCMarshal::UnmarshalingForGetRecommendationOnNow(Json::Value &in, eRemoteContentActivity &activity,
                                                      std::string &currentWatchingProgramSourceId,
                                                      unsigned long &utcCurrentTime, int &numberOfRecommendation,
                                                      FCFilterCriteria &filter)
{
    return ReadIndex(in, "activityID", activity, "current_watching_program_source_id", currentWatchingProgramSourceId,
                     "utc_currenttime", utcCurrentTime, "number_of_recommendation", numberOfRecommendation) &&
           FCFilterCriteria::FromJson(in, filter);
}

bool FCMarshal::TCServiceIdToJson(const unsigned long long &serviceId, Json::Value &out)
{
    return WriteDecimal(out, "TCServiceId", serviceId);
}
bool FCMarshal::JsonToTCServiceId(const Json::Value &in, unsigned long long &serviceId)
{
    return ReadDecimal(in, "TCServiceId", "", serviceId, std::strtoull);
}
bool FCMarshal::MBRChannelAndUTCCurrentTimeToJson(const eRemoteContentActivity &activity,
                                                  const std::string &mbrChannelNumber,
                                                  const unsigned long &utcCurrentTime, Json::Value &out)
{
    return Write(out, "activityID", activity, "mbr ch number", mbrChannelNumber, "utc current time", utcCurrentTime);
}
bool FCMarshal::JsonToMBRChannelAndUTCCurrentTime(Json::Value &in, eRemoteContentActivity &activity,
                                                  std::string &mbrChannelNumber, unsigned long &utcCurrentTime)
{
    return ReadIndex(in, "activityID", activity, "mbr ch number", mbrChannelNumber, "utc current time", utcCurrentTime);
}
bool FCMarshal::SearchStringToJson(const std::string &searchString, Json::Value &out)
{
    return Write(out, "search string", searchString);
}
bool FCMarshal::JsonToSearchString(Json::Value &in, std::string &searchString)
{
    return ReadIndex(in, "search string", searchString);
}

bool FCMarshal::NavigationModeToJson(const FCRFNetworkChannelAPI::ENavigationMode &mode, Json::Value &out)
{
    return Write(out, "navigation mode", mode);
}
bool FCMarshal::JsonToNavigationMode(const Json::Value &in, FCRFNetworkChannelAPI::ENavigationMode &mode)
{
    return ReadGetText(in, "navigation mode", mode);
}
bool FCMarshal::GenreToJson(const std::string &genre, Json::Value &out)
{
    return Write(out, "genre", genre);
}
bool FCMarshal::JsonToGenre(const Json::Value &in, std::string &genre)
{
    return ReadGetString(in, "genre", genre);
}
bool FCMarshal::CountToJson(const int &count, Json::Value &out)
{
    return Write(out, "count", count);
}
bool FCMarshal::JsonToCount(const Json::Value &in, int &count)
{
    return ReadGetText(in, "count", count);
}
bool FCMarshal::SourceToJson(const int &source, Json::Value &out)
{
    return Write(out, "source", source);
}
bool FCMarshal::JsonToSource(const Json::Value &in, ESource &source)
{
    return ReadGetText(in, "source", source);
}
bool FCMarshal::EactivityIDToJson(const FCMBRNetworkChannelAPI::EActivityID &activity, Json::Value &out)
{
    return Write(out, "activityID", activity);
}
bool FCMarshal::JsonToEactivityID(const Json::Value &in, FCMBRNetworkChannelAPI::EActivityID &activity)
{
    return ReadGetText(in, "activityID", activity);
}
bool FCMarshal::HeadEndIDToJson(const std::string &headEndId, Json::Value &out)
{
    return Write(out, "headend id", headEndId);
}
bool FCMarshal::JsonToHeadEndID(const Json::Value &in, std::string &headEndId)
{
    return ReadGetString(in, "headend id", headEndId);
}
bool FCMarshal::ZipCodeToJson(const std::string &zipCode, Json::Value &out)
{
    return Write(out, "zip code", zipCode);
}
bool FCMarshal::JsonToZipCode(const Json::Value &in, std::string &zipCode)
{
    return ReadGetString(in, "zip code", zipCode);
}
bool FCMarshal::DeviceTypeToJson(const std::string &deviceType, Json::Value &out)
{
    return Write(out, "device type", deviceType);
}
bool FCMarshal::JsonToDeviceType(const Json::Value &in, std::string &deviceType)
{
    return ReadGetString(in, "device type", deviceType);
}
bool FCMarshal::LocationToJson(const std::string &location, Json::Value &out)
{
    return Write(out, "location", location);
}
bool FCMarshal::JsonToLocation(const Json::Value &in, std::string &location)
{
    return ReadGetString(in, "location", location);
}
bool FCMarshal::QueryTypeToJson(const FCMBRNetworkChannelAPI::EMBRNetworkChannelQuery &query, Json::Value &out)
{
    return Write(out, "query type", query);
}
bool FCMarshal::JsonToQueryType(const Json::Value &in, FCMBRNetworkChannelAPI::EMBRNetworkChannelQuery &query)
{
    return ReadGetText(in, "query type", query);
}
bool FCMarshal::CurrentTimeToJson(const unsigned long &currentTime, Json::Value &out)
{
    return Write(out, "current time", currentTime);
}
bool FCMarshal::JsonToCurrentTime(const Json::Value &in, unsigned long &currentTime)
{
    return ReadGetText(in, "current time", currentTime);
}
bool FCMarshal::ChannelIDToJson(const std::string &channelId, Json::Value &out)
{
    return Write(out, "channelID", channelId);
}
bool FCMarshal::JsonToChannelID(const Json::Value &in, std::string &channelId)
{
    return ReadGetString(in, "channelID", channelId);
}
bool FCMarshal::MajorMinorToJson(const int &major, const int &minor, Json::Value &out)
{
    return Write(out, "major", major, "minor", minor);
}
bool FCMarshal::JsonToMajorMinor(const Json::Value &in, int &major, int &minor)
{
    return ReadGetText(in, "major", major, "minor", minor);
}
bool FCMarshal::EFavoriteToJson(const FCMBRNetworkChannel::EFavorite &favorite, Json::Value &out)
{
    return Write(out, "favorite", favorite);
}
bool FCMarshal::JsonToEFavorite(const Json::Value &in, FCMBRNetworkChannel::EFavorite &favorite)
{
    return ReadGetText(in, "favorite", favorite);
}
bool FCMarshal::ChannelIdMajorToJson(const std::string &channelId, const std::string &major, Json::Value &out)
{
    return Write(out, "channel id", channelId, "major", major);
}
bool FCMarshal::JsonToChannelIdMajor(const Json::Value &in, std::string &channelId, std::string &major)
{
    return ReadGetString(in, "channel id", channelId, "major", major);
}

bool FCMarshal::StartTimeToJson(const unsigned int &startTime, Json::Value &out)
{
    return Write(out, "start_time", startTime);
}
bool FCMarshal::JsonToStartTime(const Json::Value &in, unsigned int &startTime)
{
    return ReadGetZero(in, "start_time", startTime);
}
bool FCMarshal::DurationToJson(const unsigned int &duration, Json::Value &out)
{
    return Write(out, "duration", duration);
}
bool FCMarshal::JsonToDuration(const Json::Value &in, unsigned int &duration)
{
    return ReadGetZero(in, "duration", duration);
}
bool FCMarshal::EProgramIndicatorToJson(const EProgramIndicator &indicator, Json::Value &out)
{
    return Write(out, "program_indicator", indicator);
}
bool FCMarshal::JsonToEProgramIndicator(const Json::Value &in, EProgramIndicator &indicator)
{
    return ReadGetZero(in, "program_indicator", indicator);
}
bool FCMarshal::ChannelLogoToJson(const std::string &channelLogo, Json::Value &out)
{
    return Write(out, "channelLogo", channelLogo);
}
bool FCMarshal::JsonToChannelLogo(const Json::Value &in, std::string &channelLogo)
{
    return ReadGetString(in, "channelLogo", channelLogo);
}
bool FCMarshal::ProgramLogoToJson(const std::string &programLogo, Json::Value &out)
{
    return Write(out, "programLogo", programLogo);
}
bool FCMarshal::JsonToProgramLogo(const Json::Value &in, std::string &programLogo)
{
    return ReadGetString(in, "programLogo", programLogo);
}
bool FCMarshal::LogoSizeToJson(const FCVirtualChannelsAPI::EChannelLogoSize &size, Json::Value &out)
{
    return Write(out, "logoSize", size);
}
bool FCMarshal::JsonToLogoSize(const Json::Value &in, FCVirtualChannelsAPI::EChannelLogoSize &size)
{
    return ReadGetZero(in, "logoSize", size);
}
bool FCMarshal::VCServiceIdToJson(const unsigned long long &serviceId, Json::Value &out)
{
    return WriteDecimal(out, "TCServiceId", serviceId);
}
bool FCMarshal::VCJsonToServiceId(const Json::Value &in, unsigned long long &serviceId)
{
    return ReadDecimal(in, "TCServiceId", "0", serviceId, std::strtoull);
}
bool FCMarshal::PlayerTypeToJson(const FCVirtualChannelsAPI::EPlayerType &playerType, Json::Value &out)
{
    return Write(out, "playerType", playerType);
}
bool FCMarshal::JsonToPlayerType(const Json::Value &in, FCVirtualChannelsAPI::EPlayerType &playerType)
{
    return ReadGetZero(in, "playerType", playerType);
}
bool FCMarshal::PGNumToJson(const unsigned short &pgNum, Json::Value &out)
{
    return Write(out, "pgNum", pgNum);
}
bool FCMarshal::JsonToPGNum(const Json::Value &in, unsigned short &pgNum)
{
    return ReadGetZero(in, "pgNum", pgNum);
}
bool FCMarshal::ProgramLogoTypeToJson(const FCVirtualChannelsAPI::EProgramLogoType &type, Json::Value &out)
{
    return Write(out, "programLogoType", type);
}
bool FCMarshal::JsonToProgramLogoType(const Json::Value &in, FCVirtualChannelsAPI::EProgramLogoType &type)
{
    return ReadGetZero(in, "programLogoType", type);
}
bool FCMarshal::ImageDownloadIdToJson(const long &imageDownloadId, Json::Value &out)
{
    return WriteDecimal(out, "imageDownloadId", imageDownloadId);
}
bool FCMarshal::JsonToImageDownloadId(const Json::Value &in, long &imageDownloadId)
{
    return ReadDecimal(in, "imageDownloadId", "0", imageDownloadId, std::strtol);
}
bool FCMarshal::OnTvProviderIdToJson(const std::string &providerId, Json::Value &out)
{
    return Write(out, "onTvProviderId", providerId);
}
bool FCMarshal::JsonToOnTvProviderId(const Json::Value &in, std::string &providerId)
{
    return ReadGetString(in, "onTvProviderId", providerId);
}
bool FCMarshal::PKGIdToJson(const std::string &pkgId, Json::Value &out)
{
    return Write(out, "pkgId", pkgId);
}
bool FCMarshal::JsonToPKGId(const Json::Value &in, std::string &pkgId)
{
    return ReadGetString(in, "pkgId", pkgId);
}
bool FCMarshal::ItemIDToJson(const std::string &itemId, Json::Value &out)
{
    return Write(out, "itemID", itemId);
}
bool FCMarshal::JsonToItemID(const Json::Value &in, std::string &itemId)
{
    return ReadGetString(in, "itemID", itemId);
}
bool FCMarshal::OnTvServiceIdToJson(const std::string &serviceId, Json::Value &out)
{
    return Write(out, "onTvServiceId", serviceId);
}
bool FCMarshal::JsonToOnTvServiceId(const Json::Value &in, std::string &serviceId)
{
    return ReadGetString(in, "onTvServiceId", serviceId);
}
bool FCMarshal::KPIInfoToJson(const int &type, const std::string &eventName, const std::string &category,
                              const std::string &desc, Json::Value &out)
{
    return Write(out, "KPIType", type, "EventName", eventName, "Category", category, "desc", desc);
}
bool FCMarshal::JsonToKPIInfo(const Json::Value &in, int &type, std::string &eventName, std::string &category,
                              std::string &desc)
{
    return ReadMembers(GetOr{Json::Value(-1)}, in, "KPIType", type) &&
           ReadGetString(in, "EventName", eventName, "Category", category, "desc", desc);
}

bool FCMarshal::UrlToJson(const std::string &url, Json::Value &out)
{
    return Write(out, "url", url);
}
bool FCMarshal::JsonToUrl(const Json::Value &in, std::string &url)
{
    return ReadGetString(in, "url", url);
}
bool FCMarshal::EDownloadLocationToJson(const EDownloadLocation &location, Json::Value &out)
{
    return Write(out, "location", location);
}
bool FCMarshal::JsonToEDownloadLocation(const Json::Value &in, EDownloadLocation &location)
{
    return ReadConst(in, "location", location);
}
bool FCMarshal::FileToJson(const std::string &file, Json::Value &out)
{
    return Write(out, "file", file);
}
bool FCMarshal::JsonToFile(const Json::Value &in, std::string &file)
{
    return ReadGetString(in, "file", file);
}
bool FCMarshal::IdToJson(const int &id, Json::Value &out)
{
    return Write(out, "id", id);
}
bool FCMarshal::JsonToId(const Json::Value &in, int &id)
{
    return ReadConst(in, "id", id);
}
bool FCMarshal::IntToJson(const int &value, Json::Value &out)
{
    return Write(out, "ret", value);
}
bool FCMarshal::JsonToInt(const Json::Value &in, int &value)
{
    return ReadConst(in, "ret", value);
}
int FCMarshal::JsonToInt(const Json::Value &in)
{
    int value = 0;
    JsonToInt(in, value);
    return value;
}
bool FCMarshal::APPIDAndURLToJson(const std::string &appId, const std::string &url, Json::Value &out)
{
    return Write(out, "appID", appId, "url", url);
}
bool FCMarshal::JsonToAPPIDAndURL(const Json::Value &in, std::string &appId, std::string &url)
{
    return ReadGetString(in, "appID", appId, "url", url);
}
bool FCMarshal::eTVLumeWebAppVisibleToJson(const eTVLumeWebAppVisible &visible, Json::Value &out)
{
    return Write(out, "show_webapp", visible);
}
bool FCMarshal::JsonToeTVLumeWebAppVisible(const Json::Value &in, eTVLumeWebAppVisible &visible)
{
    return ReadConst(in, "show_webapp", visible);
}
bool FCMarshal::RatingInfoToJson(const RatingInfo &rating, Json::Value &out)
{
    return Write(out, "rating", rating.rating, "rating_system", rating.rating_system, "vsld", rating.vsld);
}
bool FCMarshal::JsonToRatingInfo(const Json::Value &in, RatingInfo &rating)
{
    return ReadGetZero(in, "rating", rating.rating, "rating_system", rating.rating_system, "vsld", rating.vsld);
}
bool FCMarshal::StrRatingToJson(const std::string &rating, Json::Value &out)
{
    return Write(out, "rating", rating);
}
bool FCMarshal::JsonToStrRating(const Json::Value &in, std::string &rating)
{
    return ReadGetString(in, "rating", rating);
}
bool FCMarshal::PositonToJson(const unsigned long &position, Json::Value &out)
{
    return Write(out, "position", position);
}
bool FCMarshal::JsonToPositon(const Json::Value &in, unsigned long &position)
{
    return ReadGetText(in, "position", position);
}
bool FCMarshal::SecToJson(const unsigned int &sec, Json::Value &out)
{
    return Write(out, "sec", sec);
}
bool FCMarshal::JsonToSec(const Json::Value &in, unsigned int &sec)
{
    return ReadConst(in, "sec", sec);
}
bool FCMarshal::FlagToJson(const bool &flag, Json::Value &out)
{
    return Write(out, "flag", flag);
}
bool FCMarshal::JsonToFlag(const Json::Value &in, bool &flag)
{
    return ReadConst(in, "flag", flag);
}
bool FCMarshal::ProgramSourceIDToJson_ACR(const std::string &programSourceId, Json::Value &out)
{
    return Write(out, "programSourceID", programSourceId);
}
bool FCMarshal::JsonToProgramSourceID_ACR(const Json::Value &in, std::string &programSourceId)
{
    return ReadGetString(in, "programSourceID", programSourceId);
}
bool FCMarshal::ProgramIDToJson_ACR(const std::string &programId, Json::Value &out)
{
    return Write(out, "programID", programId);
}
bool FCMarshal::JsonToProgramID_ACR(const Json::Value &in, std::string &programId)
{
    return ReadGetString(in, "programID", programId);
}
bool FCMarshal::AcrVerifiedToJson(const FIACRSupportAPI::AcrVerified &verified, Json::Value &out)
{
    return Write(out, "AcrVerified", verified);
}
bool FCMarshal::JsonToAcrVerified(const Json::Value &in, FIACRSupportAPI::AcrVerified &verified)
{
    return ReadConst(in, "AcrVerified", verified);
}
bool FCMarshal::DataServiceTypeToJson(const int &type, Json::Value &out)
{
    return Write(out, "dataType", type);
}
bool FCMarshal::JsonToDataServiceType(const Json::Value &in, EDataServiceType &type)
{
    return ReadConst(in, "dataType", type);
}
int FCMarshal::JsonToDataServiceType(const Json::Value &in)
{
    int type = 0;
    ReadConst(in, "dataType", type);
    return type;
}

// ---- Records ----

bool FCMarshal::FCRmoteMSOConfigToJson(const FCRemoteMSOConfig &config, Json::Value &out)
{
    return FCRemoteMSOConfig::ToJson(config, out);
}
bool FCMarshal::JsonToFCRemoteMSOConfig(Json::Value &in, FCRemoteMSOConfig &config)
{
    return FCRemoteMSOConfig::FromJson(in, config);
}
bool FCMarshal::CertRuleToJson(CKelvoResponse_CertRule &rule, Json::Value &out)
{
    return CKelvoResponse_CertRule::ToJson(rule, out);
}
bool FCMarshal::JsonToCertRule(Json::Value &in, CKelvoResponse_CertRule &rule)
{
    return CKelvoResponse_CertRule::FromJson(in, rule);
}
bool FCMarshal::VODProviderToJson(CKelvoResponse_VODProviders &providers, Json::Value &out)
{
    return CKelvoResponse_VODProviders::ToJson(providers, out);
}
bool FCMarshal::JsonToVODProvider(Json::Value &in, CKelvoResponse_VODProviders &providers)
{
    return CKelvoResponse_VODProviders::FromJson(in, providers);
}
bool FCMarshal::FCRemoteProgramToJson(const FCRemoteProgram &program, Json::Value &out)
{
    return FCRemoteProgram::ToJson(program, out);
}
bool FCMarshal::JsonToFCRemoteProgram(Json::Value &in, FCRemoteProgram &program)
{
    return FCRemoteProgram::FromJson(in, program);
}
bool FCMarshal::FCRemoteChannelToJson(FCRemoteChannel &channel, Json::Value &out)
{
    return FCRemoteChannel::ToJson(channel, out);
}
bool FCMarshal::JsonToFCRemoteChannel(Json::Value &in, FCRemoteChannel &channel)
{
    return FCRemoteChannel::FromJson(in, channel);
}
bool FCMarshal::VirtualProgramIdToJson(const FCVirtualProgramId &id, Json::Value &out)
{
    return FCVirtualProgramId::ToJson(id, out);
}
bool FCMarshal::JsonToVirtualProgramId(const Json::Value &in, FCVirtualProgramId &id)
{
    return FCVirtualProgramId::FromJson(in, id);
}
bool FCMarshal::VirtualProgramDataToJson(const FCVirtualProgramData &program, Json::Value &out)
{
    return FCVirtualProgramData::ToJson(program, out);
}
bool FCMarshal::JsonToVirtualProgramData(const Json::Value &in, FCVirtualProgramData &program)
{
    return FCVirtualProgramData::FromJson(in, program);
}
bool FCMarshal::VirtualConfigToJson(const FCVirtualConfig &config, Json::Value &out)
{
    return FCVirtualConfig::ToJson(config, out);
}
bool FCMarshal::JsonToVirtualConfig(const Json::Value &in, FCVirtualConfig &config)
{
    return FCVirtualConfig::FromJson(in, config);
}
bool FCMarshal::MBRProgramToJson(FCMBRNetworkProgram &program, Json::Value &out)
{
    return FCMBRNetworkProgram::MBRNetworkProgramToJson(program, out);
}
bool FCMarshal::JsonToMBRProgram(Json::Value &in, FCMBRNetworkProgram &program)
{
    return FCMBRNetworkProgram::JsonToMBRNetworkProgram(in, program);
}
bool FCMarshal::MBRNetworkChannelToJson(FCMBRNetworkChannel &channel, Json::Value &out)
{
    return FCMBRNetworkChannel::MBRNetworkChannelToJson(channel, out);
}
bool FCMarshal::JsonToMBRNetworkChannel(Json::Value &in, FCMBRNetworkChannel &channel)
{
    return FCMBRNetworkChannel::JsonToMBRNetworkChannel(in, channel);
}

// ---- Lists ----

bool FCMarshal::ChannelListToJson(std::vector<FCRemoteChannel> &channels, Json::Value &out)
{
    return WriteList<RecordCodec<FCRemoteChannel>>(out, "channel_array", channels);
}
bool FCMarshal::JsonToChannelList(Json::Value &in, std::vector<FCRemoteChannel> &channels)
{
    return ReadList<RecordCodec<FCRemoteChannel>>(in, "channel_array", channels);
}
bool FCMarshal::GenreListToJson(std::vector<FCGenreInfo> &genres, Json::Value &out)
{
    return WriteList<RecordCodec<FCGenreInfo>>(out, "array_genre", genres);
}
bool FCMarshal::JsonToGenreList(Json::Value &in, std::vector<FCGenreInfo> &genres)
{
    return ReadList<RecordCodec<FCGenreInfo>>(in, "array_genre", genres);
}
bool FCMarshal::SourceIDListToJson(std::vector<std::string> &sourceIds, Json::Value &out)
{
    return WriteList<StringCodec>(out, "sourceIDArray", sourceIds);
}
bool FCMarshal::JsonToSourceIDList(Json::Value &in, std::vector<std::string> &sourceIds)
{
    return ReadList<StringCodec>(in, "sourceIDArray", sourceIds);
}
bool FCMarshal::ServiceIDListToJson(std::list<unsigned long long> &serviceIds, Json::Value &out)
{
    return WriteList<ServiceIdCodec>(out, "service_list", serviceIds);
}
bool FCMarshal::JsonToServiceIDList(Json::Value &in, std::list<unsigned long long> &serviceIds)
{
    return ReadList<ServiceIdCodec>(in, "service_list", serviceIds);
}
bool FCMarshal::RFNetworkChannelTableToJson(FCRFNetworkChannelTable &table, Json::Value &out)
{
    return WriteList<ServiceIdCodec>(out, "service list", table.m_rfNetworkChannelList);
}
bool FCMarshal::JsonToRFNetworkChannelTable(Json::Value &in, FCRFNetworkChannelTable &table)
{
    return ReadList<ServiceIdCodec>(in, "service list", table.m_rfNetworkChannelList);
}
bool FCMarshal::MBRNetworkChannelTableToJson(FCMBRNetworkChannelTable &table, Json::Value &out)
{
    return WriteList<MBRChannelCodec>(out, "MBR channel table", table.m_mbrNetworkChannelDB);
}
bool FCMarshal::JsonToMBRNetworkChannelTable(Json::Value &in, FCMBRNetworkChannelTable &table)
{
    return ReadList<MBRChannelCodec>(in, "MBR channel table", table.m_mbrNetworkChannelDB);
}
bool FCMarshal::RatingListToJson(std::vector<RatingInfo> &ratings, Json::Value &out)
{
    return WriteList<RatingCodec>(out, "ratings", ratings);
}

bool FCMarshal::JsonToRatingList(Json::Value &in, std::vector<RatingInfo> &ratings)
{
    const Json::Value *array = ArrayMember(in, "ratings");
    if (array == nullptr || array->empty()) {
        FC_LOGE("%s: %s(%d) > DBG_LV[%d][FCMarshal::%s] has no ['ratings']\n", FC_DBG_LV, __func__);
        return false;
    }
    return ReadList<RatingCodec>(in, "ratings", ratings);
}

// ---- Keyed maps ----

bool FCMarshal::MetaProgramMapToJson(std::map<unsigned int, FCRemoteProgram> &programs, Json::Value &out)
{
    return WriteKeyedMap<ProgramCodec>(out, "meta_program_map", "key", programs);
}
bool FCMarshal::JsonToMetaProgramMap(Json::Value &in, std::map<unsigned int, FCRemoteProgram> &programs)
{
    return ReadKeyedMap<ProgramCodec>(in, "meta_program_map", "key", programs);
}
bool FCMarshal::VirtualProgramMapToJson(std::map<unsigned int, FCVirtualProgramData> &programs, Json::Value &out)
{
    return WriteKeyedMap<VirtualProgramCodec>(out, "virtual_program_map", "key", programs);
}
bool FCMarshal::JsonToVirtualProgramMap(const Json::Value &in, std::map<unsigned int, FCVirtualProgramData> &programs)
{
    return ReadKeyedMap<VirtualProgramCodec>(in, "virtual_program_map", "key", programs);
}
bool FCMarshal::ProgramSourceMapToJson(std::map<std::string, FCRemoteChannelKey> &sources, Json::Value &out)
{
    return WriteKeyedMap<RecordCodec<FCRemoteChannelKey>>(out, "out_tunable_program_source_id_map", "program_source_id",
                                                          sources);
}
bool FCMarshal::JsonToProgramSourceMap(Json::Value &in, std::map<std::string, FCRemoteChannelKey> &sources)
{
    return ReadKeyedMap<RecordCodec<FCRemoteChannelKey>>(in, "out_tunable_program_source_id_map", "program_source_id",
                                                         sources);
}
bool FCMarshal::CountMapToJson(std::map<std::string, int> &counts, Json::Value &out)
{
    return WriteKeyedMap<CountValue>(out, "channel count map", "genre", counts);
}
bool FCMarshal::JsonToCountMap(Json::Value &in, std::map<std::string, int> &counts)
{
    return ReadKeyedMap<CountValue>(in, "channel count map", "genre", counts);
}
bool FCMarshal::ProgramMapToJson(std::map<std::string, std::vector<FCRemoteProgram>> &programs, Json::Value &out)
{
    return WriteKeyedMap<ProgramArrayValue>(out, "out_mapProgramWithSourceID", "program_source_id", programs);
}
bool FCMarshal::JsonToProgramMap(Json::Value &in, std::map<std::string, std::vector<FCRemoteProgram>> &programs)
{
    return ReadKeyedMap<ProgramArrayValue>(in, "out_mapProgramWithSourceID", "program_source_id", programs);
}
bool FCMarshal::MBRProgramTableToJson(FCMBRNetworkProgramTable &table, Json::Value &out)
{
    return WriteKeyedMap<MBRProgramCodec>(out, "mbrProgramTable", "first", table.m_mbrNetworkProgramDB);
}
bool FCMarshal::JsonToMBRProgramTable(Json::Value &in, FCMBRNetworkProgramTable &table)
{
    return ReadKeyedMap<MBRProgramCodec>(in, "mbrProgramTable", "first", table.m_mbrNetworkProgramDB);
}

bool FCMarshal::ParseToJson(const std::string &text, Json::Value &out)
{
    return FCJsonHelper::ParseToJson(text, out);
}
