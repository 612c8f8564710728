#include "RFNetworkChannelTable.h"

bool FCRFNetworkChannelTable::AppendRFNetworkChannel(unsigned long long &serviceId)
{
    m_rfNetworkChannelList.push_back(serviceId);
    return true;
}
