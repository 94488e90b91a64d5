#include <qjson/serializer.h>

#include <cmath>
#include <limits>
#include <QBuffer>
#include <QDate>
#include <QtTest>

class TestJsonSerializer : public QObject
{
    Q_OBJECT

private slots:
    void writes_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QByteArray>("text");
        const QString key = QStringLiteral("key");
        QTest::newRow("invalid") << QVariant() << QByteArray("null");
        QTest::newRow("bool") << QVariant(true) << QByteArray("true");
        QTest::newRow("int") << QVariant(-18) << QByteArray("-18");
        QTest::newRow("double") << QVariant(0.5) << QByteArray("0.5");
        QTest::newRow("64 bits") << QVariant(std::numeric_limits<qlonglong>::min())
                                 << QByteArray("-9223372036854775808");
        QTest::newRow("unsigned 64 bits")
            << QVariant(std::numeric_limits<qulonglong>::max()) << QByteArray("18446744073709551615");
        QTest::newRow("string") << QVariant(QStringLiteral("a \"b\"\\\n\u00e9"))
                                << QByteArray("\"a \\\"b\\\"\\\\\\n\xC3\xA9\"");
        QTest::newRow("null string") << QVariant(QString()) << QByteArray("\"\"");
        QTest::newRow("bytes") << QVariant(QByteArray("\xC3\xA9")) << QByteArray("\"\xC3\xA9\"");
        QTest::newRow("date") << QVariant(QDate(2020, 2, 29)) << QByteArray("\"2020-02-29\"");
        QTest::newRow("strings") << QVariant(QStringList {key, QString()}) << QByteArray("[\"key\",\"\"]");
        QTest::newRow("empty list") << QVariant(QVariantList()) << QByteArray("[]");
        QTest::newRow("list in a list")
            << QVariant(QVariantList {QVariant(QVariantList {1, QVariant()})}) << QByteArray("[[1,null]]");
        QTest::newRow("empty map") << QVariant(QVariantMap()) << QByteArray("{}");
        QTest::newRow("members sorted") << QVariant(
            QVariantHash {{QStringLiteral("b"), 1}, {QStringLiteral("a\""), 2}, {QStringLiteral("c"), 3}})
                                        << QByteArray("{\"a\\\"\":2,\"b\":1,\"c\":3}");
        QTest::newRow("map in a hash")
            << QVariant(QVariantHash {{key, QVariantMap {{key, 1}}}}) << QByteArray("{\"key\":{\"key\":1}}");
    }

    void writes()
    {
        QFETCH(QVariant, value);
        QFETCH(QByteArray, text);
        bool ok = false;
        QCOMPARE(QJson::Serializer().serialize(value, &ok), text);
        QVERIFY(ok);
        QCOMPARE(QJson::Serializer().serialize(value), text);
    }

    void refuses_data()
    {
        QTest::addColumn<QVariant>("value");
        const QVariant object = QVariant::fromValue<QObject*>(this);
        const QString key = QStringLiteral("key");
        QTest::newRow("object") << object;
        QTest::newRow("object among others") << QVariant(QVariantList {1, object, 2});
        QTest::newRow("object deep down") << QVariant(QVariantMap {{key, QVariantHash {{key, object}}}});
        QTest::newRow("not a number") << QVariant(std::nan(""));
        QTest::newRow("infinite") << QVariant(QVariantList {std::numeric_limits<double>::infinity()});
    }

    void refuses()
    {
        QFETCH(QVariant, value);
        bool ok = true;
        QCOMPARE(QJson::Serializer().serialize(value, &ok), QByteArray());
        QVERIFY(!ok);

        ok = true;
        QBuffer device;
        QVERIFY(device.open(QIODevice::WriteOnly));
        QJson::Serializer().serialize(value, &device, &ok);
        QVERIFY(!ok);
        QVERIFY(device.data().isEmpty());
    }

    void writesToADevice()
    {
        QBuffer device;
        bool ok = true;
        QJson::Serializer().serialize(1, &device, &ok);
        QVERIFY2(!ok, "the device is closed");
        QJson::Serializer().serialize(1, static_cast<QIODevice*>(nullptr), &ok);
        QVERIFY(!ok);

        QVERIFY(device.open(QIODevice::WriteOnly));
        QJson::Serializer().serialize(QVariantList {1, 2}, &device, &ok);
        QVERIFY(ok);
        QCOMPARE(device.data(), QByteArray("[1,2]"));
    }
};

QTEST_GUILESS_MAIN(TestJsonSerializer)
#include "tst_json_serializer.moc"
