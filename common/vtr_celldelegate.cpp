#include "common/vtr_celldelegate.h"

#include "common/vtr_skin.h"

#include <QImage>
#include <QPainter>
#include <QTextLayout>
#include <QWidget>

namespace {

/// All of a cell except its text.
QStyleOptionViewItem WithoutText(const QStyleOptionViewItem& option)
{
    QStyleOptionViewItem silent = option;
    silent.text.clear();
    silent.features &= ~QStyleOptionViewItem::HasDisplay;
    return silent;
}

/// The area in which common styles draw a cell's text.
QRect TextRect(const QStyleOptionViewItem& option)
{
    const QStyle* pStyle = option.widget->style();
    const QStyleOptionViewItem silent = WithoutText(option);
    const int nMargin = pStyle->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, option.widget) + 1;
    return pStyle->subElementRect(QStyle::SE_ItemViewItemText, &silent, option.widget)
        .adjusted(nMargin, 0, -nMargin, 0);
}

/// Lays out a text in one line. @return whether it fits.
bool LayOut(QTextLayout& text, const QStyleOptionViewItem& option, const QRect& rect)
{
    if (option.text.contains(QChar::LineSeparator) || option.text.contains(QLatin1Char('\n')))
        return false;
    QTextOption textOption;
    textOption.setWrapMode(QTextOption::ManualWrap);
    textOption.setTextDirection(option.direction);
    textOption.setAlignment(QStyle::visualAlignment(option.direction, option.displayAlignment));
    text.setTextOption(textOption);
    text.beginLayout();
    QTextLine line = text.createLine();
    if (line.isValid())
        line.setLineWidth(rect.width());
    text.endLayout();
    return line.isValid() && line.naturalTextWidth() <= rect.width() && line.height() <= rect.height();
}

void DrawText(
    QPainter* pPainter, const QStyleOptionViewItem& option, const QTextLayout& text, const QPointF& place)
{
    const bool bEnabled = option.state.testFlag(QStyle::State_Enabled);
    const bool bActive = option.state.testFlag(QStyle::State_Active);
    const QPalette::ColorGroup group = !bEnabled ? QPalette::Disabled
        : bActive                                ? QPalette::Normal
                                                 : QPalette::Inactive;
    const bool bSelected = option.state.testFlag(QStyle::State_Selected);
    pPainter->setPen(option.palette.color(group, bSelected ? QPalette::HighlightedText : QPalette::Text));
    text.draw(pPainter, place);
}

void Draw(QPainter* pPainter, const QStyleOptionViewItem& option)
{
    option.widget->style()->drawControl(QStyle::CE_ItemViewItem, &option, pPainter, option.widget);
}

/// A picture of a cell on an opaque background, on which texts are anti-aliased as on the screen.
template <class Drawing>
QImage PictureOf(const QStyleOptionViewItem& option, Drawing drawing)
{
    QImage picture(option.rect.size(), QImage::Format_RGB32);
    picture.fill(option.palette.color(QPalette::Base).rgb());
    QPainter painter(&picture);
    painter.translate(-option.rect.topLeft());
    drawing(&painter);
    return picture;
}

} // namespace

VTCellDelegate::VTCellDelegate(QWidget* pView)
    : QStyledItemDelegate(pView)
    , m_pView(pView)
{
    pView->installEventFilter(this);
}

bool VTCellDelegate::eventFilter(QObject* pObject, QEvent* pEvent)
{
    if (pObject != m_pView)
        return QStyledItemDelegate::eventFilter(pObject, pEvent);
    if (VTSkin::ChangesLook(*pEvent))
        m_mapAlike.clear();
    return false;
}

void VTCellDelegate::paint(
    QPainter* pPainter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    if (!cell.widget || cell.text.isEmpty()) {
        QStyledItemDelegate::paint(pPainter, option, index);
        return;
    }
    const QRect rect = TextRect(cell);
    QTextLayout text(cell.text, cell.font);
    if (LayOut(text, cell, rect)) {
        const QSize size = text.boundingRect().size().toSize();
        const QPointF place(
            rect.x(), QStyle::alignedRect(Qt::LayoutDirectionAuto, cell.displayAlignment, size, rect).top());
        if (DrawsLikeStyle(cell, text, place)) {
            Draw(pPainter, WithoutText(cell));
            DrawText(pPainter, cell, text, place);
            return;
        }
    }
    Draw(pPainter, cell);
}

bool VTCellDelegate::DrawsLikeStyle(
    const QStyleOptionViewItem& option, const QTextLayout& text, const QPointF& place) const
{
    const quint64 nKind = quint64(option.state) | quint64(option.features) << 32
        | quint64(option.viewItemPosition) << 48 | quint64(option.displayAlignment) << 52
        | quint64(option.direction) << 62;
    const auto itKnown = m_mapAlike.constFind(nKind);
    if (itKnown != m_mapAlike.constEnd())
        return *itKnown;
    const QImage drawnByStyle = PictureOf(option, [&](QPainter* pPainter) { Draw(pPainter, option); });
    const bool bAlike = drawnByStyle == PictureOf(option, [&](QPainter* pPainter) {
        Draw(pPainter, WithoutText(option));
        DrawText(pPainter, option, text, place);
    });
    // Blanks leave nothing to compare.
    const QImage withoutText
        = PictureOf(option, [&](QPainter* pPainter) { Draw(pPainter, WithoutText(option)); });
    if (drawnByStyle != withoutText)
        m_mapAlike.insert(nKind, bAlike);
    return bAlike;
}
