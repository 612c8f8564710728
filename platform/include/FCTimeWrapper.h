// The set's time conversions: UTC seconds to and from a local calendar time.
//
// The zone offset is in minutes and counts the other way round from the zone designator of a
// date-time text: it is what is added to the local time to reach UTC, so a zone of +09:00 is
// -540. Daylight saving moves the local time one hour ahead of the zone's standard time.
#ifndef KELVO_PLATFORM_FCTIMEWRAPPER_H
#define KELVO_PLATFORM_FCTIMEWRAPPER_H

// One calendar time: year with century, month 1 to 12, day 1 to 31, hour 0 to 23, minute and
// second 0 to 59.
struct FCCalendarTime {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

class FCTimeWrapper {
public:
    // The local calendar time of utcSeconds.
    static bool ConvertEpoch(FCCalendarTime &out, unsigned long utcSeconds, int offsetMinutes, bool daylightSaving);
    // The UTC seconds of a local calendar time; fields out of their range carry over (a 61st
    // minute is the next hour's first).
    static bool ConvertLocal(unsigned long &utcSeconds, const FCCalendarTime &local, int offsetMinutes,
                             bool daylightSaving);
    // Seconds since the epoch, UTC, now.
    static unsigned long EpochTime();
};

#endif
