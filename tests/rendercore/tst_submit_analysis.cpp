// Scene analysis, packing and limits of arguments.
#include "host/rendercore/submit/blender_scene.h"
#include "host/rendercore/submit/maya_attributes.h"
#include "host/rendercore/submit/maya_scene.h"
#include "host/rendercore/submit/povray_scene.h"
#include "host/rendercore/submit/scene_analysis.h"
#include "host/rendercore/submit/scene_contents.h"
#include "host/rendercore/submit/scene_package.h"
#include "host/rendercore/submit/submit_arguments.h"
#include "tests/support/test_files.h"
#include "tests/support/test_tables.h"

namespace {

/// Names are relative to the scene's folder; @ is the folder two above it, and ^ the same without its first slash.
struct SceneCase
{
    const char* name;
    QVector<std::pair<QString, QByteArray>> texts; ///< the first one is the scene
    const char* others;                            ///< empty files
    const char* files;                             ///< the files that the analysis finds
    const char* missing = "";
    const char* job = "1-1 640x480";
    const char* report = nullptr; ///< Blender's report, with ' for "
};

const auto& SceneCases()
{
    static const SceneCase rows[] = {
        {"pictures, fonts and data",
            {{"a.pov"_s,
                "image_map{png \"a.png\"} image_map { /* no type */ \"b.jpg\" } bump_map{tga\"c.tga\" once}\n"
                "text{ttf \"d.ttf\" \"hello.png\" 1,0} density{density_file df3 \"e.df3\"} "
                "height_field{\"f.png\"}\n"
                "#fopen W \"h.txt\" write #declare T = \"i.png\";\n#fopen F \"g.txt\" read"}},
            "a.png b.jpg c.tga d.ttf e.df3 f.png g.txt", "a.pov a.png b.jpg c.tga d.ttf e.df3 f.png g.txt"},
        {"comments and texts",
            {{"a.pov"_s,
                "// #include \"no.inc\"\n/* png \"no.png\" /* nested */ png \"no.png\" */\n"
                "#debug \"\\\" png \" png \"gone.png\" // png\n#include \"colors.inc\" ttf \"timrom.ttf\""}},
            "", "a.pov", "gone.png"},
        {"includes in a circle, from where they are found",
            {{"a.pov"_s, "#include \"in/b.inc\" # include \"c.inc\""},
                {"in/b.inc"_s, "#include \"c.inc\" #include \"in/b.inc\" png \"\xc3\xa4.png\""},
                {"in/c.inc"_s, "#include \"a.pov\""}},
            "\xc3\xa4.png", "a.pov in/b.inc c.inc \xc3\xa4.png"},
        {"folders above", {{"a.pov"_s, "png \"../../q/t.png\" png \"../s/./u.png\" png \"@/v.png\""}},
            "../../q/t.png u.png ../../v.png", "p/s/a.pov q/t.png p/s/u.png",
            "@/v.png (use a path relative to the scene) outside:@/q/t.png"},
        {"too high",
            {{"a.pov"_s,
                "png \"../../../../../../../../../etc/passwd\" png \"a\\\\b.png\" png \"in\" png "
                "\"c\x7f.png\""}},
            "in/x a\\b.png c\x7f.png", "a.pov",
            "../../../../../../../../../etc/passwd a\\b.png in c\x7f.png"},
        {"one file by several names",
            {{"a.pov"_s,
                "png \"../s/u.png\" png \"u.png\" png \"./u.png\" png \"no.png\" png \"./no.png\" "
                "png \"no.png\" png \"@/no.png\" png \"@/no.png\""}},
            "u.png", "s/a.pov s/u.png", "no.png @/no.png (use a path relative to the scene)"},
        {"a file of its own in place of a standard one",
            {{"a.pov"_s, "#include \"colors.inc\" #include \"in/b.inc\" png \"x\xc3\" png \"b c.png\""},
                {"in/b.inc"_s, "png \"b\tc.png\" png \"b:c.png\""}, {"b c.png"_s, ""}, {"b\tc.png"_s, ""},
                {"b:c.png"_s, ""}},
            "colors.inc x\xc3\x83", "a.pov colors.inc in/b.inc x\xc3\x83 b c.png", "b\tc.png b:c.png"},
        {"largest size, first frame only",
            {{"a.pov"_s, ""}, {"a.ini"_s, "Width=16384\nHeight=16385\nFinal_Frame=last\nInitial_Frame=4"}},
            "", "a.pov", "", "4-4 16384x480"},
        {"options that are no numbers",
            {{"a.pov"_s, ""}, {"a.ini"_s, "Initial_Frame=x\nFinal_Frame=5\nWidth\n"}}, "", "a.pov", "",
            "1-5 640x480"},
        {"options",
            {{"a.pov"_s, ""},
                {"a.ini"_s, "; Width=3\nWidth = 1\nheight=1 ; small\nInitial_Frame=2\nFinal_Frame=9\n"}},
            "", "a.pov", "", "2-9 1x1"},
        {"mad options", {{"a.pov"_s, ""}, {"a.ini"_s, "Width=0\nHeight=99999\nFinal_Frame=99999999\n"}}, "",
            "a.pov",
            "The scene has the frames 1 to 99999999; the farm will render only 1 to 20000 if you go on.",
            "1-20000 640x480"},
        {"project",
            {{"a.ma"_s,
                 "//Maya ASCII; file \"no.ma\";\nfile -rdi 1 -ns \"r\" -typ \"mayaAscii\"\n "
                 "\"@/p//s/ref.ma{2}\";\n"
                 "createNode file\r\n -n \"f\";\r\n\tsetAttr \".ftn\" -type \"string\" \"tex/a;b.png\";\n"
                 "\tsetAttr \".ftn\" -type \"string\" \"@/else/c.png\";\n"
                 "\tsetAttr \".ftn\" -type \"string\" \"C:/proj//tex/d.<UDIM>.png\";\n"
                 "\tsetAttr \".ftn\" -type \"string\" \"D:/gone.png\";\nselect -ne :defaultRenderGlobals;\n"
                 "\tsetAttr \".fs\" 5;\n\tsetAttr \".ef\" 8.0;\nselect -ne :defaultResolution;\n"
                 "\tsetAttr -k on \".w\" 320;\n\tsetAttr \".h\" 240;\n"},
                {"ref.ma"_s,
                    "file -ns r/s -r \"s/a.ma\"; select -ne :defaultRenderGlobals; setAttr \".ef\" 99;"
                    "setAttr \".ftn\" -type \"string\" \"e.png\"; setAttr \".ftn\" -type \"string\" "
                    "\"D:/gone.png\";"}},
            "../workspace.mel ../tex/a;b.png ../../else/c.png ../tex/d.1001.png ../tex/d.1002.png "
            "../tex/d.x.png "
            "e.png",
            "s/a.ma s/ref.ma tex/a;b.png external@/else/c.png tex/d.1001.png tex/d.1002.png s/e.png",
            "D:/gone.png outside:@/else/c.png", "5-8 320x240"},
        {"files of all kinds",
            {{"a.ma"_s,
                "createNode imagePlane; setAttr -k off \".imn\" -type \"string\" \"a.exr\"; createNode "
                "AlembicNode;"
                "setAttr \".fns\" -type \"stringArray\" 2 \"b.abc\" \"c.abc\"; createNode aiStandIn;"
                "setAttr \".dso\" -type \"string\" \"d.ass\"; createNode gpuCache;"
                "setAttr \".cfn\" -type \"string\" \"e.abc\"; createNode unheardOf;"
                "setAttr \".lay[3].cacheFile_path2\" -type \"string\" \"f.vdb\";"
                "setAttr \".fn\" -type \"string\" \"no.abc\"; setAttr \".imageFilePrefix\" -type \"string\" "
                "\"g\";"
                "setAttr \".renderFileName\" -type \"string\" \"h.exr\"; setAttr \".iconFileName\" -type "
                "\"string\" \"x.y\";"
                "createNode reference; setAttr \".ed\" -type \"dataReferenceEdits\" \"rRN\" \"rRN\" 1 2 "
                "\"r:f\" "
                "\"fileTextureName\" \" -type \\\"string\\\" \\\"g.tx\\\"\" 2 \"r:f\" \"notes\" \" -type "
                "\\\"string\\\" \\\"k.tx\\\"\";"
                "createNode file; setAttr \".ftn\" -type \"string\" \"\xe4.png\";"}},
            "a.exr b.abc c.abc d.ass e.abc f.vdb g.tx k.tx no.abc h.exr \xc3\xa4.png",
            "a.ma a.exr b.abc c.abc d.ass e.abc f.vdb g.tx \xc3\xa4.png"},
        {"tiles and frames",
            {{"a.ma"_s,
                "createNode file; setAttr \".ftn\" -type \"string\" \"a.1001.png\"; createNode file;"
                "setAttr \".ftn\" -type \"string\" \"b.<uvtile>.png\"; createNode file;"
                "setAttr \".ftn\" -type \"string\" \"c.##.png\"; createNode file;"
                "setAttr \".ftn\" -type \"string\" \"d2.%03d.png\"; createNode file;"
                "setAttr \".ftn\" -type \"string\" \"e3.0007.mp4\"; setAttr \".ufe\" yes; createNode file;"
                "setAttr \".ftn\" -type \"string\" \"f.<f>1.png\"; createNode file;"
                "setAttr \".ftn\" -type \"string\" \"e4.0007.mp4\";"}},
            "a.1001.png a.1012.png a.0012.png b.u1_v2.png b.11.png c.1.png c.012.png d2.007.png d22.007.png "
            "e3.0007.mp4 e3.0009.mp4 e3.0009.mp5 e4.0007.mp4 e4.0008.mp4 f.21.png f.1.png f.2.png f.-31.png",
            "a.ma a.1001.png a.1012.png b.u1_v2.png c.012.png d2.007.png e3.0007.mp4 e3.0009.mp4 f.-31.png "
            "f.21.png "
            "e4.0007.mp4"},
        {"values of attributes",
            {{"a.ma"_s,
                 "file; createNode file; setAttr -av \".ftn\" \"a.png\"; createNode file;"
                 "setAttr -alteredValue -k on \".ftn\" -type \"string\" \"//b.png\"; createNode file;"
                 "setAttr \".ftn\" -type \"double3\" \"1\" \"2\"; createNode file;"
                 "setAttr \".ftn\" -type \"string\" \"@/p/s/a.png\"; createNode file;"
                 "setAttr \".ftn\" -type \"string\" \"c:d.png\"; createNode unheardOf;"
                 "setAttr \".cacheFilePath\" -type \"string\" \"x/gone.vdb\"; file \"e{2.ma\"; file \"r.ma\";"
                 "select -ne :defaultResolution; setAttr \".w\" 9;"},
                {"e{2.ma"_s, ""},
                {"r.ma"_s, "select -ne :defaultResolution; setAttr \".w\" 8; setAttr \".h\" 8;"}},
            "a.png b.png c:d.png", "a.ma a.png b.png e{2.ma r.ma", "@/p/s/c:d.png x/gone.vdb", "1-1 9x480"},
        {"sequences",
            {{"a.ma"_s,
                "createNode file; setAttr \".ftn\" \"a.1.png\"; setAttr \".ufe\" yes; setAttr \".cs\" "
                "\"sRGB\";"
                "createNode file; setAttr \".useFrameExtension\" 1; setAttr \".ftn\" \"b.1.png\";"
                "createNode file; setAttr \".ufe\" yes; setAttr \".ufe\" no; setAttr \".ftn\" \"c.1.png\";"
                "createNode file; setAttr \".ftn\" \"d.1.png\";"}},
            "a.1.png a.2.png b.1.png b.2.png c.1.png c.2.png d.1.png d.2.png",
            "a.ma a.1.png a.2.png b.1.png b.2.png c.1.png d.1.png"},
        {"a hidden scene in a project", {{".h/a.ma"_s, "createNode file; setAttr \".ftn\" \"b.png\";"}},
            "workspace.mel b.png", ".h/a.ma b.png"},
        {"endless statements",
            {{"a.ma"_s,
                "setAttr \".ed\" -type \"dataReferenceEdits\"" + QByteArray(" x").repeated(300)
                    + " 2 \"r:f\" \"fileTextureName\" \" -type \\\"string\\\" \\\"z.tx\\\"\"; file"
                    + QByteArray(" x").repeated(300) + " \"y.ma\";"}},
            "y.ma z.tx", "a.ma z.tx", "x"},
        {"hidden and linked",
            {{"a.ma"_s,
                "createNode file; setAttr \".ftn\" -type \"string\" \".ssh/id\";"
                "setAttr \".ftn\" -type \"string\" \"../../k\";"}},
            ".ssh/id ../../k", "a.ma .ssh/id external@/k", "outside:@/p/s/.ssh/id outside:@/k"},
        {"binary scene", {{"a.mb"_s, "file \"x.ma\";"}}, "x.ma", "a.mb"},
        {"a report", {{"a.blend"_s, ""}},
            "t/a.png ../../b.png s_1.png s_2.png u.1001.png u.1002.png 1001.png 1002.png fluid/x/1.vdb",
            "^/p/s/a.blend ^/p/s/t/a.png ^/b.png ^/p/s/s_1.png ^/p/s/s_2.png ^/p/s/u.1001.png "
            "^/p/s/u.1002.png "
            "^/p/s/1001.png ^/p/s/fluid/x/1.vdb",
            "//gone.png c:/no.png outside:@/b.png", "3-8/2 64x48",
            "{'files': [{'path': '@/p/s/t/a.png'}, {'path': '@/p/s/../../b.png'}, "
            "{'path': '@/p/s/s_1.png', 'pattern': 'sequence'}, {'path': '@/p/s/u.<UDIM>.png', 'pattern': "
            "'tiles'}, "
            "{'path': '@/p/s/1001.png'}, {'name': '//gone.png', 'path': '@/p/s/gone.png'}, {'path': "
            "'c:/no.png'}], "
            "'folders': ['@/p/s/fluid', 'p'], 'first_frame': 3, 'last_frame': 8, 'frame_step': 2, "
            "'width': 64, 'height': 48, 'engine': 'CYCLES'}"},
        {"a mad report", {{"a.blend"_s, ""}}, "", "^/p/s/a.blend",
            " The scene is made for the engine Eevee; the farm will render it with Cycles if you go on.",
            "1-1 640x480",

            "{'files': [7, {}], 'folders': [[]], 'first_frame': 'x', 'last_frame': -1, 'frame_step': -2, "
            "'width': -5, 'height': 1e9, 'engine': 'BLENDER_EEVEE'}"},
        {"a report that repeats itself", {{"a.blend"_s, ""}}, "t/a.png t/b:c.png",
            "^/p/s/a.blend ^/p/s/t/a.png",
            "@/p/s/t/b:c.png gone.png The scene is made for the engine Workbench; the farm will render it "
            "with "
            "Cycles if you go on.",
            "1-1 640x480",
            "{'files': [{'path': '@/p/s/t/a.png'}, {'path': '@/p/s/t/a.png'}, {'path': '@/p/s/t/b:c.png'}, "
            "{'path': 'gone.png'}, {'path': 'gone.png'}], 'folders': ['@/p/s/t'], 'first_frame': 1, "
            "'engine': 'BLENDER_WORKBENCH'}"},
        {"another engine", {{"a.blend"_s, ""}}, "", "^/p/s/a.blend",
            " The scene is made for the engine LUX; the farm will render it with Cycles if you go on.",
            "1-1 640x480", "{'engine': 'LUX', 'files': [{}]}"},
        {"frames that the farm cannot have", {{"a.blend"_s, ""}}, "", "^/p/s/a.blend",
            "The scene has the frames 1 to 1048580; the farm will render only 1 to 20000 if you go on. "
            "The scene's first frame is -5; the farm will render it as frame 1, and so on, if you go on.",
            "1-20000 640x480", "{'first_frame': -5, 'last_frame': 2e9}"},
    };
    return rows;
}

/// A value in the arguments of a job, and whether it may be there.
const auto& ArgumentCases()
{
    static const std::tuple<const char*, const char*, QVariant, bool> rows[] = {
        {"one frame", "endFrame_0", 1, true},
        {"as many frames as a job may have", "endFrame_0", 20000, true},
        {"smallest width", "width", "1"_s, true},
        {"largest width", "width", "16384"_s, true},
        {"too wide", "width", "16385"_s, false},
        {"no number", "height", "x"_s, false},
        {"backwards", "endFrame_0", 0, false},
        {"from zero", "startFrame_0", 0, false},
        {"too many frames", "endFrame_0", 20001, false},
        {"the scene's own width", "width", QString(), true},
        {"no width", "width", "0"_s, false},
        {"not a height", "height", "4e9"_s, false},
    };
    return rows;
}

} // namespace

