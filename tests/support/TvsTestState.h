// A simulated TV's state folders in a temporary folder of the test's own, made the platform's
// folders for the time of one test.
#ifndef KELVO_TESTS_TVSTESTSTATE_H
#define KELVO_TESTS_TVSTESTSTATE_H

#include <string>
#include <vector>

#include "TVServiceDataStore.h"

class TvsTestState {
public:
    TvsTestState();
    ~TvsTestState();

    std::string Root() const { return m_root; }
    std::string Db() const { return m_root + "/dbspace"; }
    std::string RwApp() const { return m_root + "/globalapps"; }

    void WriteServices(const std::vector<TCStoredService> &services) const;
    void WriteGuide(const std::vector<TCStoredEvent> &events) const;

    static std::string Slurp(const std::string &path);

private:
    std::string m_root;
};

#endif
