// Host implementation of the content daemon's events over sd-bus.
//
// The daemon emits each event as the signal Event of its event interface (KelvoDaemonBus.h). A
// subscription is a match rule naming its event number, so the bus forwards to this process only
// the numbers some family subscribed; an unsubscription removes its rule.
//
// One connection of its own carries every match, and one dispatch thread of the library reads it
// and runs the callbacks. An sd-bus connection is not thread-safe, so every use of it, by the
// dispatch thread or by a subscribing caller, is under one lock. A caller's AddMatch is a
// synchronous call, so the match holds at the bus once the subscription returns; while waiting
// for its reply sd-bus may read events off the socket into its queue, where the dispatch thread's
// poll would not see them, so the caller wakes the dispatch thread afterwards. Events are copied
// out under the lock and delivered without it, so that a callback may subscribe and unsubscribe;
// one unsubscribed meanwhile is not delivered.
//
// The connection follows DBUS_SESSION_BUS_ADDRESS as Call does: when it names another bus, or the
// connection was lost, the next subscription opens a new one and renews every match on it.
#include "kelvo-dbus-proxy.h"

#include "KelvoDaemonBus.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <poll.h>
#include <sys/eventfd.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

namespace {

enum Family { kFamilyCPP, kFamilyCS, kFamilyPlugin };

struct Subscription {
    Family family;
    int event;
    void *userData;
    sd_bus_slot *slot;
};

struct Delivery {
    Family family;
    int event;
    int params[3];
    std::string data;
};

class EventHub {
public:
    // Never destroyed: the dispatch thread may still be running while the process exits.
    static EventHub &Instance()
    {
        static EventHub *const hub = new EventHub;
        return *hub;
    }

    // A family's callback; a later one replaces it.
    int Register(KelvoEventCallback_CPP callback) { return m_Register(m_cpp, callback); }
    int Register(KelvoEventCallback callback) { return m_Register(m_cs, callback); }
    int Register(KelvoEventCallback_Plugin callback) { return m_Register(m_plugin, callback); }

    int Subscribe(Family family, int event, void *userData)
    {
        std::lock_guard<std::mutex> guard(m_mutex);
        if (!m_Connect())
            return -1;
        auto found = m_subscriptions.find({family, event});
        if (found != m_subscriptions.end()) {
            found->second.userData = userData;
            return 0;
        }
        Subscription &subscription = m_subscriptions[{family, event}];
        subscription = Subscription{family, event, userData, nullptr};
        int r = m_AddMatch(subscription);
        m_Wake();
        if (r < 0) {
            m_subscriptions.erase({family, event});
            return -1;
        }
        return 0;
    }

    int Unsubscribe(Family family, int event)
    {
        std::lock_guard<std::mutex> guard(m_mutex);
        auto found = m_subscriptions.find({family, event});
        if (found == m_subscriptions.end())
            return -1;
        sd_bus_slot_unref(found->second.slot);
        m_subscriptions.erase(found);
        m_Wake();
        return 0;
    }

private:
    EventHub() : m_wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

    template <typename Callback>
    int m_Register(Callback &slot, Callback callback)
    {
        if (!callback)
            return -1;
        std::lock_guard<std::mutex> guard(m_mutex);
        slot = callback;
        return 0;
    }

    // Under the lock: the connection to the current session bus, opened (with every match renewed
    // and the dispatch thread started) when there is none.
    bool m_Connect()
    {
        const char *address = getenv("DBUS_SESSION_BUS_ADDRESS");
        std::string current = address ? address : "";
        if (m_bus && (current != m_address || sd_bus_is_open(m_bus) <= 0))
            m_Drop();
        if (m_bus)
            return true;
        sd_bus *bus = nullptr;
        if (sd_bus_open_user(&bus) < 0)
            return false;
        m_bus = bus;
        m_address = current;
        for (auto &entry : m_subscriptions)
            m_AddMatch(entry.second);
        if (!m_dispatching) {
            std::thread(&EventHub::m_Dispatch, this).detach();
            m_dispatching = true;
        }
        m_Wake();
        return true;
    }

    void m_Drop()
    {
        for (auto &entry : m_subscriptions)
            entry.second.slot = sd_bus_slot_unref(entry.second.slot);
        sd_bus_flush_close_unref(m_bus);
        m_bus = nullptr;
    }

    int m_AddMatch(Subscription &subscription)
    {
        std::string rule = std::string("type='signal',sender='") + KelvoDaemonBus::kBusName + "',path='" +
                           KelvoDaemonBus::kObjectPath + "',interface='" + KelvoDaemonBus::kEventInterface +
                           "',member='" + KelvoDaemonBus::kEventSignal + "',arg0='" +
                           std::to_string(subscription.event) + "'";
        return sd_bus_add_match(m_bus, &subscription.slot, rule.c_str(), &EventHub::m_OnSignal, &subscription);
    }

    void m_Wake() const
    {
        const uint64_t one = 1;
        (void)!write(m_wake, &one, sizeof one);
    }

    // Runs inside sd_bus_process, so under the lock: the event is only queued here.
    static int m_OnSignal(sd_bus_message *message, void *userdata, sd_bus_error *)
    {
        const auto *subscription = static_cast<const Subscription *>(userdata);
        const char *number = nullptr;
        const char *text = nullptr;
        Delivery delivery{subscription->family, subscription->event, {0, 0, 0}, {}};
        // A signal of another shape under the same names is not an event of the daemon.
        if (sd_bus_message_read(message, "siiis", &number, &delivery.params[0], &delivery.params[1],
                                &delivery.params[2], &text) < 0)
            return 0;
        delivery.data = text;
        Instance().m_pending.push_back(std::move(delivery));
        return 0;
    }

