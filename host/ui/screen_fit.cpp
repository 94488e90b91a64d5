#include "host/ui/screen_fit.h"

#include <QLayout>
#include <QScrollArea>

namespace {

void MakeScrollable(QWidget* form, QWidget* body)
{
    auto* area = new QScrollArea(form);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidgetResizable(true);
    delete form->layout()->replaceWidget(body, area);
    area->setWidget(body);
    // Otherwise both would cover the form's background, which the skin sets.
    body->setAutoFillBackground(false);
    area->viewport()->setAutoFillBackground(false);
}

} // namespace

void FitScreen(QWidget* form, const QSize& room)
{
    if (form->width() <= room.width() && form->height() <= room.height())
        return;
    auto* body = form->findChild<QWidget*>(QStringLiteral("wgtBody"), Qt::FindDirectChildrenOnly);
    if (body && form->layout() && form->layout()->totalMinimumSize().height() > room.height())
        MakeScrollable(form, body);
    form->setMinimumSize(form->minimumSize().boundedTo(room));
    form->setMaximumSize(form->maximumSize().boundedTo(room));
    form->resize(form->size().boundedTo(room));
}
