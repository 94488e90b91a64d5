#include "mainwindow/vtr_pagekeys.h"

#include "mainwindow/vtr_mainform.h"
#include "mainwindow/vtr_pagestate.h"

#include <QKeyEvent>

VTPageKeys::VTPageKeys(const VTMainForm& form)
    : m_form(form)
{
    for (int nTab = 0; nTab < VTList::Count; ++nTab)
        m_form.Table(nTab)->installEventFilter(this);
}

bool VTPageKeys::eventFilter(QObject* pTable, QEvent* pEvent)
{
    if (pEvent->type() != QEvent::KeyPress)
        return false;
    const auto* pKey = static_cast<const QKeyEvent*>(pEvent);
    const Qt::KeyboardModifiers modifiers = pKey->modifiers() & ~Qt::KeypadModifier;
    if (modifiers != Qt::ControlModifier || pTable != m_form.CurrentTable())
        return false;
    if (pKey->key() == Qt::Key_Home)
        emit FirstPageWanted();
    else if (pKey->key() == Qt::Key_End)
        emit LastPageWanted();
    else
        return false;
    return true;
}
