// One table: every operation of every controller, with the first, the second, the last of its calls failing in every
// way. Each time it tells what it has to, leaves no child behind, and works the next time.

#include "Support/ProcessLevels.h"
#include "Support/Waiting.h"
#include "Unit/AllControllers/Operations.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace
{

/// Seconds. Only a tool that hangs is waited for so long; one that works has to be quicker, also on a busy computer.
constexpr double shortLimit = 1;

class FaultSweep : public testing::TestWithParam<Fault>
{
protected:
    /// What the operation publishes, once it is over.
    QString told(const Operation &operation, AllControllers &all)
    {
        const std::function<bool()> isOver = operation.begin(all);
        EXPECT_TRUE(waitUntil([&] { return isOver() || tools.wasAskedInVain(); }));
        tools.release();
        EXPECT_TRUE(waitUntil(isOver));
        return operation.told(all);
    }

    /// What it has to publish when the call of this number fails.
    static QString expected(const Operation &operation, int number, const Fault &fault)
    {
        Replay replay(number, fault);
        return operation.expected(replay);
    }

    /// Controllers that know of a machine, of a container, and that OrbStack runs.
    void prepare(AllControllers &all)
    {
        tools.workAgain();
        ASSERT_TRUE(waitFor(all.machines.refresh()));
        ASSERT_TRUE(waitFor(all.containers.refresh()));
        ASSERT_TRUE(waitFor(all.setup.refresh()));
    }

    FaultyTools tools;
};

} // namespace

TEST_P(FaultSweep, EveryOperationTellsItLeavesNoChildAndWorksTheNextTime)
{
    const Fault &fault = GetParam();
    const double limit = fault.hangs ? shortLimit : farLimit;
    long descriptors = 0;
    for (const Operation &operation : allOperations()) {
        for (int number = 1; number <= operation.calls; ++number) {
            SCOPED_TRACE(testing::Message() << operation.name << ", call " << number);
            AllControllers all(limit, fault.hangs || fault.isMissing ? shortLimit : farLimit);
            prepare(all);
            tools.failAt(number, fault, operation.before);
            EXPECT_EQ(told(operation, all).toStdString(), expected(operation, number, fault).toStdString());
            EXPECT_TRUE(waitUntil(ProcessLevels::hasNoChild));
            tools.workAgain(operation.before);
            EXPECT_EQ(told(operation, all).toStdString(), expected(operation, 0, {}).toStdString());
            EXPECT_TRUE(waitUntil(ProcessLevels::hasNoChild));
            descriptors = descriptors == 0 ? ProcessLevels::descriptors() : descriptors;
            EXPECT_EQ(ProcessLevels::descriptors(), descriptors);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(ATool, FaultSweep, testing::ValuesIn(allFaults()),
                         [](const testing::TestParamInfo<Fault> &fault) { return std::string(fault.param.name); });
