#include "programData.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iconv.h>
#include <vector>

#include "FCElementData.h"
#include "KelvoUtilLog.h"
#include "TVServiceAPI.h"

namespace {

// Output sizes of the converted texts, terminator included. A title's input is clamped to
// kTitleInputBytes (256 UTF-16 units); an extended text is cut only by its output buffer.
const unsigned int kTitleOutputBytes = 513;
const unsigned int kTitleInputBytes = 512;
const unsigned int kDescriptionOutputBytes = 4097;

// The converter may fill a buffer to its last byte, leaving no terminator.
std::string TextOf(const std::vector<char> &buffer)
{
    return std::string(buffer.data(), strnlen(buffer.data(), buffer.size()));
}

const iconv_t kNoConverter = reinterpret_cast<iconv_t>(-1);  // NOLINT(performance-no-int-to-ptr): iconv's own

// The thread's converter from UTF-16BE to UTF-8, reset to its initial state: a dump converts two
// texts per programme, and opening a converter for each cost more than converting the text.
// kNoConverter while none can be opened; the next text tries again.
iconv_t Utf16BEToUtf8()
{
    struct Converter {
        iconv_t handle = kNoConverter;
        ~Converter()
        {
            if (handle != kNoConverter)
                iconv_close(handle);
        }
    };
    thread_local Converter converter;
    if (converter.handle == kNoConverter)
        converter.handle = iconv_open("UTF-8", "UTF-16BE");
    else
        iconv(converter.handle, nullptr, nullptr, nullptr, nullptr);
    return converter.handle;
}

using TextReader = bool (TCProgramData::*)(unsigned short *, unsigned int *);

// Reads a UTF-16 text of the record into a zeroed buffer of length + 1 units; returns the
// number of input bytes the record delivered, never more than the buffer holds.
unsigned int ReadUnits(const TCProgramData &event, TextReader reader, unsigned int length,
                       std::vector<unsigned short> &units)
{
    units.assign(static_cast<size_t>(length) + 1, 0);
    TCProgramData copy(event);  // the record is const; its reading call is not
    unsigned int delivered = length;
    (copy.*reader)(units.data(), &delivered);
    return 2 * std::min(delivered, length);
}

}  // namespace

KelvoUtilProgramData::KelvoUtilProgramData(TCProgramData *event)
{
    m_serviceId = event->ServiceId();
    m_eventId = event->EventId();
    m_startTime = event->StartTime();
    m_duration = event->Duration();
    SetLanguageFromTVS(*event);
    m_tsid = 0;
    m_onid = 0;
    SetTitleFromTVS(*event);
    SetDescriptionFromTVS(*event);
    m_activityId = 0;
}

KelvoUtilProgramData::KelvoUtilProgramData(FCRemoteProgram &program, unsigned long long serviceId)
{
    m_serviceId = serviceId;
    m_activityId = static_cast<unsigned short>(program.m_activityID);
    m_programSourceId = program.m_programSourceId;
    m_metaProgramId = program.m_programId;
    m_language = program.m_lang;
    m_startTime = program.m_utcStartTime;
    m_duration = static_cast<unsigned long>(program.m_duration);
    m_title = program.m_title;
    m_description = program.m_desc;  // the long text, not the short one
    m_eventId = 0;
    m_tsid = 0;
    m_onid = 0;
}

KelvoUtilProgramData::~KelvoUtilProgramData() = default;

void KelvoUtilProgramData::SetLanguageFromTVS(TCProgramData &event)
{
    const unsigned int code = event.Language();
    const char text[4] = {static_cast<char>((code >> 16) & 0xFF), static_cast<char>((code >> 8) & 0xFF),
                          static_cast<char>(code & 0xFF), '\0'};
    m_language = text;
}

void KelvoUtilProgramData::SetTitleFromTVS(const TCProgramData &event)
{
    KELVO_UTIL_LOG("Enter\n");
    const unsigned int length = event.TitleLength();
    if (length == 0) {
        m_title.clear();
        return;
    }
    KELVO_UTIL_LOG("Title length %u\n", length);
    std::vector<unsigned short> units;
    const unsigned int inBytes = std::min(ReadUnits(event, &TCProgramData::Title, length, units), kTitleInputBytes);
    std::vector<char> out(kTitleOutputBytes, 0);
    Unicode2Utf8(out.data(), kTitleOutputBytes, reinterpret_cast<char *>(units.data()), inBytes);
    m_title = TextOf(out);
    KELVO_UTIL_LOG("Title %s\n", m_title.c_str());
}

void KelvoUtilProgramData::SetDescriptionFromTVS(const TCProgramData &event)
{
    KELVO_UTIL_LOG("Enter\n");
    const unsigned int length = event.ExtendedTextLength();
    if (length == 0) {
        m_description.clear();
        return;
    }
    KELVO_UTIL_LOG("Description length %u\n", length);
    std::vector<unsigned short> units;
    const unsigned int inBytes = ReadUnits(event, &TCProgramData::ExtendedText, length, units);
    std::vector<char> out(kDescriptionOutputBytes, 0);
    Unicode2Utf8(out.data(), kDescriptionOutputBytes, reinterpret_cast<char *>(units.data()), inBytes);
    m_description = TextOf(out);
}

void KelvoUtilProgramData::Unicode2Utf8(char *out, unsigned int outSize, char *in, unsigned int inBytes)
{
    try {
        iconv_t converter = Utf16BEToUtf8();
        if (converter == kNoConverter) {
            KELVO_UTIL_LOG("Iconv open failed");
            return;
        }
        char *inPtr = in;
        size_t inLeft = inBytes;
        char *outPtr = out;
        size_t outLeft = outSize;
        if (iconv(converter, &inPtr, &inLeft, &outPtr, &outLeft) == static_cast<size_t>(-1)) {
            KELVO_UTIL_LOG("iconv failed: %d", errno);
        }
    } catch (...) {
        KELVO_UTIL_LOG("There is some problem on text encoding.");
    }
}
