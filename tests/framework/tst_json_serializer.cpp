#include "tests/support/test_tables.h"

#include <qjson/serializer.h>

#include <QBuffer>

#include <cmath>
#include <limits>

namespace {

const QVariant Object = QVariant::fromValue<QObject*>(nullptr);
// A value and its text, which is empty when the value is refused.
const std::tuple<const char*, QVariant, QByteArray> Values[] = {
    {"invalid", {}, "null"},
    {"bool", true, "true"},
    {"64 bits", std::numeric_limits<qlonglong>::min(), "-9223372036854775808"},
    {"unsigned 64 bits", std::numeric_limits<qulonglong>::max(), "18446744073709551615"},
    {"string", "a \"b\"\\\né"_s, "\"a \\\"b\\\"\\\\\\né\""},
    {"null string", QString(), "\"\""},
    {"strings", QStringList {"key"_s, QString()}, "[\"key\",\"\"]"},
    {"list in a list", QVariantList {QVariant(QVariantList {1, QVariant()})}, "[[1,null]]"},
    {"members sorted", QVariantHash {{"b"_s, 1}, {"a\""_s, 2}, {"c"_s, 3}}, "{\"a\\\"\":2,\"b\":1,\"c\":3}"},
    {"map in a hash", QVariantHash {{"k"_s, QVariantMap {{"k"_s, 1}}}}, "{\"k\":{\"k\":1}}"},
    {"object", Object, {}},
    {"object deep down", QVariantMap {{"k"_s, QVariantHash {{"k"_s, Object}}}}, {}},
    {"not a number", std::nan(""), {}},
    {"infinite", QVariantList {std::numeric_limits<double>::infinity()}, {}},
};

} // namespace

class TestJsonSerializer : public QObject
{
    Q_OBJECT

private slots:
    void WritesOrRefuses_data() { AddRows(Values); }
    void WritesOrRefuses()
    {
        const auto& [name, value, text] = Row(Values);
        bool ok = text.isEmpty();
        QCOMPARE(QJson::Serializer().serialize(value, &ok), text);
        QCOMPARE(ok, !text.isEmpty());
        QCOMPARE(QJson::Serializer().serialize(value), text);
        QBuffer device;
        device.open(QIODevice::WriteOnly);
        QJson::Serializer().serialize(value, &device, &ok);
        QCOMPARE(ok, !text.isEmpty());
        QCOMPARE(device.data(), text);
        device.close();
        for (QIODevice* unusable : {static_cast<QIODevice*>(&device), static_cast<QIODevice*>(nullptr)}) {
            ok = true;
            QJson::Serializer().serialize(value, unusable, &ok);
            QVERIFY(!ok);
        }
    }
};

QTEST_GUILESS_MAIN(TestJsonSerializer)
#include "tst_json_serializer.moc"
