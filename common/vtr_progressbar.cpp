#include "common/vtr_progressbar.h"

#include "common/vtr_skin.h"

#include <QStyleOptionProgressBar>
#include <QStylePainter>

namespace {

/// Enough for all percentages in one size.
constexpr int PicturesKept = 128;

} // namespace

void VTProgressBar::paintEvent(QPaintEvent* pEvent)
{
    QStyleOptionProgressBar option;
    initStyleOption(&option);
    const int nScale = qRound(devicePixelRatioF());
    // At a fractional scale a picture cannot be placed as precisely as the style draws, and a busy bar moves.
    if (!qFuzzyCompare(devicePixelRatioF(), nScale) || option.minimum == option.maximum || !parentWidget()) {
        QProgressBar::paintEvent(pEvent);
        return;
    }
    QStylePainter painter(this);
    painter.drawPixmap(0, 0, VTBarPictures::Of(parentWidget()).Picture(*this, option, nScale));
    if (option.textVisible) {
        option.rect = style()->subElementRect(QStyle::SE_ProgressBarLabel, &option, this);
        painter.drawControl(QStyle::CE_ProgressBarLabel, option);
    }
}

VTBarPictures& VTBarPictures::Of(QWidget* pParent)
{
    auto* pPictures = pParent->findChild<VTBarPictures*>(QString(), Qt::FindDirectChildrenOnly);
    return pPictures ? *pPictures : *new VTBarPictures(pParent);
}

VTBarPictures::VTBarPictures(QWidget* pParent)
    : QObject(pParent)
{
    pParent->installEventFilter(this);
}

QPixmap VTBarPictures::Picture(QProgressBar& bar, const QStyleOptionProgressBar& option, int nScale)
{
    const Look look {option.progress, bar.size(), nScale, option.state, option.direction, bar.styleSheet(),
        option.palette};
    const auto itKnown = m_mapPicture.constFind(look);
    if (itKnown != m_mapPicture.constEnd())
        return *itKnown;
    QPixmap picture(bar.size() * nScale);
    picture.setDevicePixelRatio(nScale);
    picture.fill(Qt::transparent);
    QStylePainter painter(&picture, &bar);
    QStyleOptionProgressBar silent = option;
    silent.text.clear();
    painter.drawControl(QStyle::CE_ProgressBar, silent);
    if (m_mapPicture.size() == PicturesKept)
        m_mapPicture.clear();
    return *m_mapPicture.insert(look, picture);
}

bool VTBarPictures::Look::operator==(const Look& other) const
{
    return nProgress == other.nProgress && size == other.size && nScale == other.nScale
        && state == other.state && direction == other.direction && strSheet == other.strSheet
        && palette == other.palette;
}

bool VTBarPictures::eventFilter(QObject* pParent, QEvent* pEvent)
{
    if (VTSkin::ChangesLook(*pEvent))
        m_mapPicture.clear();
    return QObject::eventFilter(pParent, pEvent);
}
