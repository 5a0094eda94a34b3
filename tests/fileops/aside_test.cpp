#include "fileops/aside.h"

#include <gtest/gtest.h>
#include <semaphore>

TEST(RunAsideUntil, TellsThatTheWorkIsDone)
{
    const auto stop = std::make_shared<std::atomic_bool>(false);
    const auto worked = std::make_shared<std::atomic_bool>(false);
    EXPECT_TRUE(runAsideUntil([worked] { *worked = true; }, stop));
    EXPECT_TRUE(*worked);
}

TEST(RunAsideUntil, LeavesWorkThatNeverComesBack)
{
    const auto stop = std::make_shared<std::atomic_bool>(true);
    const auto deadMount = std::make_shared<std::binary_semaphore>(0);
    EXPECT_FALSE(runAsideUntil([deadMount] { deadMount->acquire(); }, stop));
    deadMount->release();
}

TEST(RunAsideUntil, WorkThatStopsInTimeCounts)
{
    const auto stop = std::make_shared<std::atomic_bool>(false);
    const auto begun = std::make_shared<std::atomic_bool>(false);
    const auto work = [stop, begun] {
        *begun = true;
        *stop = true;
    };
    EXPECT_TRUE(runAsideUntil(work, stop));
    EXPECT_TRUE(*begun);
}
