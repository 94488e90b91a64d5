#include <QObject>
#include <QtPlugin>

/// A valid Qt plugin with a manifest but without an activator.
class InertPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "sample.inert")
};

#include "sample_inert_plugin.moc"
