// The provider client's one point for the content daemon's events: one callback registered with
// the D-Bus proxy library, and subscriptions by event number. Three kinds of client (CPP, CS,
// plugin) each have their own callback and family of platform calls; one instance serves the whole
// process, and the first request fixes its kind.
#ifndef KELVO_FCEMSPROXY_H
#define KELVO_FCEMSPROXY_H

#include <mutex>

#include "kelvo-dbus-proxy.h"

class FCEMSProxy {
public:
    // The process's instance. Only GetInstance registers its callback again when the instance
    // exists (replacing the earlier one); the other two return it as it is.
    static FCEMSProxy *GetInstance(void *userData, int (*callback)(int, FSEventData));
    static FCEMSProxy *GetInstanceForPlugin(void *userData, int (*callback)(int, FSEventData, void *));
    static FCEMSProxy *GetInstanceForCS(void *userData, int (*callback)(int, int, int, int));

    // Each sets the kind of its callback and registers it with the platform.
    FCEMSProxy(void *userData, int (*callback)(int, FSEventData));
    FCEMSProxy(void *userData, int (*callback)(int, FSEventData, void *));
    FCEMSProxy(void *userData, int (*callback)(int, int, int, int));
    virtual ~FCEMSProxy();
    FCEMSProxy(const FCEMSProxy &) = delete;
    FCEMSProxy &operator=(const FCEMSProxy &) = delete;

    // The platform's status, passed through. A plugin instance subscribes only with its user data:
    // SubscribeSignal returns -1 and UnsubscribeSignal 0 on it, calling nothing.
    virtual int SubscribeSignal(int event);
    virtual int SubscribeSignalForPlugin(int event, void *userData);
    virtual int UnsubscribeSignal(int event);
    virtual int UnsubscribeSignalForPlugin(int event);

private:
    static constexpr int kKindCPP = 0;
    static constexpr int kKindCS = 1;
    static constexpr int kKindPlugin = 2;

    int m_kind;

    static FCEMSProxy *m_pImp;
    static std::mutex m_instanceMutex;
};

#endif
