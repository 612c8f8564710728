// Replies that the content daemon relays from the remote content server.
#ifndef KELVO_CKELVORESPONSE_H
#define KELVO_CKELVORESPONSE_H

#include <map>
#include <string>

#include <json/json.h>

// How a service is to be shown; the server's texts, not interpreted here.
class CKelvoResponse_CertRule {
public:
    static bool ToJson(CKelvoResponse_CertRule &rule, Json::Value &out);
    static bool FromJson(Json::Value &in, CKelvoResponse_CertRule &rule);

    std::string m_strFirstScreen;
    std::string m_strAdultDefault;
    std::string m_strBarMode;
    std::string m_strBarRatio;
    std::string m_strServiceCertType;
    std::string m_strServiceRule;
    std::string m_strServiceUptimeBegin;
    std::string m_strServiceUptimeEnd;
};

class CKelvoResElement_VODProvider {
public:
    virtual ~CKelvoResElement_VODProvider() = default;

    bool operator==(const CKelvoResElement_VODProvider &other) const
    {
        return m_name == other.m_name && m_providerId == other.m_providerId && m_logo == other.m_logo &&
               m_widgetId == other.m_widgetId && m_version == other.m_version;
    }

    std::string m_name;
    std::string m_providerId;
    std::string m_logo;
    std::string m_widgetId;
    std::string m_version;
};

class CKelvoResponse_VODProviders {
public:
    static bool ToJson(CKelvoResponse_VODProviders &providers, Json::Value &out);
    static bool FromJson(Json::Value &in, CKelvoResponse_VODProviders &providers);

    std::map<std::string, CKelvoResElement_VODProvider> m_providers;
};

#endif
