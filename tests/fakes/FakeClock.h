// The platform's clock at a moment the test sets; the time conversions stay the host's.
#ifndef KELVO_TESTS_FAKE_CLOCK_H
#define KELVO_TESTS_FAKE_CLOCK_H

namespace FakeClock {
// What FCTimeWrapper::EpochTime answers from now on (0 until set).
void SetNow(unsigned long utcSeconds);
}  // namespace FakeClock

#endif
