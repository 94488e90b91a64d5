// The readers of scene texts, and the patterns of file names in them.
#include "host/rendercore/submit/file_pattern.h"
#include "host/rendercore/submit/maya_statements.h"
#include "host/rendercore/submit/povray_lexer.h"
#include "tests/support/test_tables.h"

namespace {

/// A name, a text, and what is found in it.
using TextCase = std::tuple<const char*, QByteArray, const char*>;

/// Includes begin with "i:", other files with "d:".
const auto& PovRayCases()
{
    static const TextCase rows[] = {
        {"words that end like a type",
            R"(apng "1" zpng "2" Apng "3" Zpng "4" _png "5" a0png "6" a9png "7" png "8")", "d:8"},
        {"blanks", "#\tinclude \"a\" # \r include\n\"b\" png\t\"c\"", "i:a i:b d:c"},
        {"symbols in between", R"(png , "1" png } "2" png < "3" png 4 "4" #include ( "5")", ""},
        {"numbers", "box{1}png \"a\" 2\"b\" <3>#include \"c\" -4//png \"d\"\n5 6/*png*/png \"e\"",
            "d:a i:c d:e"},
        {"blocks without a type",
            R"(image_map { "a" } height_field{"b" smooth} box { "no" } image_map "no" image_map { { "no")",
            "d:a d:b"},
        {"escapes", R"(png "a\"b" png "c\\" png "d" png "" png "\"")", R"(d:a"b d:c\ d:d d:")"},
        {"comments of a line", "// png \"1\"\rpng \"a\" // \"\npng // png \"2\"\n\"b\"", "d:a d:b"},
        {"comments of a block",
            "/* /*/ png \"1\" */ */ png /**/ \"a\" /*/ png \"2\" */ png \"b\" /***/ ttf\"c\"", "d:a d:b d:c"},
        {"slashes that begin no comment", "a / / png \"a\" / * png \"b\" */ png \"c\"", "d:a d:b d:c"},
        {"comment marks in texts", "png \"//a\" png \"/*b\" png \"c*/\"", "d://a d:/*b d:c*/"},
        {"files that are opened",
            "#fopen A \"a\" read #fopen B \"b\" append #fopen C \"c\" write #declare read = 1;\n"
            "#declare read=2; read #fopen D \"d\" /* to */ read",
            "d:a d:d"},
        {"a name that is too long", "png \"" + QByteArray(5000, 'x') + "\" png \"a\"", "d:a"},
        {"texts that name nothing", R"(#debug "a" #include "b" "c" png "d" "e")", "i:b d:d"},
    };
    return rows;
}

/// The words of a statement are joined by "|", statements by a blank.
const auto& MayaCases()
{
    static const TextCase rows[] = {
        {"words", "setAttr\t-k on\r\n\".a\"  \"\";;\n ;select -ne :x;\"b c\";",
            "setAttr|-k|on|.a| select|-ne|:x b c"},
        {"the last statement has to end", "a b; c d", "a|b"},
        {"escapes", R"(a "b\"c\\" "\\";"d\ne";)", R"(a|b"c\|\ dne)"},
        {"slashes", "a/b c/ /d / e;", "a/b|c/|/d|/|e"},
        {"comments", "// a; \"\nb//c; \"\nd; /// e\nf //\n\"//g\"; h // i", "b|d f|//g"},
        {"words of a long statement", "f" + QByteArray(" x").repeated(255) + " y; \"z\";",
            "f"
            "+255 z"},
        {"nothing in the rest of a long statement counts",
            "f" + QByteArray(" x").repeated(255) + " y // ; \"\n \"; \\\" ;\" \"\" a/b ;g h;", "f+255 g|h"},
        {"edits are kept whole",
            "setAttr \".ed\" -type \"dataReferenceEdits\"" + QByteArray(" x").repeated(300) + ";f"
                + QByteArray(" x").repeated(300) + ';',
            "setAttr+303 f+255"},
        {"other words do not make it longer", "a b c d" + QByteArray(" x").repeated(300) + ';', "a+255"},
        {"a long word", "f " + QByteArray(20000, 'x') + " y; g;", "f+1 g"},
    };
    return rows;
}

struct PatternCase
{
    const char* pattern;
    const char* prefix;  ///< null where the name has no tokens
    const char* matches; ///< separated by blanks
    const char* others;
};

const PatternCase Patterns[] = {
    {"a1.png", nullptr, "a1.png", "a2.png a01.png a1.pngx a a1 a-1.png"},
    {"a.<UDIM>.png", "a.", "a.1001.png a.1234.png a.1999.png",
        "a.1000.png a.2000.png a.01500.png a.1.png a.x.png"},
    {"a.1001.png", "a.", "a.1001.png a.1002.png", "a.11001.png"},
    {"a.<tile>5.png", "a.", "a.10015.png a.12345.png", "a.1005.png a.10016.png"},
    {"a1<udim>.png", "a", "a12345.png", "a1001.png a21001.png"},
    {"#<udim>", "", "12345", "1001"},
    {"<udim>#", "", "12345", "1001"},
    {"a1001#.png", "a", "a10015.png", "a1002.png a1001.png"},
    {"<uvtile>.png", "u", "u1_v2.png u10_v2.png", "u1_v.png u1v2.png"},
    {"<U>_<V>x", "", "1_2x", "1_x _2x"},
    {"a##.png", "a", "a01.png a012.png a-12.png", "a1.png a.png a--12.png"},
    {"a#", "a", "a1", "a a1b b1"},
    {"a#1.png", "a", "a21.png", "a22.png a1.png"},
    {"a2#.png", "a", "a21.png", "a12.png a2.png"},
    {"a#1#.png", "a", "a213.png a34.png", "a2.png"},
    {"%03d", "", "007 1234", "07"},
    {"a%d.png", "a", "a7.png", "a.png"},
    {"a%4", nullptr, "a%4", "a1234"},
    {"100%", nullptr, "100%", "100"},
    {"a%4x.png", nullptr, "a%4x.png", "a1234.png"},
    {"a<f>b<f3>c", "a", "a1b001c", "a1b01c ab001c"},
    {"<frame>", "", "1", "x"},
    {"<foo>1 <f2x> <f", nullptr, "<foo>1 <f2x> <f", "11 1 1"},
    {"<ffffffffffffffffffffff>", nullptr, "<ffffffffffffffffffffff>", "1"},
};

/// The same names, when the last number counts the frames of a sequence.
const PatternCase Sequences[] = {
    {"a1.png", "a", "a1.png a22.png", "b1.png a.png"},
    {"7.png", "", "8.png 12.png", "7.jpg"},
    {"a1b2.mp3", "a1b", "a1b3.mp3 a1b44.mp3", "a2b2.mp3 a1b2.mp4"},
    {"frame7", "frame", "frame8", "frame"},
    {".7", nullptr, ".7", ".8"},
    {"a.png", nullptr, "a.png", "a1.png"},
    {"a.####.png", "a.", "a.0001.png", "a.1.png"},
};

/// Feeds a text in blocks.
template <typename Reader>
void Feed(Reader& reader, const QByteArray& text, int block)
{
    for (int from = 0; from < text.size(); from += block)
        reader.Feed(text.mid(from, block));
}

QString FilesOf(const QByteArray& text, int block)
{
    QStringList found;
    PovRayLexer lexer([&found](PovRayLexer::Kind kind, const QString& reference) {
        found.append((kind == PovRayLexer::Kind::Include ? "i:"_s : "d:"_s) + reference);
    });
    Feed(lexer, text + '\n', block);
    return found.join(QLatin1Char(' '));
}

/// Of a long statement, the first word and the number of those that follow.
QString StatementsOf(const QByteArray& text, int block)
{
    QStringList found;
    MayaStatements statements([&found](const MayaWords& words) {
        QStringList some {words.Text(0)};
        const bool isLong = words.Count() > 100 || words.Last().size() > 100;
        for (int index = 1; !isLong && index < words.Count(); ++index)
            some.append(words.Text(index));
        const QString others = isLong ? "+%1"_s.arg(words.Count() - 1) : QString();
        found.append(some.join(QLatin1Char('|')) + others);
    });
    Feed(statements, text, block);
    return found.join(QLatin1Char(' '));
}

void CheckPattern(const PatternCase& row, bool isSequence)
{
    const FilePattern pattern(QString::fromLatin1(row.pattern), isSequence);
    QCOMPARE(pattern.HasTokens(), row.prefix != nullptr);
    QVERIFY(row.prefix == nullptr || pattern.Prefix() == QLatin1String(row.prefix));
    const bool isOneName = row.prefix == nullptr; // it may have blanks
    const QString given = QString::fromLatin1(row.matches);
    const QStringList matches = isOneName ? QStringList {given} : given.split(QLatin1Char(' '));
    for (const QString& name : matches)
        QVERIFY2(pattern.Matches(name), qPrintable(name));
    const QStringList others = QString::fromLatin1(row.others).split(QLatin1Char(' '));
    for (const QString& name : others)
        QVERIFY2(!pattern.Matches(name), qPrintable(name));
}

} // namespace

