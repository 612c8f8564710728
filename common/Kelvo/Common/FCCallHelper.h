// One remote call to the content daemon: a method name, one JSON text out, one JSON text back.
#ifndef KELVO_FCCALLHELPER_H
#define KELVO_FCCALLHELPER_H

#include <functional>
#include <string>

#include <json/json.h>

class FCCallHelper {
public:
    // False when the daemon cannot be reached or the call fails; out is then left as it was.
    static bool RemoteCallWithStringArguments(const char *method, const std::string &in, std::string &out);
    // As above with the argument written as compact JSON; false too when the reply does not parse.
    static bool RemoteCallWithJsonArguments(const char *method, const Json::Value &in, Json::Value &out);
    // As above for a reply whose bulk is the array under arrayKey: its elements go to onElement
    // one at a time, and out receives the rest (FCJsonHelper::ParseToJsonEach).
    static bool RemoteCallWithJsonArguments(const char *method, const Json::Value &in, Json::Value &out,
                                            const char *arrayKey,
                                            const std::function<void(const Json::Value &element)> &onElement);
};

#endif
