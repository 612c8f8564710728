// Calendar time with its zone as the daemon's JSON carries it (W3C date-time text), and the
// parts of the middleware's 64-bit service id.
#ifndef KELVO_FCSERVICEIDUTIL_H
#define KELVO_FCSERVICEIDUTIL_H

#include <string>

// One calendar time with its zone offset. The offset is kept as the platform's time wrapper
// counts it, the other way round from the zone designator: "+09:00" is -540.
class FCTime {
public:
    FCTime();
    virtual ~FCTime();

    // UTC seconds of the held time.
    unsigned long to_UTC() const;
    bool from_UTC(unsigned long utcSeconds, int offsetMinutes, bool daylightSaving);
    // "YYYY-MM-DDThh:mm:ss" with an optional zone ("Z", "+hh:mm", "-hh:mm"); false when the
    // date-time does not parse or a sign is not followed by hours and minutes.
    bool from_W3CDateTimeFormat(const std::string &text, bool daylightSaving);
    // The zone is written only when the offset is not 0, and never as "Z".
    std::string to_W3CDateTimeFormat() const;

    int m_year = 0;
    int m_month = 0;
    int m_day = 0;
    int m_hour = 0;
    int m_minute = 0;
    int m_second = 0;
    unsigned int m_offsetHours = 0;    // absolute hours of the zone offset
    unsigned int m_offsetMinutes = 0;  // remaining absolute minutes of the zone offset
    int m_offset = 0;                  // signed offset in minutes, as the time wrapper takes it
    bool m_daylightSaving = false;
};

// The parts of a service id (the name is the middleware's own). Extraction starts from these
// values, so a field that the id's layout does not hold keeps its start value.
struct ExtractedServiceInfomations {
    unsigned long long service_id = 0;
    bool direct_tune = false;
    int channel_type = -1;
    unsigned short channel_number = 0;
    int service_profile = -1;
    unsigned short major = 0;
    unsigned short minor = 0;
    unsigned short program_number = 0;
};

class FCServiceIdUtil {
public:
    // Channel type of a virtual (streaming) channel.
    static const int kVirtualChannelType = 9;

    // Three layouts: a direct-tune id (top byte 0xFA) holds only a channel number; an id of 2^32
    // or more holds every part; a shorter id holds profile, number and a wider type field.
    // Always true.
    static bool ExtractServiceInformationsFromServiceId(unsigned long long serviceId, ExtractedServiceInfomations &out);
    static bool IsVirtualChannel(unsigned long long serviceId);
};

#endif
