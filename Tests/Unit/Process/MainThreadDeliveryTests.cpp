#include "Process/MainThreadDelivery.h"

#include "Process/OutputQueue.h"
#include "Support/Printing.h"
#include "Support/Waiting.h"
#include "Text/Utf8.h"

#include <QCoreApplication>
#include <QStringList>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <thread>

using namespace Qt::StringLiterals;

namespace
{

class MainThreadDeliveryTest : public testing::Test
{
protected:
    /// A queue whose every text is told in `delivered`, after `before` has been done.
    std::shared_ptr<OutputQueue> makeQueue(const std::function<void()> &before)
    {
        const OutputQueue::Listener listener{
            .onReady = [this](const std::shared_ptr<OutputQueue> &queue) { delivery.schedule(queue); },
            .onRoom = [] {}};
        const OutputHandler onOutput = [this, before](QUtf8StringView text, bool) {
            before();
            delivered.append(Utf8::toQString(text));
        };
        return std::make_shared<OutputQueue>(
            nullptr, onOutput, [](int, const ProcessHandlePointer &) {}, listener, OutputQueue::Delivery::asItComes);
    }

    MainThreadDelivery delivery;
    QStringList delivered;
};

} // namespace

TEST_F(MainThreadDeliveryTest, LetsAQueueThatWaitsDeliverWhileAHandlerTurnsTheEventLoop)
{
    const auto first = makeQueue([] { QCoreApplication::processEvents(); });
    const auto second = makeQueue([] {});
    first->append("one", OutputStream::standard);
    second->append("two", OutputStream::standard);
    EXPECT_TRUE(delivered.isEmpty()) << "not before the event loop turns";
    EXPECT_TRUE(waitUntil([this] { return delivered.size() == 2; }));
    EXPECT_EQ(delivered, (QStringList{u"two"_s, u"one"_s}));
}

TEST_F(MainThreadDeliveryTest, DeliversNothingMoreOnceItIsStopped)
{
    const auto queue = makeQueue([] {});
    queue->append("one", OutputStream::standard);
    delivery.stop();
    QCoreApplication::processEvents();
    EXPECT_TRUE(delivered.isEmpty());
}

TEST(MainThreadDelivery, DeliversInTheMainThreadWhereverItIsMade)
{
    std::unique_ptr<MainThreadDelivery> delivery;
    std::thread([&] { delivery = std::make_unique<MainThreadDelivery>(); }).join();
    EXPECT_EQ(delivery->thread(), QCoreApplication::instance()->thread());
}
