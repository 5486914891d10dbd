// Subtrees as files: where they are looked for, what a failure leaves, and a writer that is killed.
#include "fault.h"
#include "platform/startup/cfgcenter.h"
#include "quiettraces.h"
#include "valueclasses/value.h"
#include "valuetree/node.h"
#include "valuetree/vtfile.h"
#include "valuetree/vtxml.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gmock/gmock.h>

#include <csignal>
#include <random>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace values;

class VtFileTest : public testing::Test {
protected:
    static void put(const QString &name, const QByteArray &bytes)
    {
        QFile file(name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    static QByteArray bytesOf(const QString &name)
    {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static void fill(Node &node, int count, const QString &text)
    {
        for (int i = 0; i < count; ++i)
            node.AddValue(QStringLiteral("V%1").arg(i),
                          new Value<QString>("V", text, VS_DISABLED)); // as restored ones
    }

    QuietTraces m_quiet;
    QTemporaryDir m_folder;
    QString m_name = m_folder.filePath("tree.xml");
};

TEST_F(VtFileTest, WritesAndReads)
{
    Node node, copy;
    fill(node, 3, QString::fromUtf8("\xC3\xA4\xE2\x82\xAC"));
    VtFile(m_name, &node, nullptr).Write();
    EXPECT_EQ(bytesOf(m_name), VtXml::ToXml(&node).toUtf8());
    VtFile(m_name, &copy, nullptr).Read();
    EXPECT_TRUE(copy.Compare(&node));
    VtFile(QString(), nullptr, nullptr).Read(); // nothing
    VtFile(QString(), nullptr, nullptr).Write();

    Node found;
    CfgCenter::GetAppCfg().Set("Startup/workingdir", m_folder.path());
    VtFile("tree.xml", &found, nullptr).Read();
    CfgCenter::GetAppCfg().Set("Startup/workingdir", {});
    EXPECT_TRUE(found.Compare(&node));

    put(m_name, "\xEF\xBB\xBF" + VtXml::ToXml(&node).toUtf8()); // of an editor that marks UTF-8
    VtFile(m_name, &copy, nullptr).Read();
    EXPECT_TRUE(copy.Compare(&node));
}

TEST_F(VtFileTest, FailsWithTheTreeAndTheFileAsTheyWere)
{
    const std::string reading = "Can not open File for reading - see Details";
    const std::string writing = "Can not open File for writing - see Details";
    Node node, other;
    fill(node, 3, "old");
    fill(other, 2000, QString(100, 'n'));
    const auto read = [&](const QString &name) {
        return faultOf([&] { VtFile(name, &other, nullptr).Read(); }).reason;
    };
    EXPECT_EQ(read(m_name), reading);
    const QString pipe = m_folder.filePath("pipe"), huge = m_folder.filePath("huge.xml");
    ASSERT_EQ(mkfifo(qPrintable(pipe), 0600), 0);
    put(huge, {});
    ASSERT_TRUE(QFile::resize(huge, (qint64(1) << 29) + 1)); // takes no place
    for (const QString &name : {m_folder.path(), pipe, QStringLiteral("/dev/zero"), huge})
        EXPECT_EQ(read(name), reading) << qPrintable(name);
    QFile::remove(huge);
    const QString nowhere = m_folder.filePath("no/tree.xml");
    EXPECT_EQ(faultOf([&] { VtFile(nowhere, &node, nullptr).Write(); }).reason, writing);
    put(m_name, "<!DOCTYPE Vt><Vt Version=\"1.0\"><a\xFF/></Vt>");
    EXPECT_THAT(read(m_name), testing::HasSubstr("bytes that are no text"));

    VtFile(m_name, &node, nullptr).Write();
    const QByteArray old = bytesOf(m_name);
    put(m_folder.filePath("half.xml"), old.left(old.size() / 2));
    EXPECT_THAT(read(m_folder.filePath("half.xml")), testing::HasSubstr("Parse error: "));
    EXPECT_EQ(other.GetChildrenCount(), 2000);

    // A disk that is full after 64 KiB, for this process.
    rlimit before;
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{65536, before.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    const std::string full = faultOf([&] { VtFile(m_name, &other, nullptr).Write(); }).reason;
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(full, "Can not write File - see Details");
    EXPECT_EQ(bytesOf(m_name), old);
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files).size(), 2); // nothing lies about
}

TEST_F(VtFileTest, IsTheOldOrTheNewOneAfterAKill)
{
    constexpr int kRounds = 200;
    Node first, second;
    fill(first, 300, "first");
    fill(second, 900, "second, which is longer");
    VtFile(m_name, &first, nullptr).Write();
    const QByteArray versions[] = {VtXml::ToXml(&first).toUtf8(), VtXml::ToXml(&second).toUtf8()};
    std::mt19937 random(1);
    int longest = 15000; // microseconds; a slow disk needs more for the two writes
    int seen[2] = {};
    for (int round = 0; round < kRounds || (longest < 2000000 && !(seen[0] && seen[1])); ++round) {
        if (round >= kRounds)
            longest *= 2;
        std::uniform_int_distribution<int> microseconds(0, longest);
        const pid_t child = fork();
        if (child == 0) {
            for (int i = 0;; ++i)
                VtFile(m_name, i % 2 == 0 ? &second : &first, nullptr).Write();
        }
        ASSERT_GT(child, 0);
        usleep(useconds_t(microseconds(random)));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        const QByteArray found = bytesOf(m_name);
        ASSERT_TRUE(found == versions[0] || found == versions[1]) << "round " << round;
        ++seen[found == versions[0] ? 0 : 1];
    }
    EXPECT_TRUE(seen[0] > 0 && seen[1] > 0); // the kills met running writers
}

} // namespace
