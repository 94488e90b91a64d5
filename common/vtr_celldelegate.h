#pragma once

#include <QHash>
#include <QStyledItemDelegate>

class QTextLayout;

/// Draws cells as the style does, in less time: a style lays out each text three times, this delegate does it once.
///
/// Styles and style sheets may draw texts in ways of their own. So one cell of each kind (selected, hovered, checkable
/// …) is drawn in both ways first. Kinds that look different are left to the style, as are texts that need more than a
/// line.
class VTCellDelegate : public QStyledItemDelegate
{
public:
    /// @param pView the view that uses the delegate, and its parent.
    explicit VTCellDelegate(QWidget* pView);

    void paint(
        QPainter* pPainter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

protected:
    bool eventFilter(QObject* pObject, QEvent* pEvent) override;

private:
    bool DrawsLikeStyle(
        const QStyleOptionViewItem& option, const QTextLayout& text, const QPointF& place) const;

    const QWidget* m_pView;
    mutable QHash<quint64, bool> m_mapAlike; ///< by kind of cell: whether both ways give the same picture
};