class SubmitAnalysisTest : public QObject
{
    Q_OBJECT

private:
    QString Write(const QString& name, QByteArray content = {})
    {
        const QString path = QDir::cleanPath(m_folder->filePath("p/s/"_s + name));
        QDir().mkpath(QFileInfo(path).path());
        WriteFile(path, content.replace("@", m_folder->path().toUtf8()));
        return path;
    }

    std::unique_ptr<QTemporaryDir> m_folder;

private slots:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void Analyses_data() { AddRows(SceneCases()); }

    void Analyses()
    {
        const SceneCase& row = Row(SceneCases());
        const QStringList names = QString::fromUtf8(row.others).split(QLatin1Char(' '), Qt::SkipEmptyParts);
        for (const QString& name : names)
            Write(name);
        for (const auto& [name, text] : row.texts)
            Write(name, text);
        const auto& [scene, content] = row.texts.at(0);
        const auto expected = [this](const char* text) {
            return QString::fromUtf8(text)
                .replace(QLatin1Char('@'), m_folder->path())
                .replace(QLatin1Char('^'), m_folder->path().mid(1));
        };
        const QString path = Write(scene, content);
        const SceneAnalysis analysis = row.report == nullptr
            ? AnalyseScene(path)
            : AnalyseBlenderScene(
                path, expected(row.report).replace(QLatin1Char('\''), QLatin1Char('"')).toUtf8(), {});
        QStringList found;
        for (const SceneFile& file : analysis.files) {
            found.append(file.path);
            QVERIFY(QFileInfo(file.source).isFile());
        }
        QCOMPARE(analysis.error.Text(), QString());
        QCOMPARE(analysis.scene, found.constFirst());
        QCOMPARE(found.join(QLatin1Char(' ')), expected(row.files));
        QStringList asked = analysis.missing;
        for (const QString& file : analysis.absolute)
            asked.append(file + " (use a path relative to the scene)"_s);
        for (const QString& file : analysis.outside)
            asked.append("outside:"_s + file);
        asked += TaskMessage::Texts(analysis.remarks);
        QCOMPARE(asked.join(QLatin1Char(' ')), expected(row.missing));
        const int numbers[] = {analysis.firstFrame, analysis.lastFrame, analysis.width, analysis.height};
        const QString step = analysis.frameStep > 1 ? "/%1"_s.arg(analysis.frameStep) : QString();
        QCOMPARE("%1-%2%5 %3x%4"_s.arg(numbers[0]).arg(numbers[1]).arg(numbers[2]).arg(numbers[3]).arg(step),
            expected(row.job));
    }

