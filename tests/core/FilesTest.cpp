// Files that are read and written whole, or not at all.

#include "contracts/core/OruFileReader.h"
#include "contracts/core/OruFileWriter.h"
#include "tests/support/FullDisk.h"

#include <QDir>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using testing::EndsWith;

namespace {

struct OruFilesTest : testing::Test
{
    QTemporaryDir folder;
    QString file = folder.filePath("file");

    std::string content()
    {
        QByteArray bytes;
        QString reason;
        EXPECT_TRUE(OruFileReader::read(file, 1 << 20, bytes, reason)) << reason.toStdString();
        return bytes.toStdString();
    }
};

} // namespace

TEST_F(OruFilesTest, AFullDiskIsToldAndLeavesTheFileAsItWas)
{
    OruFileWriter out(file);
    ASSERT_TRUE(out.replace("old"));
    // A buffer of the file class holds 16 KB, a page 4.
    for (const int size : {5, 5000, 50000}) {
        for (const int room : {0, 4, size - 1}) {
            const kelvartest::FullDisk full(static_cast<rlim_t>(room));
            OruFileWriter other(file);
            EXPECT_FALSE(other.replace(QByteArray(size, 'x'))) << size << " into " << room;
            EXPECT_EQ(other.error(), file + ": File too large");
        }
        const kelvartest::FullDisk full(static_cast<rlim_t>(size));
        EXPECT_FALSE(out.append(QByteArray(size, 'x'))) << size;
        EXPECT_THAT(out.error().toStdString(), EndsWith("File too large"));
    }
    EXPECT_TRUE(out.append(" and new"));
    EXPECT_EQ(content(), "old and new");
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList("file")) << "nothing else is left";
}

TEST_F(OruFilesTest, APipeIsWrittenToAndStaysAPipe)
{
    ASSERT_EQ(::mkfifo(qPrintable(file), 0600), 0);
    const int pipe = ::open(qPrintable(file), O_RDWR | O_NONBLOCK);
    OruFileWriter out(file);
    EXPECT_TRUE(out.replace("content") && out.append(", more")) << out.error().toStdString();
    char got[20] = {};
    EXPECT_EQ(::read(pipe, got, sizeof(got)), 13);
    EXPECT_STREQ(got, "content, more");
    ::close(pipe);
    QByteArray bytes;
    QString reason;
    EXPECT_FALSE(OruFileReader::read(file, 10, bytes, reason));
    EXPECT_EQ(reason, "is not a regular file");
}
