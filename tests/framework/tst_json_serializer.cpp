#include "tests/support/test_tables.h"

#include <qjson/serializer.h>

#include <cmath>
#include <limits>

namespace {

const QVariant Object = QVariant::fromValue<QObject*>(nullptr);
// A value and its text, which is empty when the value is refused.
const auto& Values()
{
    static const std::tuple<const char*, QVariant, QByteArray> rows[] = {
        {"invalid", {}, "null"},
        {"64 bits", std::numeric_limits<qlonglong>::min(), "-9223372036854775808"},
        {"unsigned 64 bits", std::numeric_limits<qulonglong>::max(), "18446744073709551615"},
        {"string", "a \"b\"\\\né"_s, "\"a \\\"b\\\"\\\\\\né\""},
        {"strings", QStringList {"key"_s, QString()}, "[\"key\",\"\"]"},
        {"members sorted", QVariantHash {{"b"_s, 1}, {"a\""_s, 2}, {"c"_s, 3}},
            "{\"a\\\"\":2,\"b\":1,\"c\":3}"},
        {"map in a hash", QVariantHash {{"k"_s, QVariantMap {{"k"_s, 1}}}}, "{\"k\":{\"k\":1}}"},
        {"object deep down", QVariantMap {{"k"_s, QVariantHash {{"k"_s, Object}}}}, {}},
        {"not a number", std::nan(""), {}},
    };
    return rows;
}

} // namespace

class TestJsonSerializer : public QObject
{
    Q_OBJECT

private slots:
    void WritesOrRefuses_data() { AddRows(Values()); }
    void WritesOrRefuses()
    {
        const auto& [name, value, text] = Row(Values());
        bool ok = text.isEmpty();
        QCOMPARE(QJson::Serializer().serialize(value, &ok), text);
        QCOMPARE(ok, !text.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestJsonSerializer)
#include "tst_json_serializer.moc"
