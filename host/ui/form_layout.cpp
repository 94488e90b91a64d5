#include "host/ui/form_layout.h"

#include <QSettings>
#include <QWidget>

namespace {

struct Span
{
    int position;
    int size;
};

Span AnchoredSpan(Span span, int extent, const std::optional<int>& nearGap, const std::optional<int>& farGap,
    const std::optional<int>& size)
{
    if (size)
        span.size = *size;
    else if (nearGap && farGap)
        span.size = extent - *nearGap - *farGap;
    span.size = qMax(0, span.size);

    if (nearGap)
        span.position = *nearGap;
    else if (farGap)
        span.position = extent - *farGap - span.size;
    return span;
}

std::optional<int> Number(const QSettings& settings, const QString& key)
{
    bool isNumber = false;
    const int number = settings.value(key).toInt(&isNumber);
    return isNumber ? std::optional<int>(number) : std::nullopt;
}

AnchorRule ReadRule(const QSettings& settings)
{
    AnchorRule rule;
    rule.left = Number(settings, QStringLiteral("left"));
    rule.right = Number(settings, QStringLiteral("right"));
    rule.width = Number(settings, QStringLiteral("width"));
    rule.top = Number(settings, QStringLiteral("top"));
    rule.bottom = Number(settings, QStringLiteral("bottom"));
    rule.height = Number(settings, QStringLiteral("height"));
    rule.with = settings.value(QStringLiteral("with")).toString();
    return rule;
}

QWidget* Child(const QWidget* form, const QString& name)
{
    return form->findChild<QWidget*>(name, Qt::FindDirectChildrenOnly);
}

void Place(QWidget* child, const QRect& geometry)
{
    if (child->minimumSize() == child->maximumSize()) {
        child->setFixedSize(geometry.size());
        child->move(geometry.topLeft());
    } else {
        child->setGeometry(geometry);
    }
}

} // namespace

QRect Anchored(const QRect& current, const QSize& form, const AnchorRule& rule)
{
    const Span across
        = AnchoredSpan({current.x(), current.width()}, form.width(), rule.left, rule.right, rule.width);
    const Span down
        = AnchoredSpan({current.y(), current.height()}, form.height(), rule.top, rule.bottom, rule.height);
    return {across.position, down.position, across.size, down.size};
}

FormLayout FormLayout::Read(const QString& iniFile)
{
    FormLayout layout;
    QSettings settings(iniFile, QSettings::IniFormat);
    const QStringList names = settings.childGroups();
    for (const QString& name : names) {
        settings.beginGroup(name);
        layout.m_rules.insert(name, ReadRule(settings));
        settings.endGroup();
    }
    return layout;
}

void FormLayout::Apply(QWidget* form) const
{
    QMap<QString, int> shifts;
    for (auto it = m_rules.cbegin(); it != m_rules.cend(); ++it) {
        const QWidget* child = Child(form, it.key());
        if (child && it->with.isEmpty())
            shifts.insert(it.key(), Anchored(child->geometry(), form->size(), *it).x() - child->x());
    }
    for (auto it = m_rules.cbegin(); it != m_rules.cend(); ++it) {
        if (QWidget* child = Child(form, it.key()))
            Place(
                child, Anchored(child->geometry(), form->size(), *it).translated(shifts.value(it->with), 0));
    }
}
