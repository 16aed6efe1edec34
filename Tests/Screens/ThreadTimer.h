#pragma once

#include <QtGlobal>

#include <ctime>

/// As QElapsedTimer, in milliseconds of processor time of the calling thread alone: what it computes however much else
/// this computer, or another thread of this process, does.
class ThreadTimer
{
public:
    void start() { m_begin = now(); }
    qint64 elapsed() const { return (now() - m_begin) / 1'000'000; }
    /// As elapsed, and begins anew.
    qint64 restart()
    {
        const qint64 took = elapsed();
        start();
        return took;
    }

private:
    static qint64 now()
    {
        timespec time = {};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return qint64{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
    }

    qint64 m_begin = 0;
};
