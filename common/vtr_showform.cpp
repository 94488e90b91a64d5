#include "common/vtr_showform.h"

#include <QPointer>
#include <QWidget>
#include <QWindow>

bool VTShowForm(QWidget* pForm)
{
    const QPointer<QWidget> pShown(pForm);
    pForm->show();
    if (pShown && !pShown->isVisible() && pShown->windowHandle() && pShown->windowHandle()->isVisible()) {
        // hide() on a hidden widget leaves its native window alone, so the widget is shown again first.
        pShown->show();
        if (pShown)
            pShown->hide();
    }
    return pShown && pShown->isVisible();
}
