#include "hosts/viewer/PipedModel.h"

#include "hosts/viewer/StopSignals.h"

#include <QFile>

#include <gmock/gmock.h>

#include <array>
#include <chrono>
#include <csignal>
#include <thread>

#include <unistd.h>

TEST(PipedModel, IsAFileUpToItsLimitAndGoesWithTheObject)
{
    const StopSignals stop;
    const QByteArray content = "solid\nendsolid\n";
    for (const qint64 most : {content.size(), content.size() - 1}) {
        std::array<int, 2> ends{};
        ASSERT_EQ(pipe(ends.data()), 0);
        ASSERT_EQ(write(ends[1], content.constData(), static_cast<std::size_t>(content.size())),
                  content.size());
        close(ends[1]);
        QString file;
        {
            const PipedModel model("stdin", "stl", most);
            file = model.file();
            EXPECT_TRUE(file.endsWith("/stdin.stl"));
            QString error;
            EXPECT_EQ(model.fill(ends[0], stop, &error), most == content.size());
            EXPECT_EQ(error, most == content.size() ? "" : "more than 14 bytes");
            QFile written(file);
            ASSERT_TRUE(written.open(QIODevice::ReadOnly));
            EXPECT_EQ(written.readAll() == content, most == content.size());
        }
        EXPECT_FALSE(QFile::exists(file));
        close(ends[0]);
    }
}

TEST(StopSignals, AreOneRequestWhileTheyComeTogether)
{
    {
        const StopSignals stop;
        EXPECT_FALSE(stop.raised());
        std::raise(SIGTERM);
        std::raise(SIGTERM);
        EXPECT_TRUE(stop.raised());
    }
    const StopSignals stop;
    EXPECT_FALSE(stop.raised());
    std::raise(SIGTERM);
    std::this_thread::sleep_for(std::chrono::milliseconds(StopSignals::sameRequestMilliseconds + 50));
    EXPECT_EXIT(std::raise(SIGTERM), testing::KilledBySignal(SIGTERM), "");
}