    void ReportsThatCannotBeUsedSayWhy()
    {
        const auto error = [this](const char* report) {
            return AnalyseBlenderScene(Write("a.blend"_s), report, {}).error.Text();
        };
        QVERIFY(error("").startsWith("Blender could not read the scene"_s));
        QCOMPARE(error("{"), error(""));
        QCOMPARE(error("{\"error\": \"no such file\"}"), error("") + "\nno such file"_s);
    }

    void TellsFileNamesFromOtherValues()
    {
        for (const char* name : {"a.b", "a/b.1x", "a.x1", "a.abcdefgh", "a b.c.png"})
            QVERIFY2(MayaAttributes::IsFileName(QLatin1String(name)), name);
        for (const char* value :
            {"", "a", ".png", "a.", "a.12", "a.abcdefghi", "a.p-g", "a.-g", "<MAYA_X>/a.png"})
            QVERIFY2(!MayaAttributes::IsFileName(QLatin1String(value)), value);
    }

    /// No scene keeps the client from quitting.
    void EndsWhereverItIsToldTo()
    {
        QByteArray text = "createNode file;";
        for (int token = 0; token < 20; ++token)
            text += "setAttr \".ftn\" -type \"string\" \"" + QByteArray("<u>").repeated(60 + token)
                + ".png\";";
        Write("1"_s + "23"_s.repeated(90) + ".pn"_s);
        const QString scene = Write("a.ma"_s, text);
        int calls = 0;
        QVERIFY(AnalyseScene(scene, [&calls](qint64) { return ++calls > 0; }).missing.size() == 20);
        const int all = std::exchange(calls, 0);
        QVERIFY(all > 40);
        AnalyseScene(scene, [&calls](qint64) { return ++calls < 3; });
        QVERIFY2(calls < all, qPrintable(QString::number(calls)));
        QByteArray many;
        for (int file = 0; file < 2 * MostSceneFiles; ++file)
            many += "png \"" + QByteArray::number(file) + ".png\" ";
        const SceneAnalysis lacking = AnalyseScene(Write("many.pov"_s, many));
        QCOMPARE(lacking.missing.size(), MostSceneFiles + 1);
        QCOMPARE(lacking.error.Text(), TooManyFiles().Text());
        for (int file = 0; file < MostSceneFiles + 9; ++file)
            Write("%1.png"_s.arg(file));
        const QString sequence = Write("b.ma"_s, "createNode file; setAttr \".ftn\" \"#.png\";");
        QCOMPARE(AnalyseScene(sequence).files.size(), MostSceneFiles + 1);
        QCOMPARE(AnalyseScene(Write("many.pov"_s, many)).error.Text(), TooManyFiles().Text());
    }

