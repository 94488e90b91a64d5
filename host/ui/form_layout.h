#pragma once

#include <QMap>
#include <QRect>
#include <QString>

#include <optional>

class QWidget;

/// How a child follows the size of its form; distances and sizes in pixels.
///
/// On each axis: two distances stretch the child between them, one distance keeps its size, none leaves it as it is. A
/// size of the rule goes before the child's own.
struct AnchorRule
{
    std::optional<int> left;
    std::optional<int> right;
    std::optional<int> width;
    std::optional<int> top;
    std::optional<int> bottom;
    std::optional<int> height;
    /// Object name of a child whose horizontal movement this one shares, so that their distance stays.
    QString with;
};

/// @return where a child that stands at `current` comes to stand in a form of that size. Sizes are never negative.
QRect Anchored(const QRect& current, const QSize& form, const AnchorRule& rule);

/// The anchor rules of a form's children by object name, read from a layout file.
class FormLayout
{
public:
    FormLayout() = default;

    /// Reads an INI file: one group a child; values that are no numbers and unknown keys are ignored.
    static FormLayout Read(const QString& iniFile);

    /// Places the children that have a rule. A child of fixed size gets a new fixed size.
    void Apply(QWidget* form) const;

    const QMap<QString, AnchorRule>& Rules() const { return m_rules; }

private:
    QMap<QString, AnchorRule> m_rules;
};
