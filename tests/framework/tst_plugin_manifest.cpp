#include "framework/ctk/plugin_manifest.h"
#include "tests/support/test_tables.h"

#include <ctkPluginException.h>

namespace {

struct Header
{
    const char* name;
    QByteArray text;
    QString header;
    QString value;
};
const QString symbolicName = "Plugin-SymbolicName"_s;
const QString vendor = "Plugin-Vendor"_s;
const Header headers[] = {
    {"LF", "Plugin-SymbolicName: a.b\n", symbolicName, "a.b"_s},
    {"CRLF", "Plugin-SymbolicName: a.b\r\n", symbolicName, "a.b"_s},
    {"no end of line", "Plugin-SymbolicName:a.b", symbolicName, "a.b"_s},
    {"directive", "Plugin-SymbolicName: a.b ;c", symbolicName, "a.b ;c"_s},
    {"folded", "Plugin-SymbolicName: a\r\n .\r\n b\r\n", symbolicName, "a.b"_s},
    {"folded inside of a character", "Plugin-SymbolicName: a.b\nPlugin-Vendor: Caf\xC3\n \xA9\n", vendor,
        "Café"_s},
    {"colon in the value", "Plugin-SymbolicName: a.b\nPlugin-Vendor: x:y\n", vendor, "x:y"_s},
    {"later sections left out", "Plugin-SymbolicName: a.b\r\n\r\nPlugin-Vendor: x\r\n?", vendor, {}},
};

struct Refusal
{
    const char* name;
    QByteArray text;
};
const Refusal refusals[] = {
    {"empty", {}},
    {"no symbolic name", "Plugin-Version: 1.0.0\n"},
    {"empty symbolic name", "Plugin-SymbolicName: \r\n"},
    {"no colon", "Plugin-SymbolicName: a.b\nrubbish\n"},
    {"no header name", "Plugin-SymbolicName: a.b\n: x\n"},
    {"continues nothing", " Plugin-SymbolicName: a.b\n"},
    {"binary", {"\x7f\x45\x4c\x46\x00\xff", 6}},
};

} // namespace

class TestPluginManifest : public QObject
{
    Q_OBJECT

private slots:
    void readsHeaders_data() { AddRows(headers); }
    void readsHeaders()
    {
        const ManifestHeaders parsed = ParseManifest(Row(headers).text);
        QCOMPARE(parsed.value(Row(headers).header), Row(headers).value);
        QCOMPARE(SymbolicName(parsed), "a.b"_s);
    }

    void refuses_data() { AddRows(refusals); }
    void refuses()
    {
        try {
            ParseManifest(Row(refusals).text);
            QFAIL("accepted");
        } catch (const ctkPluginException& exception) {
            QCOMPARE(exception.getType(), ctkPluginException::MANIFEST_ERROR);
        }
    }

    void findsTheFolderOfALibrary()
    {
        for (const char* file : {"/opt/a.b/libcom_vtr_qsclient.so", "libcom_vtr_qsclient.so.1.0",
                 "C:/client/com_vtr_qsclient.dll"})
            QCOMPARE(ResourceFolder(QLatin1String(file)), "com.vtr.qsclient"_s);
        QCOMPARE(ResourceFolder("liblib_x.so"_s), "lib.x"_s);
    }
};

QTEST_GUILESS_MAIN(TestPluginManifest)
#include "tst_plugin_manifest.moc"