    void PacksReproducibly()
    {
        const QByteArray content(300'000, 'x');
        const QString archive = m_folder->filePath("x.zip"_s);
        const auto all = [](auto) { return true; };
        QByteArray archives[3];
        for (QByteArray& bytes : archives) {
            const bool isLast = &bytes == &archives[2];
            QVector<PackageEntry> entries {
                {Write("x.txt"_s, content), "ä/x.txt"_s, {}}, {Write("y"_s), "y"_s, {}}};
            QVERIFY(PackFiles(entries, archive, isLast ? Compression::None : Compression::WhereItHelps, all));
            QCOMPARE(entries.at(0).checksum.toLatin1(),
                QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex());
            bytes = ReadFile(archive);
            QVERIFY(QFile::remove(archive));
        }
        QCOMPARE(archives[0], archives[1]);
        QVERIFY(archives[0].size() < 3000);
        QVERIFY(archives[2].contains(content));
        QVector<PackageEntry> stored {{Write("z"_s), "z"_s, {}}};
        QVERIFY(!PackFiles(stored, archive, Compression::None, [](qint64) { return false; }));
        QVERIFY(QDir(m_folder->path()).entryList({"x.zip*"_s}, QDir::AllEntries | QDir::Hidden).isEmpty());
    }

    void TakesOnlyWhatAJobMayHave_data() { AddRows(ArgumentCases()); }

    void TakesOnlyWhatAJobMayHave()
    {
        const auto& [name, key, value, isGood] = Row(ArgumentCases());
        QVariantMap range = MakeArguments(1, 9, 640, 480).constFirst().toMap();
        QVERIFY(!AreArguments({}) && !AreArguments({range, range}));
        range.insert(QLatin1String(key), value);
        QCOMPARE(AreArguments({range}), isGood);
    }

    void RefusesScenesThatCannotBeSent()
    {
        QDir().mkpath(m_folder->filePath("d.pov"_s));
        const auto why = [](const QString& scene) {
            return WhyNotAnalysed(scene).Text().section(QLatin1Char(' '), 0, 3);
        };
        QCOMPARE(why(Write("a.pov"_s)), QString());
        for (const QString& scene :
            {Write("a.txt"_s), m_folder->filePath("d.pov"_s), m_folder->filePath("no.pov"_s)})
            QCOMPARE(why(scene), "The scene file cannot"_s);
        QCOMPARE(why(Write("a:b.pov"_s)), "The name of the"_s);
        const QString below = Write("a:b/c.blend"_s);
        QVERIFY(AnalyseBlenderScene(below, "{}", {}).error.Text().startsWith("The name of the scene"_s));
        QCOMPARE(AnalyseScene(Write("d/a.pov"_s)).error.Text(), QString());
        QVERIFY(!AnalyseMayaScene("/nowhere/a.ma"_s, {}).error.IsEmpty());
        QVERIFY(!AnalysePovRayScene("/nowhere/a.pov"_s, {}).error.IsEmpty());
        // A reference that climbs to the root of all folders leaves none to send the scene in.
        const int depth = QFileInfo(RealScenePath(below)).path().count(QLatin1Char('/'));
        const QString climb = "../"_s.repeated(depth - 1) + "etc/passwd"_s;
        const SceneAnalysis climbing = AnalyseScene(Write("a.pov"_s, "png \"" + climb.toUtf8() + '"'));
        QCOMPARE(climbing.missing, QStringList {climb});
        QByteArray many;
        for (int file = 0; file < MostSceneFiles + 2; ++file)
            many += "createNode file; setAttr \".ftn\" \"" + QByteArray::number(file) + "\";";
        QCOMPARE(AnalyseScene(Write("a.ma"_s, many)).error.Text(), TooManyFiles().Text());
    }
};

QTEST_GUILESS_MAIN(SubmitAnalysisTest)
#include "tst_submit_analysis.moc"
