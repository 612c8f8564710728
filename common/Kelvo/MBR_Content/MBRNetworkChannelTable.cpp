#include "MBRNetworkChannelTable.h"

#include "FCDebug.h"

namespace {

template <typename Match>
bool FindFirst(const std::list<FCMBRNetworkChannel> &channels, FCMBRNetworkChannel &out, Match match)
{
    for (const auto &channel : channels) {
        if (match(channel)) {
            out = channel;
            return true;
        }
    }
    return false;
}

}  // namespace

bool FCMBRNetworkChannelTable::AppendNetworkChannel(const FCMBRNetworkChannel &channel)
{
    m_mbrNetworkChannelDB.push_back(channel);
    return true;
}

bool FCMBRNetworkChannelTable::Merge(const FCMBRNetworkChannelTable &other)
{
    // Copy first: merging a table into itself must not walk a growing list.
    std::list<FCMBRNetworkChannel> copies(other.m_mbrNetworkChannelDB);
    m_mbrNetworkChannelDB.splice(m_mbrNetworkChannelDB.end(), copies);
    return true;
}

bool FCMBRNetworkChannelTable::FindNetworkChannelbyMajorMinor(const int &major, const int &minor,
                                                              FCMBRNetworkChannel &out)
{
    return FindFirst(m_mbrNetworkChannelDB, out,
                     [&](const FCMBRNetworkChannel &c) { return c.GetMajor() == major && c.GetMinor() == minor; });
}

bool FCMBRNetworkChannelTable::FindNetworkChannelbyChannelID(const int &id, FCMBRNetworkChannel &out)
{
    return FindFirst(m_mbrNetworkChannelDB, out, [&](const FCMBRNetworkChannel &c) { return c.GetChannelID() == id; });
}

bool FCMBRNetworkChannelTable::FindNetworkChannelByChannelIDOriginMajor(const int &id, const int &originMajor,
                                                                        FCMBRNetworkChannel &out)
{
    return FindFirst(m_mbrNetworkChannelDB, out, [&](const FCMBRNetworkChannel &c) {
        return c.GetChannelID() == id && c.GetOriginMajor() == originMajor;
    });
}

bool FCMBRNetworkChannelTable::GetMaxNumberOfMajorMinor(int &major, int &minor)
{
    major = 0;
    minor = 0;
    if (m_mbrNetworkChannelDB.empty()) {
        FC_LOGI("%s: %s(%d) > [%d][%d]FCMBRNetworkChannelDB::GetMaxNumberOfMajorMinor(), m_mbrNetworkChannelDB is "
                "empty!\n",
                FC_PID_TID);
        return false;
    }
    for (const auto &channel : m_mbrNetworkChannelDB) {
        if (channel.GetMajor() > major)
            major = channel.GetMajor();
        if (channel.GetMinor() > minor)
            minor = channel.GetMinor();
    }
    return true;
}

void FCMBRNetworkChannelTable::Sort()
{
    m_mbrNetworkChannelDB.sort();
}

bool FCMBRNetworkProgramTable::AppendNetworkProgram(FCMBRNetworkProgram &program)
{
    m_mbrNetworkProgramDB.emplace(program.GetStartTime(), program);
    return true;
}

bool FCMBRNetworkProgramTable::Merge(const FCMBRNetworkProgramTable &other)
{
    for (const auto &entry : other.m_mbrNetworkProgramDB)
        m_mbrNetworkProgramDB.emplace(entry.first, entry.second);
    return true;
}

bool FCMBRNetworkProgramTable::FindNetworkProgrambyStartTime(unsigned long time, FCMBRNetworkProgram &out)
{
    for (const auto &entry : m_mbrNetworkProgramDB) {
        const FCMBRNetworkProgram &program = entry.second;
        const unsigned long start = program.GetStartTime();
        if (start <= time && time < start + static_cast<unsigned long>(program.GetDuration())) {
            out = program;
            return true;
        }
    }
    return false;
}
