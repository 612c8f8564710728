#include "FCServiceIdUtil.h"

#include <cstdio>
#include <cstring>
#include <ctime>

#include "FCDebug.h"
#include "FCTimeWrapper.h"

namespace {
const char *const kW3CParseFormat = "%Y-%m-%dT%T";
// A macro, so that the compiler checks the arguments against it.
#define KELVO_W3C_PRINT_FORMAT "%04d-%02d-%02dT%02d:%02d:%02d"

// Bits [first, first + count) of value.
unsigned long long Bits(unsigned long long value, unsigned int first, unsigned int count)
{
    return (value >> first) & ((1ULL << count) - 1ULL);
}
}  // namespace

FCTime::FCTime() {}

FCTime::~FCTime() {}

unsigned long FCTime::to_UTC() const
{
    FCCalendarTime local;
    local.year = m_year;
    local.month = m_month;
    local.day = m_day;
    local.hour = m_hour;
    local.minute = m_minute;
    local.second = m_second;
    unsigned long seconds = 0;
    FCTimeWrapper::ConvertLocal(seconds, local, m_offset, m_daylightSaving);
    return seconds;
}

bool FCTime::from_UTC(unsigned long utcSeconds, int offsetMinutes, bool daylightSaving)
{
    FCCalendarTime local;
    FCTimeWrapper::ConvertEpoch(local, utcSeconds, offsetMinutes, daylightSaving);
    m_year = local.year;
    m_month = local.month;
    m_day = local.day;
    m_hour = local.hour;
    m_minute = local.minute;
    m_second = local.second;
    m_offset = offsetMinutes;
    if (m_offset != 0) {
        const unsigned int minutes =
            m_offset < 0 ? 0U - static_cast<unsigned int>(m_offset) : static_cast<unsigned int>(m_offset);
        m_offsetHours = minutes / 60;
        m_offsetMinutes = minutes % 60;
    }
    m_daylightSaving = daylightSaving;
    return true;
}

bool FCTime::from_W3CDateTimeFormat(const std::string &text, bool daylightSaving)
{
    char buffer[256];
    std::snprintf(buffer, sizeof buffer, "%s", text.c_str());
    struct tm parsed = {};
    if (strptime(buffer, kW3CParseFormat, &parsed) == nullptr)
        return false;
    m_year = parsed.tm_year + 1900;
    m_month = parsed.tm_mon + 1;
    m_day = parsed.tm_mday;
    m_hour = parsed.tm_hour;
    m_minute = parsed.tm_min;
    m_second = parsed.tm_sec;

    // The zone designator follows the date-time as it prints, which is 19 characters for a
    // four-digit year; a single character after it is not a zone.
    char printed[64];
    const int length = std::snprintf(printed, sizeof printed, KELVO_W3C_PRINT_FORMAT, m_year, m_month, m_day, m_hour,
                                     m_minute, m_second);
    const size_t zoneAt = length > 0 ? static_cast<size_t>(length) : 0;
    if (text.size() > zoneAt + 1) {
        const char designator = text[zoneAt];
        if (designator == '+' || designator == '-') {
            if (std::sscanf(text.c_str() + zoneAt + 1, "%02u:%02u", &m_offsetHours, &m_offsetMinutes) != 2)
                return false;
            // Stored the other way round: the time wrapper adds the offset to reach UTC.
            const int minutes = static_cast<int>(m_offsetHours * 60 + m_offsetMinutes);
            m_offset = designator == '+' ? -minutes : minutes;
        } else if (designator == 'Z') {
            m_offsetHours = 0;
            m_offsetMinutes = 0;
            m_offset = 0;
        }
    }
    m_daylightSaving = daylightSaving;
    return true;
}

std::string FCTime::to_W3CDateTimeFormat() const
{
    char text[96];
    int length =
        std::snprintf(text, sizeof text, KELVO_W3C_PRINT_FORMAT, m_year, m_month, m_day, m_hour, m_minute, m_second);
    if (m_offset != 0 && length > 0 && static_cast<size_t>(length) < sizeof text)
        std::snprintf(text + length, sizeof text - static_cast<size_t>(length), "%c%02u:%02u", m_offset < 0 ? '+' : '-',
                      m_offsetHours, m_offsetMinutes);
    return text;
}

bool FCServiceIdUtil::ExtractServiceInformationsFromServiceId(unsigned long long serviceId,
                                                              ExtractedServiceInfomations &out)
{
    out = ExtractedServiceInfomations();
    out.service_id = serviceId;
    if (Bits(serviceId, 56, 8) == 0xFA) {
        out.direct_tune = true;
        out.channel_number = static_cast<unsigned short>(Bits(serviceId, 0, 16));
        FC_LOGD("%s: %s(%d) > [%d][%d][FCServiceIdUtil::%s] (direct tune) service_id:%llu, channel_number:%d\n",
                FC_PID_TID, __func__, serviceId, out.channel_number);
        return true;
    }
    if (serviceId >= (1ULL << 32)) {
        out.minor = static_cast<unsigned short>(Bits(serviceId, 0, 10));
        out.major = static_cast<unsigned short>(Bits(serviceId, 10, 13));
        out.program_number = static_cast<unsigned short>(Bits(serviceId, 23, 16));
        out.service_profile = static_cast<int>(Bits(serviceId, 39, 6));
        out.channel_number = static_cast<unsigned short>(Bits(serviceId, 45, 15));
        out.channel_type = static_cast<int>(Bits(serviceId, 60, 4));
    } else {
        // The short form's type field is eleven bits wide, wider than the full form's four.
        out.service_profile = static_cast<int>(Bits(serviceId, 0, 6));
        out.channel_number = static_cast<unsigned short>(Bits(serviceId, 6, 15));
        out.channel_type = static_cast<int>(Bits(serviceId, 21, 11));
    }
    FC_LOGD("%s: %s(%d) > [%d][%d][FCServiceIdUtil::%s]service_id:%llu, major:%d, minor:%d, program_number:%d, "
            "service_profile:%d, channel_number:%d, channel_type:%d\n",
            FC_PID_TID, __func__, serviceId, out.major, out.minor, out.program_number, out.service_profile,
            out.channel_number, out.channel_type);
    return true;
}

bool FCServiceIdUtil::IsVirtualChannel(unsigned long long serviceId)
{
    ExtractedServiceInfomations service_info;
    ExtractServiceInformationsFromServiceId(serviceId, service_info);
    FC_LOGD("%s: %s(%d) > [%d][%d][FCServiceIdUtil::%s] service_info.channel_type:%d\n", FC_PID_TID, __func__,
            service_info.channel_type);
    return service_info.channel_type == kVirtualChannelType;
}
