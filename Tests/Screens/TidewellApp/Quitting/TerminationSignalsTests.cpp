#include "TidewellApp/Quitting/TerminationSignals.h"

#include "Support/Waiting.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

#include <csignal>
#include <unistd.h>

TEST(TerminationSignals, HoldNobodyUpHoweverManyCome)
{
    ::alarm(20); // whoever waits in a signal handler waits for ever
    const TerminationSignals signals;
    QSignalSpy received(&signals, &TerminationSignals::received);
    constexpr int moreThanAPipeHolds = 70'000;
    for (int sent = 0; sent < moreThanAPipeHolds; ++sent)
        std::raise(SIGTERM);
    EXPECT_TRUE(waitUntil([&] { return received.count() > 0; }));
    const qsizetype told = received.count();
    QCoreApplication::processEvents();
    EXPECT_EQ(received.count(), told) << "all of them were told of";
    ::alarm(0);
}

TEST(TerminationSignals, AreTakenAsLongAsItLives)
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        std::signal(signal, SIG_DFL);
    {
        const TerminationSignals signals;
        QSignalSpy received(&signals, &TerminationSignals::received);
        qsizetype expected = 0;
        for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
            std::raise(signal);
            ++expected;
            EXPECT_TRUE(waitUntil([&] { return received.count() == expected; })) << signal;
        }
    }
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        EXPECT_EQ(std::signal(signal, SIG_DFL), SIG_DFL) << signal << ", as it was before";
}
