#include "common/vtr_showform.h"

#include <QPointer>
#include <QWidget>
#include <QWindow>

bool VTShowForm(QWidget* pForm)
{
    const QPointer<QWidget> pShown(pForm);
    pForm->show();
    if (pShown && !pShown->isVisible() && pShown->windowHandle() && pShown->windowHandle()->isVisible()) {
        // A hidden widget passes no further hiding on to its window, so it is shown once more before.
        pShown->show();
        if (pShown)
            pShown->hide();
    }
    return pShown && pShown->isVisible();
}
