#include "TVServiceAPI.h"

#include "KelvoHostLog.h"

#include <cstdarg>
#include <string>

// The middleware's diagnostics share the log stream with dlog's lines, in the order they are made.
void TCApiPrintMessage(const char *format, ...)
{
    va_list args;
    va_start(args, format);
    std::string line;
    if (KelvoHostLog::Format(line, format, args)) {
        line += '\n';
        KelvoHostLog::Write(line.data(), line.size(), false);
    }
    va_end(args);
}

void TCServiceData::m_MissingTag(int field) const
{
    TCApiPrintMessage("*************************** ASSERT TAG ***************************");
    TCApiPrintMessage("******************* ASSERT: missing tag[%3d] *********************", field);
}

long long TCServiceData::Get(int field) const
{
    auto it = m_fields.find(field);
    if (it != m_fields.end())
        return it->second;
    m_MissingTag(field);
    return 0;
}

std::string TCServiceData::GetString(int field) const
{
    auto it = m_texts.find(field);
    if (it != m_texts.end())
        return it->second;
    m_MissingTag(field);
    return std::string();
}

TCString16 TCServiceData::GetString16(int field) const
{
    auto it = m_texts16.find(field);
    if (it != m_texts16.end())
        return it->second;
    m_MissingTag(field);
    return TCString16();
}

namespace {
std::vector<unsigned short> ToBigEndianUnits(const std::u16string &text)
{
    std::vector<unsigned short> units;
    units.reserve(text.size());
    for (char16_t c : text) {
        unsigned short u = static_cast<unsigned short>(c);
        unsigned char bytes[2] = {static_cast<unsigned char>(u >> 8), static_cast<unsigned char>(u & 0xff)};
        unsigned short stored;
        __builtin_memcpy(&stored, bytes, 2);
        units.push_back(stored);
    }
    return units;
}

bool CopyUnits(const std::vector<unsigned short> &from, unsigned short *buffer, unsigned int *length)
{
    if (buffer == nullptr || length == nullptr)
        return false;
    unsigned int n = *length < from.size() ? *length : static_cast<unsigned int>(from.size());
    for (unsigned int i = 0; i < n; ++i)
        buffer[i] = from[i];
    *length = n;
    return true;
}
}  // namespace

bool TCProgramData::Title(unsigned short *buffer, unsigned int *length)
{
    return CopyUnits(m_title, buffer, length);
}
bool TCProgramData::ExtendedText(unsigned short *buffer, unsigned int *length)
{
    return CopyUnits(m_extendedText, buffer, length);
}
void TCProgramData::SetTitle(const std::u16string &text)
{
    m_title = ToBigEndianUnits(text);
}
void TCProgramData::SetExtendedText(const std::u16string &text)
{
    m_extendedText = ToBigEndianUnits(text);
}

void TVServiceAPI::Destroy(ITVService *service)
{
    delete service;
}
