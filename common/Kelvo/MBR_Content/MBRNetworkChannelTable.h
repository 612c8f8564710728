// In-memory tables of network channels (in line-up order) and of their programmes (by start
// time).
#ifndef KELVO_MBRNETWORKCHANNELTABLE_H
#define KELVO_MBRNETWORKCHANNELTABLE_H

#include <list>
#include <map>

#include "MBRNetworkChannel.h"

class FCMBRNetworkChannelTable {
public:
    FCMBRNetworkChannelTable() = default;
    FCMBRNetworkChannelTable(const FCMBRNetworkChannelTable &other) = default;
    FCMBRNetworkChannelTable &operator=(const FCMBRNetworkChannelTable &other) = default;

    bool AppendNetworkChannel(const FCMBRNetworkChannel &channel);
    // Appends all of other's channels, duplicates included.
    bool Merge(const FCMBRNetworkChannelTable &other);
    // The Find operations copy the first match in list order; out stays as it was on false.
    bool FindNetworkChannelbyMajorMinor(const int &major, const int &minor, FCMBRNetworkChannel &out);
    bool FindNetworkChannelbyChannelID(const int &id, FCMBRNetworkChannel &out);
    bool FindNetworkChannelByChannelIDOriginMajor(const int &id, const int &originMajor, FCMBRNetworkChannel &out);
    // The largest major and, independently, the largest minor of the table.
    bool GetMaxNumberOfMajorMinor(int &major, int &minor);
    void Sort();

    std::list<FCMBRNetworkChannel> m_mbrNetworkChannelDB;
};

class FCMBRNetworkProgramTable {
public:
    FCMBRNetworkProgramTable() = default;
    FCMBRNetworkProgramTable(const FCMBRNetworkProgramTable &other) = default;
    FCMBRNetworkProgramTable &operator=(const FCMBRNetworkProgramTable &other) = default;

    // One programme per start time: the one stored first stays.
    bool AppendNetworkProgram(FCMBRNetworkProgram &program);
    bool Merge(const FCMBRNetworkProgramTable &other);
    // The first programme, by start time, whose interval holds time.
    bool FindNetworkProgrambyStartTime(unsigned long time, FCMBRNetworkProgram &out);

    std::map<unsigned long, FCMBRNetworkProgram> m_mbrNetworkProgramDB;
};

#endif
