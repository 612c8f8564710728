#include "FCJsonHelper.h"

#include <cstring>

#include <memory>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

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

// For one element cut out of a larger text: the reader that read the whole text would fail on
// anything but whitespace after the element, before the next ',' or ']'.
Json::CharReader &ElementReader()
{
    thread_local const std::unique_ptr<Json::CharReader> reader([] {
        Json::CharReaderBuilder builder;
        builder["failIfExtra"] = true;
        return builder.newCharReader();
    }());
    return *reader;  // NOLINT(clang-analyzer-cplusplus.NewDelete): as in Reader()
}

bool Parse(Json::CharReader &reader, const char *begin, const char *end, Json::Value &out)
{
    std::string errors;
    // The reader raises, rather than fails, on nesting deeper than its stack limit; a reply
    // from the daemon may hold anything, so that is a parse failure like any other.
    try {
        return reader.parse(begin, end, &out, &errors);
    } catch (const Json::Exception &) {
        return false;
    }
}

// Where a root object's array member and its elements lie in a text. The scan only recognises
// the plain shape: anything it does not follow (a comment, a NUL byte, an unterminated string, the key twice
// or escaped, a value that is no array, nesting near the reader's stack limit) ends it, and the
// text is then parsed whole. Whether the text is valid JSON is for the reader to say.
class ArraySlicer {
public:
    ArraySlicer(std::string_view text, const char *key) : m_text(text), m_key(key) {}

    bool Slice()
    {
        m_SkipSpace();
        if (!m_Take('{'))
            return false;
        m_SkipSpace();
        if (m_Take('}'))
            return m_found;
        for (;;) {
            size_t keyBegin = m_at;
            if (!m_SkipString())
                return false;
            std::string_view key(m_text.data() + keyBegin + 1, m_at - keyBegin - 2);
            m_SkipSpace();
            if (!m_Take(':'))
                return false;
            m_SkipSpace();
            if (key == m_key) {
                if (m_found || !m_SliceArray())
                    return false;
                m_found = true;
            } else if (key.find('\\') != std::string_view::npos || !m_SkipValue()) {
                return false;
            }
            m_SkipSpace();
            if (m_Take('}'))
                return m_found;
            if (!m_Take(','))
                return false;
            m_SkipSpace();
            if (m_Take('}'))
                return m_found;
        }
    }

    size_t open = 0, close = 0;  // the array's '[' and ']'
    std::vector<std::pair<size_t, size_t>> elements;

private:
    // The reader's stack limit is 1000; an element read alone sits two levels higher.
    static constexpr int kMaxDepth = 900;

    bool m_Take(char c)
    {
        if (m_at < m_text.size() && m_text[m_at] == c) {
            ++m_at;
            return true;
        }
        return false;
    }
    void m_SkipSpace()
    {
        while (m_at < m_text.size() &&
               (m_text[m_at] == ' ' || m_text[m_at] == '\t' || m_text[m_at] == '\n' || m_text[m_at] == '\r'))
            ++m_at;
    }
    bool m_SkipString()
    {
        if (!m_Take('"'))
            return false;
        while (m_at < m_text.size()) {
            char c = m_text[m_at++];
            if (c == '\\')
                ++m_at;
            else if (c == '"')
                return m_at <= m_text.size();
        }
        return false;
    }
    // To the ',' or closing bracket that ends the value at this level.
    bool m_SkipValue()
    {
        int depth = 0;
        while (m_at < m_text.size()) {
            char c = m_text[m_at];
            if (c == '"') {
                if (!m_SkipString())
                    return false;
                continue;
            }
            // A comment, or a NUL byte, which the reader takes for the end of the text.
            if (c == '/' || c == '\0')
                return false;
            if (c == '{' || c == '[') {
                if (++depth > kMaxDepth)
                    return false;
            } else if (c == '}' || c == ']') {
                if (depth == 0)
                    return true;
                --depth;
            } else if (c == ',' && depth == 0) {
                return true;
            }
            ++m_at;
        }
        return false;
    }
    bool m_SliceArray()
    {
        open = m_at;
        if (!m_Take('['))
            return false;
        m_SkipSpace();
        if (m_Take(']')) {
            close = m_at - 1;
            return true;
        }
        for (;;) {
            size_t begin = m_at;
            if (!m_SkipValue())
                return false;
            elements.emplace_back(begin, m_at);
            if (m_Take(']')) {
                close = m_at - 1;
                return true;
            }
            if (!m_Take(','))
                return false;
            // The reader takes a comma before the closing bracket.
            m_SkipSpace();
            if (m_Take(']')) {
                close = m_at - 1;
                return true;
            }
        }
    }

    std::string_view m_text;
    std::string_view m_key;
    size_t m_at = 0;
    bool m_found = false;
};

}  // namespace

bool FCJsonHelper::ParseToJsonEach(std::string_view text, const char *arrayKey, Json::Value &out,
                                   const std::function<void(const Json::Value &element)> &onElement)
{
    ArraySlicer slicer(text, arrayKey);
    if (!slicer.Slice()) {
        if (!ParseToJson(text, out))
            return false;
        const Json::Value *found = out.isObject() ? out.find(arrayKey, arrayKey + std::strlen(arrayKey)) : nullptr;
        if (found != nullptr && found->isArray()) {
            Json::Value &array = out[arrayKey];
            for (const Json::Value &element : array)
                onElement(element);
            array = Json::Value(Json::arrayValue);
        }
        return true;
    }
    std::string rest;
    rest.reserve(text.size() - (slicer.close - slicer.open));
    rest.append(text.substr(0, slicer.open + 1)).append(text.substr(slicer.close));
    if (!Parse(Reader(), rest.data(), rest.data() + rest.size(), out))
        return false;
    Json::Value element;
    for (const auto &span : slicer.elements) {
        if (!Parse(ElementReader(), text.data() + span.first, text.data() + span.second, element))
            return false;
        onElement(element);
    }
    return true;
}

bool FCJsonHelper::ParseToJson(std::string_view text, Json::Value &out)
{
    return Parse(Reader(), text.data(), text.data() + text.size(), out);
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
