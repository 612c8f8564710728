#include "FCEMSProxy.h"

FCEMSProxy *FCEMSProxy::m_pImp = nullptr;
std::mutex FCEMSProxy::m_instanceMutex;

FCEMSProxy *FCEMSProxy::GetInstance(void *userData, int (*callback)(int, FSEventData))
{
    std::lock_guard<std::mutex> guard(m_instanceMutex);
    if (!m_pImp)
        m_pImp = new FCEMSProxy(userData, callback);
    else
        RegisterKelvoCallBack_CPP(callback);
    return m_pImp;
}

FCEMSProxy *FCEMSProxy::GetInstanceForPlugin(void *userData, int (*callback)(int, FSEventData, void *))
{
    std::lock_guard<std::mutex> guard(m_instanceMutex);
    if (!m_pImp)
        m_pImp = new FCEMSProxy(userData, callback);
    return m_pImp;
}

FCEMSProxy *FCEMSProxy::GetInstanceForCS(void *userData, int (*callback)(int, int, int, int))
{
    std::lock_guard<std::mutex> guard(m_instanceMutex);
    if (!m_pImp)
        m_pImp = new FCEMSProxy(userData, callback);
    return m_pImp;
}

FCEMSProxy::FCEMSProxy(void *, int (*callback)(int, FSEventData)) : m_kind(kKindCPP)
{
    RegisterKelvoCallBack_CPP(callback);
}

FCEMSProxy::FCEMSProxy(void *, int (*callback)(int, FSEventData, void *)) : m_kind(kKindPlugin)
{
    RegisterKelvoCallBack_Plugin(callback);
}

FCEMSProxy::FCEMSProxy(void *, int (*callback)(int, int, int, int)) : m_kind(kKindCS)
{
    RegisterKelvoCallBack(callback);
}

FCEMSProxy::~FCEMSProxy() {}

int FCEMSProxy::SubscribeSignal(int event)
{
    switch (m_kind) {
    case kKindCPP:
        return SubscribeKelvoEventForCPP(event);
    case kKindCS:
        return SubscribeKelvoEvent(event);
    default:
        return -1;
    }
}

int FCEMSProxy::SubscribeSignalForPlugin(int event, void *userData)
{
    return SubscribeKelvoEventForPlugin(event, userData);
}

int FCEMSProxy::UnsubscribeSignal(int event)
{
    switch (m_kind) {
    case kKindCPP:
        return UnSubsribeKelvoEventForCPP(event);
    case kKindCS:
        return UnSubsribeKelvoEvent(event);
    default:
        return 0;
    }
}

int FCEMSProxy::UnsubscribeSignalForPlugin(int event)
{
    return UnSubsribeKelvoEventForPlugin(event);
}
