#pragma once

#include "ctkPlugin.h"

#include <QPluginLoader>

/// A plugin in a library file.
class LibraryPlugin final : public ctkPlugin
{
public:
    /// Loads the library and reads its manifest. Throws `ctkPluginException` when either fails.
    LibraryPlugin(const QSharedPointer<FrameworkCore>& core, const QString& file);

    void start(const StartOptions& options) override;
    void stop(const StopOptions& options) override;

    /// The path that the library was installed from.
    QString File() const { return m_file; }

private:
    void RefuseTransition() const;

    const QString m_file;
    QPluginLoader m_loader;
};
