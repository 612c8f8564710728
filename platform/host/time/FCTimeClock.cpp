// Host clock: the machine's own.
#include "FCTimeWrapper.h"

#include <ctime>

unsigned long FCTimeWrapper::EpochTime()
{
    return static_cast<unsigned long>(std::time(nullptr));
}
