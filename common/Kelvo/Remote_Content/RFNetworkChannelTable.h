// Broadcast (RF) channels by service identifier, in the order the daemon lists them.
#ifndef KELVO_RFNETWORKCHANNELTABLE_H
#define KELVO_RFNETWORKCHANNELTABLE_H

#include <list>

class FCRFNetworkChannelTable {
public:
    FCRFNetworkChannelTable() = default;
    FCRFNetworkChannelTable(const FCRFNetworkChannelTable &other) = default;
    FCRFNetworkChannelTable &operator=(const FCRFNetworkChannelTable &other) = default;
    virtual ~FCRFNetworkChannelTable() = default;

    bool AppendRFNetworkChannel(unsigned long long &serviceId);

    std::list<unsigned long long> m_rfNetworkChannelList;
};

#endif
