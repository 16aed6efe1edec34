#pragma once

#include <QtGlobal>

#include <ctime>

/// As QElapsedTimer, in milliseconds of processor time of this process: what a computation takes however much else this
/// computer does.
class ProcessorTimer
{
public:
    void start() { m_begin = std::clock(); }
    qint64 elapsed() const { return 1000 * (std::clock() - m_begin) / CLOCKS_PER_SEC; }

private:
    std::clock_t m_begin = 0;
};