class SceneTextsTest : public QObject
{
    Q_OBJECT

private:
    /// Wherever a block of the text ends, the same is found.
    template <typename Find>
    static void CheckInBlocks(const TextCase& row, Find find)
    {
        const auto& [name, text, found] = row;
        for (const int block : {int(text.size()) + 1, 1, 7})
            QCOMPARE(find(text, block), QString::fromUtf8(found));
    }

private slots:
    void FindsTheFilesOfPovRayTexts_data() { AddRows(PovRayCases()); }
    void FindsTheFilesOfPovRayTexts() { CheckInBlocks(Row(PovRayCases()), FilesOf); }

    void SplitsMayaTexts_data() { AddRows(MayaCases()); }
    void SplitsMayaTexts() { CheckInBlocks(Row(MayaCases()), StatementsOf); }

    void MatchesNames_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<bool>("isSequence");
        int row = 0;
        for (const PatternCase& pattern : Patterns)
            QTest::newRow(pattern.pattern) << row++ << false;
        row = 0;
        for (const PatternCase& pattern : Sequences)
            QTest::addRow("sequence %s", pattern.pattern) << row++ << true;
    }

    void MatchesNames()
    {
        QFETCH(int, row);
        QFETCH(bool, isSequence);
        CheckPattern(isSequence ? Sequences[row] : Patterns[row], isSequence);
    }

    void LongNamesAreNoPatterns()
    {
        const QString name(300, QLatin1Char('#'));
        QVERIFY(!FilePattern(name).HasTokens());
        QVERIFY(FilePattern(name).Matches(name));
    }
};

QTEST_GUILESS_MAIN(SceneTextsTest)
#include "tst_scene_texts.moc"
