// Parsing of daemon replies and merging or filtering of metadata objects.
#ifndef KELVO_FCJSONHELPER_H
#define KELVO_FCJSONHELPER_H

#include <functional>
#include <set>
#include <string>
#include <string_view>

#include <json/json.h>

class FCJsonHelper {
public:
    static bool ParseToJson(std::string_view text, Json::Value &out);
    // ParseToJson for a reply whose bulk is the array under arrayKey of its root object (a whole
    // day's programmes): the array's elements are parsed one at a time and handed to onElement,
    // in order, so the reply never stands in memory as one tree; out receives the rest, with that
    // array empty. True exactly when ParseToJson would be; onElement may have seen elements of a
    // text that then fails. A text of another shape (comments, the key twice, deep nesting) is
    // parsed whole and its elements handed over the same way.
    static bool ParseToJsonEach(std::string_view text, const char *arrayKey, Json::Value &out,
                                const std::function<void(const Json::Value &element)> &onElement);
    // The reply form of every method that only answers success or failure: {"ret": bool}.
    static bool ParseReturnBoolean(std::string &text);
    // The one reading of a reply's "ret", for every caller: a flag as it is, a number as jsoncpp
    // converts it (yes unless zero). No object, no "ret", or a "ret" of another kind (text,
    // array, object, null) answer no, without raising: a daemon's reply may hold anything.
    static bool ReturnBoolean(const Json::Value &reply);
    // Copies every member of metaText's object into target except empty strings.
    static bool AppendMetaDataToGivenJson(std::string metaText, Json::Value &target);
    // meta without the excepted keys and without empty strings, as compact JSON text.
    static std::string GetMetaJsonStringWithExceptionTags(Json::Value meta, std::set<std::string> &exceptionTags);

    // Compact single-line JSON text, the form every argument travels in.
    static std::string WriteCompact(const Json::Value &value);
    // Json::Value::get() without its copy: the member, or fallback when absent. Like get(), it
    // never changes in, and raises on a value that is neither an object nor null.
    static const Json::Value &MemberOr(const Json::Value &in, const char *key, const Json::Value &fallback);
};

#endif
