// Where the content daemon lives on the host's session bus: its well-known name, its one object,
// the interface of the wire methods, the interface of its events and the simulator's control
// interface. Host-side only: the system reaches the daemon through the D-Bus proxy library and
// never sees these names.
#ifndef KELVO_PLATFORM_HOST_KELVO_DAEMON_BUS_H
#define KELVO_PLATFORM_HOST_KELVO_DAEMON_BUS_H

struct KelvoDaemonBus {
    static constexpr const char *kBusName = "com.halvorn.tv.KelvoDaemon";
    static constexpr const char *kObjectPath = "/com/halvorn/tv/KelvoDaemon";
    // Each wire method: one string in (the JSON argument), one string out (the JSON reply).
    static constexpr const char *kProviderInterface = "com.halvorn.tv.KelvoDaemon.Provider";
    // The simulator's own methods for tests (scripts, fixture, records); a real daemon has none.
    static constexpr const char *kControlInterface = "com.halvorn.tv.KelvoDaemon.Control";
    // The daemon's events: signal kEventSignal with the event number as decimal text (match rules
    // compare only string arguments, so a subscriber's rule can name its number), three integers
    // and a text, signature "siiis".
    static constexpr const char *kEventInterface = "com.halvorn.tv.KelvoDaemon.Event";
    static constexpr const char *kEventSignal = "Event";
};

#endif
