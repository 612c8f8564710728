#include "FCJsonHelper.h"

#include <cstring>

#include <memory>
#include <sstream>

#include "FCDebug.h"

namespace {

// Building a reader or writer costs about as much as using it on a short reply, and every remote
// call does both; each thread keeps one of each. Both reset their state at the start of a use,
// also after a use that ended in an exception.
// The analyser takes a thread_local object for one that dies when the function returns, and so
// sees each use of it after the first as a use after free.
Json::CharReader &Reader()
{
    thread_local const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    return *reader;  // NOLINT(clang-analyzer-cplusplus.NewDelete)
}

Json::StreamWriter &CompactWriter()
{
    thread_local const std::unique_ptr<Json::StreamWriter> writer([] {
        Json::StreamWriterBuilder builder;
        builder["indentation"] = "";
        return builder.newStreamWriter();
    }());
    return *writer;  // NOLINT(clang-analyzer-cplusplus.NewDelete): as in Reader()
}

}  // namespace

bool FCJsonHelper::ParseToJson(const std::string &text, Json::Value &out)
{
    Json::CharReader &reader = Reader();
    std::string errors;
    // The reader raises, rather than fails, on nesting deeper than its stack limit; a reply
    // from the daemon may hold anything, so that is a parse failure like any other.
    try {
        return reader.parse(text.data(), text.data() + text.size(), &out, &errors);
    } catch (const Json::Exception &) {
        return false;
    }
}

bool FCJsonHelper::ParseReturnBoolean(std::string &text)
{
    Json::Value reply;
    if (!ParseToJson(text, reply)) {
        FC_LOGE("%s: %s(%d) > [%d][%d][FCJsonHelper::%s] fail to parse json output data\n", FC_PID_TID, __func__);
        return false;
    }
    return ReturnBoolean(reply);
}

bool FCJsonHelper::ReturnBoolean(const Json::Value &reply)
{
    if (!reply.isObject())
        return false;
    const Json::Value &ret = MemberOr(reply, "ret", Json::Value::nullSingleton());
    return ret.isConvertibleTo(Json::booleanValue) && ret.asBool();
}

bool FCJsonHelper::AppendMetaDataToGivenJson(std::string metaText, Json::Value &target)
{
    Json::Value meta;
    if (!ParseToJson(metaText, meta))
        return false;
    if (!meta.isObject())
        return true;
    for (auto it = meta.begin(); it != meta.end(); ++it) {
        if (it->isString() && it->asString().empty())
            continue;
        target[it.name()] = *it;
    }
    return true;
}

std::string FCJsonHelper::GetMetaJsonStringWithExceptionTags(Json::Value meta, std::set<std::string> &exceptionTags)
{
    Json::Value filtered(Json::objectValue);
    if (!meta.isObject())
        return WriteCompact(filtered);
    for (auto it = meta.begin(); it != meta.end(); ++it) {
        const std::string key = it.name();
        if (exceptionTags.count(key) != 0 || (it->isString() && it->asString().empty()))
            continue;
        filtered[key] = *it;
    }
    return WriteCompact(filtered);
}

std::string FCJsonHelper::WriteCompact(const Json::Value &value)
{
    thread_local std::ostringstream text;
    text.str(std::string());
    text.clear();
    CompactWriter().write(value, &text);
    return text.str();
}

const Json::Value &FCJsonHelper::MemberOr(const Json::Value &in, const char *key, const Json::Value &fallback)
{
    const Json::Value *found = in.find(key, key + std::strlen(key));
    return found != nullptr ? *found : fallback;
}
