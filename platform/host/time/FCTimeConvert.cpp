// Host time conversions: libc's UTC calendar (timegm, gmtime_r) with the zone offset and the
// daylight-saving hour applied on the seconds.
#include "FCTimeWrapper.h"

#include <ctime>

namespace {
long long LocalShift(int offsetMinutes, bool daylightSaving)
{
    return -60LL * offsetMinutes + (daylightSaving ? 3600 : 0);
}
}  // namespace

bool FCTimeWrapper::ConvertEpoch(FCCalendarTime &out, unsigned long utcSeconds, int offsetMinutes, bool daylightSaving)
{
    const time_t local =
        static_cast<time_t>(static_cast<long long>(utcSeconds) + LocalShift(offsetMinutes, daylightSaving));
    struct tm fields = {};
    if (gmtime_r(&local, &fields) == nullptr)
        return false;
    out.year = fields.tm_year + 1900;
    out.month = fields.tm_mon + 1;
    out.day = fields.tm_mday;
    out.hour = fields.tm_hour;
    out.minute = fields.tm_min;
    out.second = fields.tm_sec;
    return true;
}

bool FCTimeWrapper::ConvertLocal(unsigned long &utcSeconds, const FCCalendarTime &local, int offsetMinutes,
                                 bool daylightSaving)
{
    struct tm fields = {};
    fields.tm_year = local.year - 1900;
    fields.tm_mon = local.month - 1;
    fields.tm_mday = local.day;
    fields.tm_hour = local.hour;
    fields.tm_min = local.minute;
    fields.tm_sec = local.second;
    const long long seconds = static_cast<long long>(timegm(&fields));
    utcSeconds = static_cast<unsigned long>(seconds - LocalShift(offsetMinutes, daylightSaving));
    return true;
}
