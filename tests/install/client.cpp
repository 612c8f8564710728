// A client application built only from the installed headers and pkg-config.
#include <FCElementData.h>
#include <FCMarshal.h>
#include <FenvoraDefine.h>

#include <cstdio>

int main()
{
    FCRemoteProgram program;
    program.m_programSourceId = "src-1";
    Json::Value out;
    FCMarshal::FCRemoteProgramToJson(program, out);
    std::string text;
    program.to_string(text);
    const bool ok = out["program source id"].asString() == "src-1" && FCAPI::GetMatchFinder() != nullptr;
    std::printf("%s\n", text.c_str());
    return ok ? 0 : 1;
}
