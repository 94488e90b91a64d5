#include "host/ui/form_layout.h"

#include <QSettings>
#include <QStyle>
#include <QVariant>
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

/// Reads those keys of a rule that exist and leaves the others unchanged.
/// @param prefix of the keys.
void ReadRule(const QSettings& settings, const QString& prefix, AnchorRule* rule)
{
    const std::pair<const char*, std::optional<int>*> numbers[]
        = {{"left", &rule->left}, {"right", &rule->right}, {"width", &rule->width}, {"top", &rule->top},
            {"bottom", &rule->bottom}, {"height", &rule->height}};
    for (const auto& [key, number] : numbers) {
        if (const auto value = Number(settings, prefix + QLatin1String(key)))
            *number = value;
    }
    rule->with = settings.value(prefix + QLatin1String("with"), rule->with).toString();
}

/// Tells the style sheet whether a child is placed for a narrow form.
void MarkNarrow(QWidget* child, bool isNarrow)
{
    constexpr char Narrow[] = "narrow";
    if (child->property(Narrow).toBool() == isNarrow)
        return;
    child->setProperty(Narrow, isNarrow);
    // A style sheet does not follow a property by itself.
    child->style()->unpolish(child);
    child->style()->polish(child);
}

QWidget* Child(const QWidget* form, const QString& name)
{
    return form->findChild<QWidget*>(name);
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
    layout.m_narrowBelow = Number(settings, QStringLiteral("layout/narrowBelow")).value_or(0);
    const QStringList names = settings.childGroups();
    for (const QString& name : names) {
        settings.beginGroup(name);
        Rules rules;
        ReadRule(settings, QString(), &rules.wide);
        rules.narrow = rules.wide;
        ReadRule(settings, QStringLiteral("narrow/"), &rules.narrow);
        layout.m_rules.insert(name, rules);
        settings.endGroup();
    }
    return layout;
}

void FormLayout::Apply(QWidget* form) const
{
    const bool isNarrow = form->width() < m_narrowBelow;
    const auto RuleOf = [isNarrow](const Rules& rules) { return isNarrow ? rules.narrow : rules.wide; };
    QMap<QString, int> shifts;
    for (auto it = m_rules.cbegin(); it != m_rules.cend(); ++it) {
        const QWidget* child = Child(form, it.key());
        const AnchorRule rule = RuleOf(*it);
        if (child && rule.with.isEmpty())
            shifts.insert(
                it.key(), Anchored(child->geometry(), child->parentWidget()->size(), rule).x() - child->x());
    }
    for (auto it = m_rules.cbegin(); it != m_rules.cend(); ++it) {
        QWidget* child = Child(form, it.key());
        if (!child)
            continue;
        const AnchorRule rule = RuleOf(*it);
        Place(child,
            Anchored(child->geometry(), child->parentWidget()->size(), rule)
                .translated(shifts.value(rule.with), 0));
        MarkNarrow(child, isNarrow);
    }
}
