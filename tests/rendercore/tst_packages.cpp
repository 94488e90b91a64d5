// Scenes on this machine: analysed, sorted into packages, packed and hashed.
#include "host/rendercore/submit/checksum_cache.h"
#include "host/rendercore/submit/local_stages.h"
#include "host/rendercore/submit/scene_package.h"
#include "host/rendercore/submit/submit_worker.h"
#include "host/rendercore/submit/task_packages.h"
#include "tests/support/test_files.h"
#include "tests/support/test_tables.h"

#include <stdexcept>

namespace {

using Kind = StageOutcome::Kind;
using Stage = SubmitStage;

/// Sizes of files in kilobytes with their numbers, and the packages that they go to.
const std::tuple<const char*, QVector<std::pair<int, int>>, const char*> GroupCases[] = {
    {"small files share a package", {{3, 1}, {1, 0}}, "0*4"},
    {"a large one has its own", {{2, 1}, {1, 3000}, {2, 1}, {1, 4000}, {1, 1}}, "0*2 1*1 0*2 2*1 0*1"},
    {"large ones only", {{2, 2000}}, "0*1 1*1"},
    {"a full package", {{16, 1000}, {2, 1000}, {1, 1}}, "0*16 1*3"},
};

} // namespace

class PackagesTest : public QObject
{
    Q_OBJECT

private:
    QString Path(const QString& name) const { return m_folder->filePath(name); }

    QString Write(const QString& name, const QByteArray& content = {}) const
    {
        WriteFile(Path(name), content);
        return Path(name);
    }

    StageRequest Request(Stage stage) const
    {
        StageRequest request;
        request.task.next = stage;
        request.task.scene = Path("a.pov"_s);
        request.folder = Path("packages"_s);
        request.interrupted = std::make_shared<std::atomic<bool>>(false);
        return request;
    }

    static PackedFile File(const QString& source)
    {
        return {QFileInfo(source).fileName(), source, {}, -1, false};
    }

    /// Compresses the files without a cache.
    static SubmitWork Packed(const StageRequest& request)
    {
        ChecksumCache cache({});
        return CompressStage(request, Ignore, cache).work;
    }

    static void Ignore(int /*percent*/, const QString& /*text*/) { }

    std::unique_ptr<QTemporaryDir> m_folder;

private slots:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void SortsFilesIntoPackages_data() { AddRows(GroupCases); }

    void SortsFilesIntoPackages()
    {
        const auto& [name, sizes, packages] = Row(GroupCases);
        StageRequest request = Request(Stage::Compress);
        for (const auto& [count, size] : sizes) {
            for (int index = 0; index < count; ++index) {
                QFile file(Write(QString::number(request.task.work.files.size())));
                QVERIFY(file.resize(size * 1000LL));
                request.task.work.files.append(File(file.fileName()));
            }
        }
        const SubmitWork work = Packed(request);
        QStringList runs;
        int length = 0;
        for (int index = 0; index < work.files.size(); ++index) {
            const int package = work.files.at(index).package;
            ++length;
            if (index + 1 < work.files.size() && work.files.at(index + 1).package == package)
                continue;
            runs.append("%1*%2"_s.arg(package).arg(std::exchange(length, 0)));
            QVERIFY(QFile::exists(TaskPackages::Path(request.folder, package)));
        }
        QCOMPARE(runs.join(QLatin1Char(' ')), QString::fromLatin1(packages));
        QVERIFY(!QFile::exists(TaskPackages::Path(request.folder, work.packages.size())));
    }

    void PacksOnlyWhatHasNoPackage()
    {
        StageRequest request = Request(Stage::Compress);
        request.task.work.files = {File(Write("a"_s, "a")), File(Write("b"_s, "b")), File(Write("c"_s, "c"))};
        request.task.work = Packed(request);
        const QString first = request.task.work.files[0].checksum;
        QCOMPARE(first.toLatin1(), QCryptographicHash::hash("a", QCryptographicHash::Sha256).toHex());
        PackedFile& wanted = request.task.work.files[1];
        wanted.package = -1; // its package has gone
        for (PackedFile& file : request.task.work.files)
            file.isWanted = true;
        const SubmitWork work = Packed(request);
        QCOMPARE(work.packages.size(), 2);
        QCOMPARE(work.files[0].package, 0);
        QCOMPARE(work.files[1].package, 1);
        QCOMPARE(work.files[2].package, 0);
    }

