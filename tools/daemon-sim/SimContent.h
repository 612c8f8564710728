// What the simulated content daemon knows (channels, genres, programmes, the source-to-service
// table, operator settings) and how it answers each wire method from that.
#ifndef KELVO_SIM_CONTENT_H
#define KELVO_SIM_CONTENT_H

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <json/json.h>

class KelvoSimContent {
public:
    // Replaces what the daemon knows. A fixture that is not an object, or whose members have the
    // wrong kind, is refused with a reason.
    bool Load(const Json::Value &fixture, std::string &error);

    // The reply to one request. False when the daemon has no such method.
    bool Answer(const std::string &method, const std::string &argumentText, Json::Value &reply);

    // The names Answer knows, ascending (for introspection).
    static std::vector<std::string> Methods();

    static std::string ToCompactText(const Json::Value &value);

private:
    using Handler = void (KelvoSimContent::*)(Json::Value &, Json::Value &);
    static const std::map<std::string, Handler> &m_Handlers();

    // One entry per wire method; see the table in SimContent.cpp.
    void m_Reset(Json::Value &in, Json::Value &out);
    void m_SetRemoteContentEnv(Json::Value &in, Json::Value &out);
    void m_GetRemoteContentEnv(Json::Value &in, Json::Value &out);
    void m_GetActivity(Json::Value &in, Json::Value &out);
    void m_GetChannelCRC(Json::Value &in, Json::Value &out);
    void m_GetFenvoraVersion(Json::Value &in, Json::Value &out);
    void m_GetRemoteContentConfig(Json::Value &in, Json::Value &out);
    void m_SetRemoteContentConfig(Json::Value &in, Json::Value &out);
    void m_GetCertRule(Json::Value &in, Json::Value &out);
    void m_GetChannelList(Json::Value &in, Json::Value &out);
    void m_GetTunableProgramSourceIdMap(Json::Value &in, Json::Value &out);
    void m_GetProgramMap(Json::Value &in, Json::Value &out);
    void m_GetGenreList(Json::Value &in, Json::Value &out);
    void m_GetVODProviders(Json::Value &in, Json::Value &out);
    void m_GetProgramBySource(Json::Value &in, Json::Value &out);
    void m_GetChannelBySource(Json::Value &in, Json::Value &out);
    void m_GetSearchKeyRF(Json::Value &in, Json::Value &out);
    void m_GetSearchKeyMBR(Json::Value &in, Json::Value &out);
    void m_GetFullProgramSourceIdList(Json::Value &in, Json::Value &out);
    void m_GetChannelByService(Json::Value &in, Json::Value &out);
    void m_GetServiceByChannel(Json::Value &in, Json::Value &out);
    void m_GetServiceBySource(Json::Value &in, Json::Value &out);
    void m_GetServiceListBySource(Json::Value &in, Json::Value &out);
    void m_GetChannelsByName(Json::Value &in, Json::Value &out);
    void m_GetChannelByNumber(Json::Value &in, Json::Value &out);
    void m_GetProgramsByKeyword(Json::Value &in, Json::Value &out);
    void m_GetProgramsByTitle(Json::Value &in, Json::Value &out);
    void m_GetProgramsByDescription(Json::Value &in, Json::Value &out);

    void m_SearchPrograms(Json::Value &in, Json::Value &out, bool inTitle, bool inDescription);
    const Json::Value *m_ChannelBySource(const std::string &sourceId) const;
    const Json::Value *m_ProgrammeAt(const std::string &sourceId, unsigned long long when) const;
    bool m_ServiceOfSource(const std::string &sourceId, std::string &serviceId) const;
    std::vector<std::string> m_SourcesOfService(const std::string &serviceId) const;
    std::vector<std::string> m_SourceIds() const;

    Json::Value m_fixture{Json::objectValue};
    Json::Value m_msoConfig{Json::objectValue};
    std::string m_country;
    std::string m_language;

    // Network-channel activities, RF genre navigation, image downloads and content recognition
    // (SimTvServices.cpp).
    void m_AllocateActivity(Json::Value &in, Json::Value &out);
    void m_GetActivityBySource(Json::Value &in, Json::Value &out);
    void m_DeleteActivity(Json::Value &in, Json::Value &out);
    void m_SetActivitySource(Json::Value &in, Json::Value &out);
    void m_AppendActivitySource(Json::Value &in, Json::Value &out);
    void m_RemoveActivitySource(Json::Value &in, Json::Value &out);
    void m_SetNavigationGenre(Json::Value &in, Json::Value &out);
    void m_GetNavigationGenre(Json::Value &in, Json::Value &out);
    void m_GetRFChannelMap(Json::Value &in, Json::Value &out);
    void m_GetRFChannelUp(Json::Value &in, Json::Value &out);
    void m_GetRFChannelDown(Json::Value &in, Json::Value &out);
    void m_GetRFChannelCount(Json::Value &in, Json::Value &out);
    void m_GetPresentMetaProgram(Json::Value &in, Json::Value &out);
    void m_GetNextMetaProgram(Json::Value &in, Json::Value &out);
    void m_GetPrevMetaProgram(Json::Value &in, Json::Value &out);
    void m_GetMetaProgramMap(Json::Value &in, Json::Value &out);
    void m_CheckMetaProgramExist(Json::Value &in, Json::Value &out);
    void m_IsSupportMetadataforEPG(Json::Value &in, Json::Value &out);
    void m_RegisterDownload(Json::Value &in, Json::Value &out);
    void m_GetDownloadByUrl(Json::Value &in, Json::Value &out);
    void m_GetDownloadById(Json::Value &in, Json::Value &out);
    void m_UnregisterDownloadByUrl(Json::Value &in, Json::Value &out);
    void m_UnregisterDownloadById(Json::Value &in, Json::Value &out);
    void m_DeleteAllImage(Json::Value &in, Json::Value &out);
    void m_IsNearProgramBoundary(Json::Value &in, Json::Value &out);
    void m_GetVerifiedMeta(Json::Value &in, Json::Value &out);
    void m_SetVerifiedACRInfo(Json::Value &in, Json::Value &out);

    struct TvServices;
    // The activities' sources, the navigation genre, the downloads and the recognitions; new
    // with every fixture.
    std::shared_ptr<TvServices> m_tv;
    TvServices &m_Tv();
    std::vector<std::pair<unsigned long long, const Json::Value *>> m_RFChannels(const std::string &genre) const;
    std::vector<const Json::Value *> m_ProgrammesOfService(unsigned long long serviceId) const;
    long long m_Now() const;
};

#endif
