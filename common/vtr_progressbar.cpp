#include "common/vtr_progressbar.h"

#include <QApplication>
#include <QPixmapCache>
#include <QStyleOptionProgressBar>
#include <QStylePainter>
#include <QVector>

namespace {

/// A number for all that style sheets can tell apart: the sheets and names of a widget and its ancestors, and the
/// application's style.
int LookOf(const QWidget* pWidget)
{
    constexpr int LooksKept = 64;
    static QVector<QStringList> lstKnown;
    static int nForgotten = 0;

    QStringList lstLook {
        QString::fromLatin1(QApplication::style()->metaObject()->className()), qApp->styleSheet()};
    for (; pWidget; pWidget = pWidget->parentWidget())
        lstLook << pWidget->styleSheet() << pWidget->objectName();
    int nLook = lstKnown.indexOf(lstLook);
    if (nLook < 0) {
        if (lstKnown.size() == LooksKept) {
            nForgotten += LooksKept;
            lstKnown.clear();
        }
        nLook = lstKnown.size();
        lstKnown.append(lstLook);
    }
    return nForgotten + nLook;
}

} // namespace

void VTProgressBar::paintEvent(QPaintEvent* pEvent)
{
    QStyleOptionProgressBar option;
    initStyleOption(&option);
    // At a fractional scale a picture cannot be placed as precisely as the style draws, and a busy bar moves.
    const int nScale = qRound(devicePixelRatioF());
    if (!qFuzzyCompare(devicePixelRatioF(), nScale) || option.minimum == option.maximum) {
        QProgressBar::paintEvent(pEvent);
        return;
    }
    const QString strKey = QStringLiteral("VTProgressBar %1 %2 %3 %4 %5 %6 %7")
                               .arg(LookOf(this))
                               .arg(width())
                               .arg(height())
                               .arg(nScale)
                               .arg(option.progress)
                               .arg(int(option.state))
                               .arg(option.palette.cacheKey());
    QPixmap picture;
    if (!QPixmapCache::find(strKey, &picture)) {
        picture = QPixmap(size() * nScale);
        picture.setDevicePixelRatio(nScale);
        picture.fill(Qt::transparent);
        QStylePainter painter(&picture, this);
        QStyleOptionProgressBar silent = option;
        silent.textVisible = false;
        painter.drawControl(QStyle::CE_ProgressBar, silent);
        QPixmapCache::insert(strKey, picture);
    }
    QStylePainter painter(this);
    painter.drawPixmap(0, 0, picture);
    if (option.textVisible) {
        option.rect = style()->subElementRect(QStyle::SE_ProgressBarLabel, &option, this);
        painter.drawControl(QStyle::CE_ProgressBarLabel, option);
    }
}
