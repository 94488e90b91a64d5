#include "host/ui/window_role.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QWidget>

namespace {

QAccessibleInterface* MakeWindow(const QString& className, QObject* object)
{
    auto* widget = qobject_cast<QWidget*>(object);
    const bool isPlain
        = widget && className == QLatin1String("QWidget") && widget->windowType() == Qt::Window;
    return isPlain ? new QAccessibleWidget(widget, QAccessible::Window) : nullptr;
}

} // namespace

void AnnounceWindows()
{
    QAccessible::installFactory(MakeWindow);
}
