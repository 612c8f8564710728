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

    // Where a proxy that reports failures under its own name makes its calls: its source file
    // and line, and its class.
    struct Origin {
        const char *file;
        int line;
        const char *className;
    };
    // The calls of such a proxy. They report under the origin; a reply that does not parse is no
    // failure of the call there: out is left null, so that readers find no keys.
    static bool RemoteCallWithStringArguments(const Origin &origin, const char *method, const std::string &in,
                                              std::string &out);
    static bool RemoteCallWithJsonArguments(const Origin &origin, const char *method, const Json::Value &in,
                                            Json::Value &out);
    // The reply's "ret"; false, reported under the origin, when the text does not parse.
    static bool ParseReturnValue(const Origin &origin, std::string &text);
};

#endif
