// Scene analysis, packing and limits of arguments.
#include "host/rendercore/submit/scene_analysis.h"
#include "host/rendercore/submit/scene_package.h"
#include "host/rendercore/submit/submit_arguments.h"

#include <QCryptographicHash>
#include <QtTest>

using Texts = QMap<QString, QByteArray>;
Q_DECLARE_METATYPE(Texts)

class TestSubmitAnalysis : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    void Write(const QString& name, const QByteArray& content)
    {
        const QString path = m_folder.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(content).replace("@", m_folder.path().toUtf8()));
    }

private slots:
    void init() { QVERIFY(QDir(m_folder.path()).removeRecursively() && QDir().mkpath(m_folder.path())); }

    void Analyses_data()
    {
        QTest::addColumn<Texts>("texts"); // the scene is "p/s/a.…"; @ is the folder
        QTest::addColumn<QString>("files");
        QTest::addColumn<QString>("missing");
        QTest::addColumn<QString>("job");
        const auto row = [](const char* name, const char* scene, Texts texts, const char* files,
                             const char* missing = "", const char* job = "1-1 640x480") {
            const QString suffix = QString::fromLatin1(name).section(QLatin1Char(' '), 0, 0);
            texts.insert(QStringLiteral("p/s/a.") + suffix, scene);
            QTest::newRow(name) << texts << QString::fromLatin1(files) << QString::fromLatin1(missing)
                                << QString::fromLatin1(job);
        };
        const auto name = [](const char* text) { return QString::fromLatin1(text); };

        row("pov pictures, fonts and data",
            "image_map{png \"a.png\"} image_map { /* no type */ \"b.jpg\" } bump_map{tga\"c.tga\" once}\n"
            "text{ttf \"d.ttf\" \"hello.png\" 1,0} density{density_file df3 \"e.df3\"} "
            "height_field{\"f.png\"}\n"
            "#fopen F \"g.txt\" read\n#fopen W \"h.txt\" write #declare T = \"i.png\";",
            {{name("p/s/a.png"), ""}, {name("p/s/b.jpg"), ""}, {name("p/s/c.tga"), ""},
                {name("p/s/d.ttf"), ""}, {name("p/s/e.df3"), ""}, {name("p/s/f.png"), ""},
                {name("p/s/g.txt"), ""}},
            "a.pov a.png b.jpg c.tga d.ttf e.df3 f.png g.txt");
        row("pov comments and texts",
            "// #include \"no.inc\"\n/* png \"no.png\" /* nested */ png \"no.png\" */\n"
            "#debug \"\\\" png \" png \"gone.png\" // png\n#include \"colors.inc\" ttf \"timrom.ttf\"",
            {}, "a.pov", "gone.png");
        row("pov includes in a circle, from where they are found",
            "#include \"in/b.inc\" # include \"c.inc\"",
            {{name("p/s/in/b.inc"), "#include \"c.inc\" #include \"in/b.inc\" png \"x.png\""},
                {name("p/s/in/c.inc"), "#include \"a.pov\""}, {name("p/s/x.png"), ""}},
            "a.pov in/b.inc c.inc x.png");
        row("pov folders above", "png \"../../q/t.png\" png \"../s/./u.png\" png \"@/v.png\"",
            {{name("q/t.png"), ""}, {name("p/s/u.png"), ""}, {name("v.png"), ""}},
            "p/s/a.pov q/t.png p/s/u.png", "@/v.png (use a path relative to the scene)");
        row("pov too high", "png \"../../../../../../../../../etc/passwd\" png \"a\\\\b.png\" png \"in\"",
            {{name("p/s/in/x"), ""}, {name("p/s/a\\b.png"), ""}}, "a.pov",
            "../../../../../../../../../etc/passwd a\\b.png in");
        row("pov with options", "",
            {{name("p/s/a.ini"),
                "; Width=1\nWidth = 320\nheight=200 ; small\nInitial_Frame=2\nFinal_Frame=9\n"}},
            "a.pov", "", "2-9 320x200");
        row("pov with mad options", "",
            {{name("p/s/a.ini"), "Width=0\nHeight=99999\nFinal_Frame=99999999\n"}}, "a.pov", "",
            "1-20000 640x480");

        row("ma in a project",
            "//Maya ASCII \"no.png\";\nfile -rdi 1 -ns \"r\" -typ \"mayaAscii\"\n \"@/p//s/ref.ma{2}\";\n"
            "createNode file -n \"f\";\n\tsetAttr \".ftn\" -type \"string\" \"tex/a;b.png\";\n"
            "\tsetAttr \".ftn\" -type \"string\" \"@/else/c.png\";\n"
            "\tsetAttr \".ftn\" -type \"string\" \"C:/proj//tex/d.<UDIM>.png\";\n"
            "\tsetAttr \".ftn\" -type \"string\" \"D:/gone.png\";\nselect -ne :defaultRenderGlobals;\n"
            "\tsetAttr \".fs\" 5;\n\tsetAttr \".ef\" 8.0;\nselect -ne :defaultResolution;\n"
            "\tsetAttr -k on \".w\" 320;\n\tsetAttr \".h\" 240;\n",
            {{name("p/workspace.mel"), ""}, {name("p/tex/a;b.png"), ""}, {name("else/c.png"), ""},
                {name("p/tex/d.1001.png"), ""}, {name("p/tex/d.1002.png"), ""}, {name("p/tex/d.x.png"), ""},
                {name("p/s/ref.ma"),
                    "file -r \"s/a.ma\"; select -ne :defaultRenderGlobals; setAttr \".ef\" 99;"
                    "setAttr \".ftn\" -type \"string\" \"e.png\";"},
                {name("p/s/e.png"), ""}},
            "s/a.ma s/ref.ma tex/a;b.png external@/else/c.png tex/d.1001.png tex/d.1002.png s/e.png",
            "D:/gone.png", "5-8 320x240");
        row("mb alone", "file \"x.ma\";", {{name("p/s/x.ma"), ""}}, "a.mb");
    }

    void Analyses()
    {
        QFETCH(Texts, texts);
        QString scene;
        for (auto text = texts.cbegin(); text != texts.cend(); ++text) {
            Write(text.key(), text.value());
            if (text.key().startsWith(QStringLiteral("p/s/a.")) && IsSceneName(text.key()))
                scene = m_folder.filePath(text.key());
        }
        const SceneAnalysis analysis = AnalyseScene(scene);
        QCOMPARE(analysis.error, QString());
        QCOMPARE(analysis.scene, analysis.files.constFirst().path);
        QStringList found;
        for (const SceneFile& file : analysis.files) {
            found.append(file.path);
            QVERIFY(QFileInfo(file.source).isFile());
        }
        QFETCH(QString, files);
        QFETCH(QString, missing);
        QCOMPARE(found.join(QLatin1Char(' ')), files.replace(QLatin1Char('@'), m_folder.path()));
        QCOMPARE(analysis.missing.join(QLatin1Char(' ')), missing.replace(QLatin1Char('@'), m_folder.path()));
        QTEST(QStringLiteral("%1-%2 %3x%4")
                  .arg(analysis.firstFrame)
                  .arg(analysis.lastFrame)
                  .arg(analysis.width)
                  .arg(analysis.height),
            "job");
    }

    void PacksOneFileReproducibly()
    {
        Write(QStringLiteral("x.txt"), QByteArray(300'000, 'x'));
        const auto all = [](auto) { return true; };
        QByteArray archives[2];
        for (QByteArray& bytes : archives) {
            const QString archive = m_folder.filePath(QStringLiteral("x.zip"));
            QVERIFY(PackFile(
                m_folder.filePath(QStringLiteral("x.txt")), QStringLiteral("ä/x.txt"), archive, all));
            QCOMPARE(PackedChecksum(archive, all),
                QString::fromLatin1(
                    QCryptographicHash::hash(QByteArray(300'000, 'x'), QCryptographicHash::Sha256).toHex()));
            QFile file(archive);
            QVERIFY(file.open(QIODevice::ReadOnly));
            bytes = file.readAll();
            QVERIFY(file.remove());
        }
        QCOMPARE(archives[0], archives[1]);
        QVERIFY(archives[0].size() < 3000);

        const QString ended = m_folder.filePath(QStringLiteral("ended.zip"));
        QVERIFY(!PackFile(m_folder.filePath(QStringLiteral("x.txt")), QStringLiteral("x"), ended,
            [](qint64) { return false; }));
        QVERIFY(QDir(m_folder.path()).entryList({QStringLiteral("ended*")}).isEmpty());
    }

    void TakesOnlyWhatAJobMayHave_data()
    {
        QTest::addColumn<QVariantList>("arguments");
        QTest::addColumn<bool>("isGood");
        const QVariantMap good = MakeArguments(1, 9, 640, 480).constFirst().toMap();
        const auto row = [&good](const char* name, const char* key, const QVariant& value, bool isGood) {
            QVariantMap range = good;
            range.insert(QString::fromLatin1(key), value);
            QTest::newRow(name) << QVariantList {range} << isGood;
        };
        QTest::newRow("none") << QVariantList() << false;
        QTest::newRow("second range under the first's names") << QVariantList {good, good} << false;
        row("one frame", "endFrame_0", 1, true);
        row("backwards", "endFrame_0", 0, false);
        row("from zero", "startFrame_0", 0, false);
        row("too many frames", "endFrame_0", 20001, false);
        row("the scene's own width", "width", QString(), true);
        row("no width", "width", QStringLiteral("0"), false);
        row("not a height", "height", QStringLiteral("4e9"), false);
    }

    void TakesOnlyWhatAJobMayHave()
    {
        QFETCH(QVariantList, arguments);
        QTEST(AreArguments(arguments), "isGood");
    }
};

QTEST_GUILESS_MAIN(TestSubmitAnalysis)
#include "tst_submit_analysis.moc"