    void KnowsEmptyFilesToo()
    {
        const QString database = Path("submissions.sqlite"_s);
        StageRequest request = Request(Stage::Compress);
        request.task.work.files = {File(Write("empty"_s))};
        QFile file(Path("empty"_s));
        QVERIFY(file.open(QIODevice::ReadWrite)
            && file.setFileTime(
                QDateTime::currentDateTime().addSecs(-60), QFileDevice::FileModificationTime));
        file.close();
        for (const int package : {0, -1}) {
            ChecksumCache cache(database);
            const StageOutcome outcome = CompressStage(request, Ignore, cache);
            QCOMPARE(outcome.next, Stage::Checksum);
            QCOMPARE(outcome.work.files.value(0).package, package);
            QVERIFY(!outcome.work.files.value(0).checksum.isEmpty());
        }
        // A file that is not there is not known either.
        QVERIFY(QFile::remove(Path("empty"_s)));
        ChecksumCache cache(database);
        QVERIFY_EXCEPTION_THROWN(CompressStage(request, Ignore, cache), TaskFailure);
    }

    void EndsWhenItIsInterrupted()
    {
        Write("a.pov"_s, "png \"b.png\"");
        Write("b.png"_s, "b");
        StageRequest request = Request(Stage::Analyze);
        *request.interrupted = true;
        QCOMPARE(AnalyzeStage(request, Ignore).kind, Kind::Interrupted);
        request.task.work.files = {File(Path("b.png"_s))};
        ChecksumCache cache({});
        QCOMPARE(CompressStage(request, Ignore, cache).kind, Kind::Interrupted);
        QVERIFY(!QFile::exists(TaskPackages::Path(request.folder, 0)));
        *request.interrupted = false;
        request.task.work = CompressStage(request, Ignore, cache).work;
        *request.interrupted = true;
        const StageOutcome outcome = ChecksumStage(request, Ignore);
        QCOMPARE(outcome.kind, Kind::Interrupted);
        QVERIFY(outcome.work.packages.isEmpty());
    }

    void AnalysisAsksForEverythingUnusual()
    {
        Write("a.pov"_s, "png \"gone.png\" png \"/gone.png\" png \"../out.png\"");
        const StageOutcome outcome = AnalyzeStage(Request(Stage::Analyze), Ignore);
        QCOMPARE(outcome.kind, Kind::Done);
        QCOMPARE(outcome.next, Stage::Compress);
        QCOMPARE(outcome.work.missing.size(), 3);
        QCOMPARE(outcome.work.missing.at(2).Text(), "/gone.png (use a path relative to the scene)"_s);
        QCOMPARE(outcome.work.files.size(), 1);
        QCOMPARE(outcome.work.files.at(0).source, QFileInfo(Path("a.pov"_s)).canonicalFilePath());
        Write("a.pov"_s, "png \"" + QByteArray(4000, 'x') + '"');
        QCOMPARE(AnalyzeStage(Request(Stage::Analyze), Ignore).kind, Kind::Done);
    }

