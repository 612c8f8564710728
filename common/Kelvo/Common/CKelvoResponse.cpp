#include "CKelvoResponse.h"

namespace {

struct CertRuleField {
    const char *key;
    std::string CKelvoResponse_CertRule::*member;
};

const CertRuleField kCertRuleFields[] = {
    {"str_first_screen", &CKelvoResponse_CertRule::m_strFirstScreen},
    {"str_adult_default", &CKelvoResponse_CertRule::m_strAdultDefault},
    {"str_bar_mode", &CKelvoResponse_CertRule::m_strBarMode},
    {"str_bar_ratio", &CKelvoResponse_CertRule::m_strBarRatio},
    {"str_service_cert_type", &CKelvoResponse_CertRule::m_strServiceCertType},
    {"str_service_rule", &CKelvoResponse_CertRule::m_strServiceRule},
    {"str_service_uptime_begin", &CKelvoResponse_CertRule::m_strServiceUptimeBegin},
    {"str_service_uptime_end", &CKelvoResponse_CertRule::m_strServiceUptimeEnd},
};

struct ProviderField {
    const char *key;
    std::string CKelvoResElement_VODProvider::*member;
};

const ProviderField kProviderFields[] = {
    {"name", &CKelvoResElement_VODProvider::m_name},       {"provider id", &CKelvoResElement_VODProvider::m_providerId},
    {"logo", &CKelvoResElement_VODProvider::m_logo},       {"widget id", &CKelvoResElement_VODProvider::m_widgetId},
    {"version", &CKelvoResElement_VODProvider::m_version},
};

}  // namespace

bool CKelvoResponse_CertRule::ToJson(CKelvoResponse_CertRule &rule, Json::Value &out)
{
    Json::Value &nested = out["out_cert_rule"];
    for (const auto &field : kCertRuleFields)
        nested[field.key] = rule.*field.member;
    return true;
}

bool CKelvoResponse_CertRule::FromJson(Json::Value &in, CKelvoResponse_CertRule &rule)
{
    Json::Value &nested = in["out_cert_rule"];
    for (const auto &field : kCertRuleFields)
        rule.*field.member = nested[field.key].asString();
    return true;
}

bool CKelvoResponse_VODProviders::ToJson(CKelvoResponse_VODProviders &providers, Json::Value &out)
{
    if (providers.m_providers.empty())
        return true;
    Json::Value &array = out["out_vod_providers"];
    for (const auto &entry : providers.m_providers) {
        Json::Value element(Json::objectValue);
        element["string"] = entry.first;
        for (const auto &field : kProviderFields)
            element[field.key] = entry.second.*field.member;
        array.append(std::move(element));
    }
    return true;
}

bool CKelvoResponse_VODProviders::FromJson(Json::Value &in, CKelvoResponse_VODProviders &providers)
{
    const Json::Value &reply = in;
    const Json::Value &array = reply["out_vod_providers"];
    // Only an array holds providers; indexing any other value would raise instead.
    if (!array.isArray())
        return true;
    for (const auto &element : array) {
        CKelvoResElement_VODProvider provider;
        for (const auto &field : kProviderFields)
            provider.*field.member = element[field.key].asString();
        providers.m_providers[element["string"].asString()] = provider;
    }
    return true;
}
