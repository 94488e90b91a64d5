#pragma once

#include <QHash>
#include <QPalette>
#include <QPixmap>
#include <QProgressBar>
#include <QStyle>

class QStyleOptionProgressBar;

/// A progress bar that draws its frame and chunk from pictures which all bars of the same parent share. Drawing rounded
/// frames costs more than anything else on a row, and the bars of a table have few different looks. Their colours are
/// in the style sheets of VTCodeTables::ProgressStyle().
///
/// It has no meta-object of its own, so style sheets and services find a plain `QProgressBar`.
class VTProgressBar : public QProgressBar
{
protected:
    void paintEvent(QPaintEvent* pEvent) override;
};

/// Pictures of bars without their texts, for the bars of one parent, which also owns this object. They are dropped when
/// the parent's style changes.
class VTBarPictures : public QObject
{
    Q_OBJECT

public:
    /// @return the pictures of a parent's bars, made at the first call.
    static VTBarPictures& Of(QWidget* pParent);

    /// @param option how the bar looks; its text is left out.
    /// @param nScale pixels for each unit of the bar's size.
    QPixmap Picture(QProgressBar& bar, const QStyleOptionProgressBar& option, int nScale);

protected:
    bool eventFilter(QObject* pParent, QEvent* pEvent) override;

private:
    /// Everything in which two bars of one parent can differ.
    struct Look
    {
        int nProgress;
        QSize size;
        int nScale;
        QStyle::State state;
        Qt::LayoutDirection direction;
        QString strSheet;
        QPalette palette;

        bool operator==(const Look& other) const;
        friend uint qHash(const Look& look, uint nSeed) { return ::qHash(look.nProgress, nSeed); }
    };

    explicit VTBarPictures(QWidget* pParent);

    QHash<Look, QPixmap> m_mapPicture;
};
