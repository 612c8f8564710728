// A client of the content daemon's events for the event tests: one process, so that its first
// request fixes the kind of its FCEMSProxy. Reads one command a line on standard input and writes
// one line per command answered and per event received on standard output:
//   instance cpp|cpp-other|cs|plugin     GetInstance (with either of two callbacks), GetInstanceForCS or
//                                        GetInstanceForPlugin: "instance new" or "instance same"
//   subscribe E, unsubscribe E           SubscribeSignal, UnsubscribeSignal: "status S"
//   subscribe-plugin E TAG               SubscribeSignalForPlugin with user data naming TAG: "status S"
//   unsubscribe-plugin E                 UnsubscribeSignalForPlugin: "status S"
// An event: "<callback> E P1 P2 P3" and, for the callbacks given the data, " [TAG ]DATA" (DATA as
// long as the data's length says).
#include <cstdio>
#include <deque>
#include <iostream>
#include <mutex>
#include <sstream>
#include <string>

#include "FCEMSProxy.h"

namespace {

std::mutex g_output;

void Print(const std::string &line)
{
    std::lock_guard<std::mutex> guard(g_output);
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

std::string Head(const char *callback, int event, int p1, int p2, int p3)
{
    return std::string(callback) + " " + std::to_string(event) + " " + std::to_string(p1) + " " + std::to_string(p2) +
           " " + std::to_string(p3);
}

std::string Data(const FSEventData &data)
{
    return std::string(data.data ? data.data : "", data.length);
}

int CPPCallback(int event, FSEventData data)
{
    Print(Head("cpp", event, data.param1, data.param2, data.param3) + " " + Data(data));
    return 0;
}

int OtherCPPCallback(int event, FSEventData data)
{
    Print(Head("cpp-other", event, data.param1, data.param2, data.param3) + " " + Data(data));
    return 0;
}

int CSCallback(int event, int p1, int p2, int p3)
{
    Print(Head("cs", event, p1, p2, p3));
    return 0;
}

int PluginCallback(int event, FSEventData data, void *userData)
{
    Print(Head("plugin", event, data.param1, data.param2, data.param3) + " " +
          *static_cast<const std::string *>(userData) + " " + Data(data));
    return 0;
}

}  // namespace

int main()
{
    FCEMSProxy *proxy = nullptr;
    // The plugin subscriptions' user data, never freed: the dispatch thread may deliver while the
    // process exits.
    static auto *const tags = new std::deque<std::string>;
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream in(line);
        std::string command, what;
        int event = 0;
        in >> command;
        if (command == "instance") {
            in >> what;
            FCEMSProxy *got = nullptr;
            if (what == "cpp")
                got = FCEMSProxy::GetInstance(nullptr, &CPPCallback);
            else if (what == "cpp-other")
                got = FCEMSProxy::GetInstance(nullptr, &OtherCPPCallback);
            else if (what == "cs")
                got = FCEMSProxy::GetInstanceForCS(nullptr, &CSCallback);
            else
                got = FCEMSProxy::GetInstanceForPlugin(nullptr, &PluginCallback);
            Print(got == proxy ? "instance same" : "instance new");
            proxy = got;
            continue;
        }
        if (!proxy || !(in >> event)) {
            Print("bad command: " + line);
            continue;
        }
        int status = 0;
        if (command == "subscribe") {
            status = proxy->SubscribeSignal(event);
        } else if (command == "unsubscribe") {
            status = proxy->UnsubscribeSignal(event);
        } else if (command == "subscribe-plugin") {
            in >> what;
            tags->push_back(what);
            status = proxy->SubscribeSignalForPlugin(event, &tags->back());
        } else if (command == "unsubscribe-plugin") {
            status = proxy->UnsubscribeSignalForPlugin(event);
        } else {
            Print("bad command: " + line);
            continue;
        }
        Print("status " + std::to_string(status));
    }
    return 0;
}
