#pragma once

#include <QMap>
#include <QRect>
#include <QString>

#include <optional>

class QWidget;

/// The rule by which a child follows the size of its form. Distances and sizes are in pixels.
///
/// On each axis, two distances stretch the child, one distance keeps its size, and none leaves it unchanged. A size in
/// the rule overrides the child's own.
struct AnchorRule
{
    std::optional<int> left;
    std::optional<int> right;
    std::optional<int> width;
    std::optional<int> top;
    std::optional<int> bottom;
    std::optional<int> height;
    /// Object name of a child; this one moves horizontally with it, so that their distance stays the same.
    QString with;
};

/// @return the new geometry of a child at `current` in a form of that size; never of negative size.
QRect Anchored(const QRect& current, const QSize& form, const AnchorRule& rule);

/// The anchor rules of a form's children, by object name. A form below a certain width has rules of its own, and its
/// children the dynamic property "narrow".
class FormLayout
{
public:
    FormLayout() = default;

    /// Reads an INI file with one group for each child. Keys that begin with "narrow/" replace the others where the form is
    /// narrower than "layout/narrowBelow". Unknown keys and values that are not numbers are ignored.
    static FormLayout Read(const QString& iniFile);

    /// Places the children that have a rule. A child of fixed size is given a new fixed size.
    void Apply(QWidget* form) const;

private:
    struct Rules
    {
        AnchorRule wide;
        AnchorRule narrow;
    };

    QMap<QString, Rules> m_rules;
    int m_narrowBelow = 0; // pixels
};
