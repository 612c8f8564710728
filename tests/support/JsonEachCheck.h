// What FCJsonHelper::ParseToJsonEach must give for any text: the outcome of ParseToJson on the
// same text, with the elements of the root object's array under the key handed over in order and
// that array left empty.
#ifndef KELVO_TEST_JSONEACHCHECK_H
#define KELVO_TEST_JSONEACHCHECK_H

#include <string>
#include <vector>

#include <json/json.h>

#include "FCJsonHelper.h"

// Empty when both agree; otherwise what differs.
inline std::string KelvoJsonEachDifference(const std::string &text, const char *key)
{
    Json::Value whole;
    const bool wholeParsed = FCJsonHelper::ParseToJson(text, whole);
    Json::Value rest;
    std::vector<Json::Value> elements;
    const bool eachParsed =
        FCJsonHelper::ParseToJsonEach(text, key, rest, [&](const Json::Value &e) { elements.push_back(e); });
    if (wholeParsed != eachParsed)
        return wholeParsed ? "the whole text parses, piecewise it fails" : "piecewise it parses, the whole fails";
    if (!wholeParsed)
        return "";
    std::vector<Json::Value> expected;
    if (whole.isObject() && whole.isMember(key) && whole[key].isArray()) {
        for (const Json::Value &element : whole[key])
            expected.push_back(element);
        whole[key] = Json::Value(Json::arrayValue);
    }
    if (elements.size() != expected.size())
        return "handed " + std::to_string(elements.size()) + " elements, expected " + std::to_string(expected.size());
    for (size_t i = 0; i < expected.size(); ++i)
        if (!(elements[i] == expected[i]))
            return "element " + std::to_string(i) + " differs";
    if (!(rest == whole))
        return "the rest differs";
    return "";
}

#endif
