#include "common/intime.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <memory>
#include <semaphore>

using namespace std::chrono_literals;

TEST(YesInTime, GivesTheAnswer)
{
    EXPECT_TRUE(yesInTime([] { return true; }, 1min));
    EXPECT_FALSE(yesInTime([] { return false; }, 1min));
}

TEST(YesInTime, NoAnswerIsANo)
{
    const auto deadMount = std::make_shared<std::binary_semaphore>(0);
    const auto question = [deadMount] {
        deadMount->acquire();
        return true;
    };
    EXPECT_FALSE(yesInTime(question, 1ms));
    deadMount->release();
}

TEST(FolderInTime, IsAFolderThatIsThere)
{
    const QTemporaryDir folder;
    EXPECT_TRUE(isFolderInTime(folder.path()));
    EXPECT_FALSE(isFolderInTime(folder.filePath(QStringLiteral("missing"))));
    EXPECT_FALSE(isFolderInTime(QStringLiteral("/proc/self/stat")));
}
