#include "tests/farm/farm_at_work.h"
#include "tests/farm/package_fixture.h"

#include <QDirIterator>
#include <QtTest>

#include <sys/stat.h>

using namespace farm;

namespace {

constexpr int SmallQuota = 100'000;

int FilesIn(const QString& folder)
{
    int count = 0;
    for (QDirIterator files(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
         files.hasNext(); ++count)
        files.next();
    return count;
}

} // namespace

/// Uploading the files of scenes, as ann does over HTTP.
class UploadTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_farm = std::make_unique<FarmAtWork>();
        m_farm->Start(ScriptedTypes("exit 1"));
    }

    void RefusesHostilePackages_data()
    {
        QTest::addColumn<QByteArray>("package");
        const auto path = [](const char* title, const QByteArray& name) {
            QTest::newRow(title) << Package({{"a", "good"}, {name, "bad"}});
        };
        const auto mode = [](const char* title, mode_t kind) {
            QTest::newRow(title) << Package({{"a", "/etc/passwd"}}, [kind](zip_t* archive) {
                zip_file_set_external_attributes(
                    archive, 0, 0, ZIP_OPSYS_UNIX, zip_uint32_t(kind | 0777) << 16);
            });
        };
        path("climbing", "a/../../x");
        path("not UTF-8", "a\xff");
        path("a folder", "folder/");
        mode("a link", S_IFLNK);
        mode("a device", S_IFCHR);
        QTest::newRow("encrypted") << Package({{"a", "secret"}},
            [](zip_t* archive) { zip_file_set_encryption(archive, 0, ZIP_EM_AES_256, "key"); });
        QTest::newRow("one path twice")
            << Package({{"name1", "one"}, {"name2", "two"}}).replace("name2", "name1");
        SceneContents many;
        for (int entry = 0; entry <= 10000; ++entry)
            many.append({QByteArray::number(entry), ""});
        QTest::newRow("too many entries") << Package(many);
        QTest::newRow("bomb") << Package({{"a", QByteArray(70'000'000, '0')}});
        // The size precedes the name's length, both in the entry and in the directory.
        const QByteArray content(3000, 'x');
        for (char low : {'\x07', '\xff'})
            QTest::addRow("says that its size ends in %d", low)
                << Package({{"a", content}})
                       .replace(QByteArray("\xb8\x0b\0\0\x01\0", 6), low + QByteArray("\x0b\0\0\x01\0", 5));
        QTest::newRow("damaged") << Package({{"a", "content"}}).replace("content", "contend");
        QTest::newRow("cut off") << Package({{"a", content}, {"b", content}}).chopped(30);
        QTest::newRow("not a ZIP archive") << QByteArray("rubbish");
        QTest::newRow("not what was announced") << QByteArray();
    }

    void RefusesHostilePackages()
    {
        QFETCH(QByteArray, package);
        const QByteArray announced = package.isEmpty() ? Package(PlainFiles) : package;
        if (package.isEmpty())
            package = QByteArray(announced).replace("a leaf", "a lens");
        const QString upload = m_farm->BeginUpload(announced).Data("id").toString();
        QCOMPARE(m_farm->Put(upload, 0, package).Data("offset").toInt(), package.size());
        const Reply reply = m_farm->Unpack(upload);
        QCOMPARE(reply.status, 422);
        QCOMPARE(reply.Error(), "bad_package"_s);
        QCOMPARE(m_farm->Get("/uploads/%1", {upload}).status, 404);
        QCOMPARE(FilesIn(m_farm->Path("contents")) + FilesIn(m_farm->Path("uploads")), 0);
    }

    void ContinuesAnInterruptedUpload()
    {
        const QByteArray package = Package(PlainFiles);
        const QString id = m_farm->BeginUpload(package).Data("id").toString();
        const auto put
            = [&](int from, int to) { return m_farm->Put(id, from, package.mid(from, to - from)); };
        QCOMPARE(put(0, 100).Data("offset").toInt(), 100);
        QCOMPARE(put(0, 100).status, 409);
        QCOMPARE(put(101, 150).status, 409);
        QCOMPARE(m_farm->Unpack(id).status, 409);
        QCOMPARE(m_farm->Put(id, 100, package).status, 400);
        // A killed farm may leave any part of a chunk, which then counts.
        m_farm->End();
        QVERIFY(WriteFile(m_farm->Path("uploads/%1", {id}), package.left(107)));
        m_farm->Start();
        const Reply again = m_farm->BeginUpload(package);
        QCOMPARE(again.Data("id").toString(), id);
        QCOMPARE(again.Data("offset").toInt(), 107);
        QCOMPARE(put(107, package.size()).status, 200);
        const Reply unpacked = m_farm->Unpack(id);
        QCOMPARE(unpacked.status, 200);
        QCOMPARE(unpacked.Data("files")[1]["path"_s].toString(), "maps/leaf.txt"_s);
        QCOMPARE(unpacked.Data("files")[1]["checksum"_s].toString(), Sha256("a leaf"));
        QCOMPARE(m_farm->Unpack(id).body, unpacked.body);
        QVERIFY(m_farm->BeginUpload(package).Data("unpacked").toBool());
        // A content that the disk has lost is sent again.
        QVERIFY(QFile::remove(m_farm->Path("contents/%1/%2", {Sha256("a leaf").left(2), Sha256("a leaf")})));
        QCOMPARE(Known(), QJsonArray());
        QVERIFY(!m_farm->BeginUpload(package).Data("unpacked").toBool());
        QCOMPARE(m_farm->Deliver(package).status, 200);
        const QString other = m_farm->BeginUpload("other").Data("id").toString();
        m_farm->Put(other, 0, "oth");
        m_farm->data.Change("UPDATE uploads SET touched_at = touched_at - 6 * 86400");
        m_farm->Start();
        QCOMPARE(m_farm->Get("/uploads/%1", {other}).status, 200);
        m_farm->End();
        QVERIFY(WriteFile(m_farm->Path("uploads/stray"), "of no upload"));
        QVERIFY(WriteFile(m_farm->Path("contents/stray"), "of no account"));
        m_farm->data.Change("UPDATE uploads SET touched_at = touched_at - 1 * 86400");
        m_farm->Start();
        QCOMPARE(m_farm->Get("/uploads/%1", {other}).status, 404);
        QCOMPARE(FilesIn(m_farm->Path("uploads")), 0);
        QCOMPARE(FilesIn(m_farm->Path("contents")), 2);
    }

    void IgnoresTheContentsOfOtherAccounts()
    {
        m_farm->data.accounts.Add({"bob"_s, "bob@x"_s, "b"_s, false, 1'000'000, 0});
        const QByteArray package = Package(PlainFiles);
        const QString annsUpload = m_farm->BeginUpload(package).Data("id").toString();
        QCOMPARE(m_farm->Deliver(package).status, 200);
        QCOMPARE(Known(), QJsonArray {Sha256("a leaf")});
        m_farm->SignIn("bob", "b");
        QCOMPARE(Known(), QJsonArray());
        QCOMPARE(m_farm->Get("/uploads/%1", {annsUpload}).status, 404);
        QCOMPARE(m_farm->BeginUpload(package).Data("offset").toInt(-1), 0);
        QCOMPARE(Submit(SubmissionOf(PlainFiles)).status, 409);
    }

    void KeepsAnAccountWithinItsQuota()
    {
        m_farm->settings.quota = SmallQuota;
        m_farm->Start(ScriptedTypes("exit 1"));
        const Reply tooLarge = m_farm->BeginUpload(QByteArray(SmallQuota + 1, 'x'));
        QCOMPARE(tooLarge.status, 507);
        QCOMPARE(tooLarge.Error(), "quota_exceeded"_s);
        QCOMPARE(m_farm->Deliver(Package({{"a", QByteArray(60'000, 'a')}})).status, 200);
        QCOMPARE(m_farm->Deliver(Package({{"b", QByteArray(60'000, 'b')}})).status, 507);
        QCOMPARE(FilesIn(m_farm->Path("contents")), 1);
        // A content that is known takes no more space.
        QCOMPARE(m_farm->Deliver(Package({{"c", QByteArray(60'000, 'a')}, {"d", "d"}})).status, 200);
        QCOMPARE(m_farm->BeginUpload(QByteArray(39'000, 'x')).status, 200);
        QCOMPARE(m_farm->BeginUpload(QByteArray(39'000, 'y')).status, 507);
        m_farm->data.Change(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 9999) INSERT INTO "
            "uploads SELECT i, 1, i, 0, 9e9, NULL FROM n");
        QCOMPARE(m_farm->BeginUpload("z").status, 507);
        // Each of a job's files counts, whether or not their contents are the same.
        const QByteArray content(60'000, 'a');
        QCOMPARE(Submit(SubmissionOf({{"a", content}})).status, 200);
        QCOMPARE(Submit(SubmissionOf({{"a", content}, {"b", content}}, "second")).status, 507);
    }

private:
    Reply Submit(const QJsonObject& body) { return m_farm->Post("/jobs", body); }
    QJsonArray Known() { return m_farm->Known({Sha256("a leaf"), Sha256("none")}); }

    std::unique_ptr<FarmAtWork> m_farm;
};

QTEST_GUILESS_MAIN(UploadTest)
#include "tst_farm_uploads.moc"
