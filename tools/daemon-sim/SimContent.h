// What the simulated content daemon knows (channels, genres, programmes, the source-to-service
// table, operator settings) and how it answers each wire method from that.
#ifndef KELVO_SIM_CONTENT_H
#define KELVO_SIM_CONTENT_H

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <json/json.h>

class KelvoSimContent {
public:
    // Replaces what the daemon knows. A fixture that is not an object, or whose members have the
    // wrong kind, is refused with a reason.
    // Takes the fixture over (a TV's fixture may be tens of megabytes): pass it with std::move.
    bool Load(Json::Value fixture, std::string &error);

    // The reply to one request. False when the daemon has no such method.
    bool Answer(const std::string &method, const std::string &argumentText, Json::Value &reply);
    // As Answer, as the text that goes on the wire: some methods answer plain text, not JSON. A
    // day's programme map is written from texts kept per programme since Load, not built as one
    // JSON tree and written out again.
    bool AnswerText(const std::string &method, const std::string &argumentText, std::string &text);
    // An older daemon lacks the newest methods of the streaming service's control (README.md).
    void SetOlder(bool older) { m_older = older; }

    // The names Answer knows, ascending (for introspection).
    static std::vector<std::string> Methods();

    static std::string ToCompactText(const Json::Value &value);

private:
    static std::unique_ptr<Json::StreamWriter> m_CompactWriter();

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

    // The streaming service's virtual channels and its control (SimVirtual.cpp).
    void m_GetProgramList(Json::Value &in, Json::Value &out);
    void m_GetVirtualProgram(Json::Value &in, Json::Value &out);
    void m_GetProgramWithIndicator(Json::Value &in, Json::Value &out);
    void m_GetPresentProgram(Json::Value &in, Json::Value &out);
    void m_GetChannelLogo(Json::Value &in, Json::Value &out);
    void m_GetProgramImage(Json::Value &in, Json::Value &out);
    void m_GetServiceIdFromOnTV(Json::Value &in, Json::Value &out);
    void m_Switch(Json::Value &in, Json::Value &out);
    void m_SetDataServiceType(Json::Value &in, Json::Value &out);
    void m_GetDataServiceType(Json::Value &in, Json::Value &out);
    void m_ProgramInfoIsAvailable(Json::Value &in, Json::Value &out);
    void m_SetDeepLink(Json::Value &in, Json::Value &out);
    void m_GetDeepLink(Json::Value &in, Json::Value &out);
    void m_GetPreviewData(Json::Value &in, Json::Value &out);
    void m_LaunchHomeScreen(Json::Value &in, Json::Value &out);
    void m_CheckRatingLock(Json::Value &in, Json::Value &out);
    void m_NotifyContentIsChanged(Json::Value &in, Json::Value &out);
    void m_GetAppIdAndUrl(Json::Value &in, Json::Value &out);
    void m_GetRatingInfo(Json::Value &in, Json::Value &out);
    void m_LoadVirtual(const Json::Value &fixture);
    const Json::Value *m_VirtualChannel(const std::string &serviceId) const;
    const Json::Value *m_VirtualProgramme(const Json::Value &programId, const Json::Value **channel) const;
    static Json::Value m_ProgrammeReply(const Json::Value &channel, const Json::Value &programme);
    // App-on-channel services: the programme guide the applications publish per
    // package, their application information, and the resume positions of on-demand items.
    void m_CreateAppInfo(Json::Value &in, Json::Value &out);
    void m_UpdateAppInfo(Json::Value &in, Json::Value &out);
    void m_RemoveAppInfo(Json::Value &in, Json::Value &out);
    void m_UpdateProgramInfo(Json::Value &in, Json::Value &out);
    void m_RemoveProgramInfo(Json::Value &in, Json::Value &out);
    void m_GetProgramInfoList(Json::Value &in, Json::Value &out);
    void m_GetPresentProgramInfo(Json::Value &in, Json::Value &out);
    void m_GetAocProgramInfo(Json::Value &in, Json::Value &out);
    void m_GetAocProgramInfoByIndicator(Json::Value &in, Json::Value &out);
    void m_SetVODResumeInfo(Json::Value &in, Json::Value &out);
    bool m_LoadAoc(const Json::Value &fixture, std::string &error);
    // The programmes of a service (every package publishing for it) by start time.
    std::map<unsigned int, const Json::Value *> m_AocProgramsOf(const std::string &serviceId) const;

    void m_SearchPrograms(Json::Value &in, Json::Value &out, bool inTitle, bool inDescription);
    const Json::Value *m_ChannelBySource(const std::string &sourceId) const;
    const Json::Value *m_ProgrammeAt(const std::string &sourceId, unsigned long long when) const;
    bool m_ServiceOfSource(const std::string &sourceId, std::string &serviceId) const;
    std::vector<std::string> m_SourcesOfService(const std::string &serviceId) const;
    std::vector<std::string> m_SourceIds() const;

    Json::Value m_fixture{Json::objectValue};
    // Per source of "programs": each programme's start and compact text, in the fixture's order.
    struct Piece {
        long long start;
        std::string text;
    };
    std::map<std::string, std::vector<Piece>> m_programmeTexts;
    // The programmes of a GetProgramMap request: per requested source that has any in the window,
    // the source and the positions of its programmes, in the order of the reply.
    std::vector<std::pair<std::string, std::vector<size_t>>> m_ProgramMapSelection(const Json::Value &in) const;
    static bool m_ParseArgument(const std::string &argumentText, Json::Value &in);
    Json::Value m_msoConfig{Json::objectValue};
    std::string m_country;
    std::string m_language;

    // The request being answered, and a reply in plain text where a method answers no JSON.
    std::string m_method;
    std::string m_argumentText;
    bool m_plainReply = false;
    std::string m_plainReplyText;
    bool m_older = false;
    // The streaming service's switches and flags, as Set... methods leave them (SimVirtual.cpp).
    Json::Value m_switches{Json::objectValue};
    int m_dataServiceType = 0;
    std::string m_deepLink;
    std::string m_contentRating;
    unsigned long long m_imageDownloads = 0;
    struct AocPackage {
        std::string serviceId;                         // decimal text
        std::map<unsigned int, Json::Value> programs;  // by start time
    };
    std::map<std::string, AocPackage> m_aocPackages;  // by package id
    std::map<std::string, Json::Value> m_appInfos;    // by the information's "packageId"
    std::map<std::pair<std::string, std::string>, unsigned long long> m_resumePositions;  // (service, item)
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
