#include "framework/ctk/plugin_manifest.h"
#include "tests/support/test_tables.h"

#include <ctkPluginException.h>

class TestPluginManifest : public QObject
{
    Q_OBJECT

private slots:
    void ReadsHeaders()
    {
        const QByteArray name("Plugin-SymbolicName: a.b\n");
        const QPair<QByteArray, QString> vendors[] = {{name, {}}, {"Plugin-SymbolicName: a.b\r\n", {}},
            {"Plugin-SymbolicName:a.b", {}}, {"Plugin-SymbolicName: a.b ;c\n", {}},
            {"Plugin-SymbolicName: a\r\n .\r\n b\r\n", {}}, {name + "Plugin-Vendor: x:y \n", "x:y"_s},
            {name + "Plugin-Vendor: Caf\xC3\n \xA9\n", "Café"_s}, {name + "\r\nPlugin-Vendor: x\r\n?", {}}};
        for (const auto& [text, vendor] : vendors) {
            const ManifestHeaders headers = ParseManifest(text);
            QCOMPARE(SymbolicName(headers), "a.b"_s);
            QCOMPARE(headers.value("Plugin-Vendor"_s), vendor);
        }
    }

    void RefusesMalformedManifests()
    {
        for (const QByteArray& text : {QByteArray(), QByteArray("Plugin-Version: 1.0.0\n"),
                 QByteArray("Plugin-SymbolicName: \r\n"), QByteArray("Plugin-SymbolicName: a.b\nrubbish\n"),
                 QByteArray("Plugin-SymbolicName: a.b\n: x\n"), QByteArray(" Plugin-SymbolicName: a.b\n"),
                 QByteArray("\x7f\x45\x4c\x46\x00\xff", 6)}) {
            try {
                ParseManifest(text);
                QFAIL(text);
            } catch (const ctkPluginException& exception) {
                QCOMPARE(exception.getType(), ctkPluginException::MANIFEST_ERROR);
            }
        }
    }

    void FindsTheFolderOfALibrary()
    {
        for (const char* file : {"/opt/a.b/libcom_vtr_qsclient.so", "libcom_vtr_qsclient.so.1.0",
                 "C:/client/com_vtr_qsclient.dll"})
            QCOMPARE(ResourceFolder(QLatin1String(file)), "com.vtr.qsclient"_s);
        QCOMPARE(ResourceFolder("liblib_x.so"_s), "lib.x"_s);
    }
};

QTEST_GUILESS_MAIN(TestPluginManifest)
#include "tst_plugin_manifest.moc"
