#pragma once

#include "ctkPlugin.h"

#include <QPluginLoader>

/// A plugin that lives in a library of its own.
class LibraryPlugin final : public ctkPlugin
{
public:
    /// Loads the library and reads its manifest. Throws ctkPluginException where either fails.
    LibraryPlugin(const QSharedPointer<FrameworkCore>& core, const QString& file);

    void start(const StartOptions& options) override;
    void stop(const StopOptions& options) override;

    /// The library's file, as it was installed.
    QString File() const { return m_file; }

private:
    void RefuseTransition() const;

    const QString m_file;
    QPluginLoader m_loader;
};
