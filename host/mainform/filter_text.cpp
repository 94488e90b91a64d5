#include "host/mainform/filter_text.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

/// A condition, and where the search form shows it.
struct Field
{
    const char* key;
    const char* caption;
    const char* choices; ///< combo box; null for a text that the user types
};

constexpr Field fields[] = {
    {"job_increasement", "lblJobID", nullptr},
    {"job_name", "lblJobName", nullptr},
    {"job_type", "lblJobType", "cmbJobType"},
    {"status", "lblJobStatus", "cmbJobStatus"},
    {"pool_id", "lblProjectName", "cmbProjectName"},
    {"job_business_type", "lblBusinessType", "cmbBusinessType"},
};

/// For each range of times, its two conditions and the check box that turns it on.
constexpr const char* ranges[][3] = {
    {"start_min_time", "start_max_time", "checkBox_startTimeRange"},
    {"end_min_time", "end_max_time", "checkBox_endTimeRange"},
};

QString Translated(const char* text)
{
    return QCoreApplication::translate("FilterText", text);
}

QString Caption(const QWidget* form, const char* name)
{
    const auto* widget = form ? form->findChild<QWidget*>(QLatin1String(name)) : nullptr;
    return widget ? widget->property("text").toString() : QString();
}

/// @return the form's text for a value; the value itself where no combo box has it.
QString Shown(const QWidget* form, const char* choices, const QString& value)
{
    const auto* box = form && choices ? form->findChild<QComboBox*>(QLatin1String(choices)) : nullptr;
    for (int item = 0; box && item < box->count(); ++item) {
        const QVariant data = box->itemData(item);
        const QStringList parts = data.toStringList();
        if (data.toString() == value || parts.join(QLatin1Char('@')) == value)
            return box->itemText(item);
    }
    return value;
}

} // namespace

QString FilterText(const QWidget* searchForm, const QString& conditions, const QString& group)
{
    if (conditions.isEmpty())
        return {};
    const QVariantMap values = QJsonDocument::fromJson(conditions.toUtf8()).object().toVariantMap();
    const auto Value = [&values](const char* key) { return values.value(QLatin1String(key)).toString(); };
    QStringList parts;
    const auto Add = [&parts](const QString& caption, const QString& value) {
        parts.append(Translated(QT_TRANSLATE_NOOP("FilterText", "%1: %2")).arg(caption, value));
    };
    if (values.contains(QStringLiteral("job_guid")))
        Add(Translated(QT_TRANSLATE_NOOP("FilterText", "Group")), group);
    for (const Field& field : fields) {
        const QString value = Value(field.key);
        if (!value.isEmpty())
            Add(Caption(searchForm, field.caption), Shown(searchForm, field.choices, value));
    }
    for (const auto& [least, most, caption] : ranges) {
        if (!Value(least).isEmpty())
            Add(Caption(searchForm, caption), QString(Value(least) + QStringLiteral(" – ") + Value(most)));
    }
    return parts.isEmpty() ? Translated(QT_TRANSLATE_NOOP("FilterText", "Search"))
                           : parts.join(Translated(QT_TRANSLATE_NOOP("FilterText", ", ")));
}