    /// An unexpected fault ends the stage, not the program.
    void UnexpectedFailuresFailTheStage()
    {
        SubmitWorker worker;
        const auto fail = [](int, const QString&) { throw std::runtime_error("unforeseen"); };
        const std::pair<Stage, SubmitError> stages[] = {{Stage::Analyze, SubmitError::SceneUnusable},
            {Stage::Compress, SubmitError::PackingFailed}, {Stage::Checksum, SubmitError::PackingFailed}};
        StageRequest request = Request(Stage::Analyze);
        request.task.work.files = {File(Write("a.pov"_s, "sphere{}"))};
        request.task.work = Packed(request);
        for (const auto& [stage, error] : stages) {
            request.task.next = stage;
            if (stage == Stage::Compress)
                request.task.work.files[0].checksum.clear();
            const StageOutcome outcome = worker.Run(request, fail);
            QCOMPARE(outcome.stage, stage);
            QCOMPARE(outcome.kind, Kind::Failed);
            QCOMPARE(outcome.error, error);
            QVERIFY(outcome.message.Text().endsWith("unforeseen"_s));
            QCOMPARE(outcome.work.files.size(), 1);
        }
        // A file is where the folder of the packages should be.
        request = Request(Stage::Compress);
        request.folder = Path("a.pov"_s);
        const StageOutcome outcome = worker.Run(request, Ignore);
        QCOMPARE(outcome.error, SubmitError::PackingFailed);
        QVERIFY(outcome.message.Text().startsWith("The folder for packed files"_s));
    }

    /// A reason why the files cannot be packed, and the file that the message names.
    void SaysWhatCannotBePacked()
    {
        const QString archive = Path("x.zip"_s);
        const QString file = Write("a.txt"_s, "text");
        const auto failure = [](QVector<PackageEntry> entries, const QString& package) {
            try {
                PackFiles(entries, package, Compression::WhereItHelps, [](qint64) { return true; });
            } catch (const TaskFailure& why) {
                return QString(why.Message().Text().section(QLatin1Char(':'), 0, 0) + QLatin1Char('|')
                    + why.Message().Text().section(QLatin1Char('\n'), 1));
            }
            return QString();
        };
        const PackageEntry one {file, "a"_s, {}};
        QCOMPARE(failure({one, {file + "x"_s, "b"_s, {}}}, archive), "A file cannot be read|%1x"_s.arg(file));
        QCOMPARE(failure({one, {"/proc/self/mem"_s, "b"_s, {}}}, archive),
            "A file cannot be read|/proc/self/mem"_s);
        QCOMPARE(failure({{Write("b.txt"_s), "a"_s, {}}, one}, archive), "A file cannot be packed|"_s + file);
        QCOMPARE(failure({one}, Path("no/x.zip"_s)), "A file cannot be packed|"_s + file);
        QCOMPARE(failure({one}, m_folder->path()), "A package cannot be written|"_s);
        QVector<PackageEntry> entries {one};
        QVERIFY(!PackFiles(entries, archive, Compression::None, [](qint64 bytes) { return bytes == 0; }));
        QVERIFY(QDir(m_folder->path()).entryList({"x.zip*"_s}, QDir::AllEntries | QDir::Hidden).isEmpty());
    }

    void StoresWhatWouldGrowTooMuchOrNotShrink()
    {
        const auto pack = [this](const QString& file, Compression compression) {
            QVector<PackageEntry> entries {{file, "a"_s, {}}};
            const QString archive = Path("x.zip"_s);
            return PackFiles(entries, archive, compression, [](qint64) { return true; })
                ? QFileInfo(archive).size()
                : -1;
        };
        QVector<quint32> noise(100'000);
        QRandomGenerator(1).fillRange(noise.data(), noise.size());
        const QByteArray bytes(reinterpret_cast<const char*>(noise.constData()), noise.size() * 4);
        const QString random = Write("a"_s, bytes);
        QCOMPARE(pack(random, Compression::WhereItHelps), pack(random, Compression::None));
        // The farm takes a large package that grows for an attack.
        QFile zeros(Write("b"_s));
        QVERIFY(zeros.resize(8'000'000));
        QVERIFY(pack(zeros.fileName(), Compression::WhereItHelps) < 100'000);
        QVERIFY(zeros.resize(70'000'000));
        QVERIFY(pack(zeros.fileName(), Compression::WhereItHelps) > zeros.size());
    }
};

QTEST_GUILESS_MAIN(PackagesTest)
#include "tst_packages.moc"
