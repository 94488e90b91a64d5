#pragma once

#include <QString>
#include <QtDebug>
#include <QWidget>

/// Finds a widget of a form by object name.
///
/// A missing widget is logged as an error with the form's key and the object's name. A hidden stand-in, a child of the
/// form, takes its place, so that the rest of the window still works.
/// @return never null when pForm is not null.
template <typename Widget>
Widget* VTFindWidget(QWidget* pForm, const QString& strFormKey, const QString& strName)
{
    if (auto* pFound = pForm->findChild<Widget*>(strName))
        return pFound;
    qCritical("Form %s has no %s %s", qUtf8Printable(strFormKey), Widget::staticMetaObject.className(),
        qUtf8Printable(strName));
    auto* pStandIn = new Widget(pForm);
    pStandIn->hide();
    return pStandIn;
}