    void m_Dispatch()
    {
        for (;;) {
            struct pollfd fds[2] = {{m_wake, POLLIN, 0}, {-1, 0, 0}};
            int timeout = -1;
            std::vector<Delivery> ready;
            {
                std::lock_guard<std::mutex> guard(m_mutex);
                if (m_bus && m_Process()) {
                    fds[1].fd = sd_bus_get_fd(m_bus);
                    fds[1].events = static_cast<short>(sd_bus_get_events(m_bus));
                    timeout = m_PollTimeout();
                }
                ready.swap(m_pending);
            }
            for (const Delivery &delivery : ready)
                m_Deliver(delivery);
            if (!ready.empty())
                continue;  // the callbacks took time: look at the bus again before sleeping
            poll(fds, fds[1].fd >= 0 ? 2 : 1, timeout);
            uint64_t count = 0;
            (void)!read(m_wake, &count, sizeof count);
        }
    }

    // Under the lock: handles everything the connection holds; false when it is lost.
    bool m_Process()
    {
        int r = 0;
        while ((r = sd_bus_process(m_bus, nullptr)) > 0) {}
        if (r < 0) {
            m_Drop();
            return false;
        }
        return true;
    }

    // Milliseconds until sd-bus needs to run again (a pending call's time-out), or -1.
    int m_PollTimeout() const
    {
        uint64_t until = 0;
        if (sd_bus_get_timeout(m_bus, &until) < 0 || until == UINT64_MAX)
            return -1;
        struct timespec now;
        clock_gettime(CLOCK_MONOTONIC, &now);
        uint64_t nowUsec = static_cast<uint64_t>(now.tv_sec) * 1000000 + static_cast<uint64_t>(now.tv_nsec) / 1000;
        if (until <= nowUsec)
            return 0;
        return static_cast<int>(std::min<uint64_t>((until - nowUsec + 999) / 1000, 60000));
    }

    // Without the lock, so that the callback may subscribe and unsubscribe; the callback and the
    // user data are those in force now.
    void m_Deliver(const Delivery &delivery)
    {
        KelvoEventCallback_CPP cpp = nullptr;
        KelvoEventCallback cs = nullptr;
        KelvoEventCallback_Plugin plugin = nullptr;
        void *userData = nullptr;
        {
            std::lock_guard<std::mutex> guard(m_mutex);
            auto found = m_subscriptions.find({delivery.family, delivery.event});
            if (found == m_subscriptions.end())
                return;
            userData = found->second.userData;
            cpp = m_cpp;
            cs = m_cs;
            plugin = m_plugin;
        }
        FSEventData data{delivery.params[0], delivery.params[1], delivery.params[2], delivery.data.c_str(),
                         static_cast<unsigned int>(delivery.data.size())};
        switch (delivery.family) {
        case kFamilyCPP:
            if (cpp)
                cpp(delivery.event, data);
            break;
        case kFamilyCS:
            if (cs)
                cs(delivery.event, data.param1, data.param2, data.param3);
            break;
        case kFamilyPlugin:
            if (plugin)
                plugin(delivery.event, data, userData);
            break;
        }
    }

    std::mutex m_mutex;
    const int m_wake;
    KelvoEventCallback_CPP m_cpp = nullptr;
    KelvoEventCallback m_cs = nullptr;
    KelvoEventCallback_Plugin m_plugin = nullptr;
    sd_bus *m_bus = nullptr;
    std::string m_address;
    bool m_dispatching = false;
    // By family and event number; a node's address is the userdata of its match.
    std::map<std::pair<Family, int>, Subscription> m_subscriptions;
    std::vector<Delivery> m_pending;
};

}  // namespace

extern "C" int RegisterKelvoCallBack_CPP(KelvoEventCallback_CPP callback)
{
    return EventHub::Instance().Register(callback);
}

extern "C" int RegisterKelvoCallBack(KelvoEventCallback callback)
{
    return EventHub::Instance().Register(callback);
}

extern "C" int RegisterKelvoCallBack_Plugin(KelvoEventCallback_Plugin callback)
{
    return EventHub::Instance().Register(callback);
}

extern "C" int SubscribeKelvoEventForCPP(int event)
{
    return EventHub::Instance().Subscribe(kFamilyCPP, event, nullptr);
}

extern "C" int SubscribeKelvoEvent(int event)
{
    return EventHub::Instance().Subscribe(kFamilyCS, event, nullptr);
}

extern "C" int SubscribeKelvoEventForPlugin(int event, void *userData)
{
    return EventHub::Instance().Subscribe(kFamilyPlugin, event, userData);
}

extern "C" int UnSubsribeKelvoEventForCPP(int event)
{
    return EventHub::Instance().Unsubscribe(kFamilyCPP, event);
}

extern "C" int UnSubsribeKelvoEvent(int event)
{
    return EventHub::Instance().Unsubscribe(kFamilyCS, event);
}

extern "C" int UnSubsribeKelvoEventForPlugin(int event)
{
    return EventHub::Instance().Unsubscribe(kFamilyPlugin, event);
}
