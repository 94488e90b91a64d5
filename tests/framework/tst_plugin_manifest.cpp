#include "plugin_manifest.h"

#include <ctkPluginException.h>

#include <QtTest>

class TestPluginManifest : public QObject
{
    Q_OBJECT

private slots:
    void readsHeaders_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("header");
        QTest::addColumn<QString>("value");
        const QString name = QStringLiteral("Plugin-SymbolicName");
        const QString vendor = QStringLiteral("Plugin-Vendor");
        const QString ours = QStringLiteral("a.b");
        const QString cafe = QString::fromUtf8("Caf\xC3\xA9");
        QTest::newRow("LF") << QByteArray("Plugin-SymbolicName: a.b\n") << name << ours;
        QTest::newRow("CRLF") << QByteArray("Plugin-SymbolicName: a.b\r\n") << name << ours;
        QTest::newRow("no end of line") << QByteArray("Plugin-SymbolicName:a.b") << name << ours;
        QTest::newRow("directive") << QByteArray("Plugin-SymbolicName: a.b ;c") << name
                                   << QStringLiteral("a.b ;c");
        QTest::newRow("folded") << QByteArray("Plugin-SymbolicName: a\r\n .\r\n b\r\n") << name << ours;
        QTest::newRow("folded inside of a character")
            << QByteArray("Plugin-SymbolicName: a.b\nPlugin-Vendor: Caf\xC3\n \xA9\n") << vendor << cafe;
        QTest::newRow("colon in the value") << QByteArray("Plugin-SymbolicName: a.b\nPlugin-Vendor: x:y\n")
                                            << vendor << QStringLiteral("x:y");
        QTest::newRow("later sections left out")
            << QByteArray("Plugin-SymbolicName: a.b\r\n\r\nPlugin-Vendor: x\r\n?") << vendor << QString();
    }

    void readsHeaders()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, header);
        QFETCH(QString, value);
        const ManifestHeaders headers = ParseManifest(text);
        QCOMPARE(headers.value(header), value);
        QCOMPARE(SymbolicName(headers), QStringLiteral("a.b"));
    }

    void refuses_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("no symbolic name") << QByteArray("Plugin-Version: 1.0.0\n");
        QTest::newRow("empty symbolic name") << QByteArray("Plugin-SymbolicName: \r\n");
        QTest::newRow("no colon") << QByteArray("Plugin-SymbolicName: a.b\nrubbish\n");
        QTest::newRow("no header name") << QByteArray("Plugin-SymbolicName: a.b\n: x\n");
        QTest::newRow("continues nothing") << QByteArray(" Plugin-SymbolicName: a.b\n");
        QTest::newRow("binary") << QByteArray("\x7f\x45\x4c\x46\x00\xff", 6);
    }

    void refuses()
    {
        QFETCH(QByteArray, text);
        try {
            ParseManifest(text);
            QFAIL("accepted");
        } catch (const ctkPluginException& exception) {
            QCOMPARE(exception.getType(), ctkPluginException::MANIFEST_ERROR);
        }
    }

    void findsTheFolderOfALibrary_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("folder");
        const QString ours = QStringLiteral("com.vtr.qsclient");
        QTest::newRow("Linux") << QStringLiteral("/opt/a.b/libcom_vtr_qsclient.so") << ours;
        QTest::newRow("versioned") << QStringLiteral("libcom_vtr_qsclient.so.1.0") << ours;
        QTest::newRow("Windows") << QStringLiteral("C:/client/com_vtr_qsclient.dll") << ours;
        QTest::newRow("prefix once only") << QStringLiteral("liblib_x.so") << QStringLiteral("lib.x");
    }

    void findsTheFolderOfALibrary()
    {
        QFETCH(QString, file);
        QTEST(ResourceFolder(file), "folder");
    }
};

QTEST_GUILESS_MAIN(TestPluginManifest)
#include "tst_plugin_manifest.moc"
