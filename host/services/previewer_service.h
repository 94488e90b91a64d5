#pragma once

#include "host/services/service_base.h"
#include "vtr_previewerinterface.h"

#include <memory>

class PictureSeries;
class PreviewWindow;
class VTUiLoaderInterface;

/// Shows finished frames in a window of its own.
class PreviewerService : public ServiceBase<VTPreviewerInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTPreviewerInterface)

public:
    /// @param loader must outlive this service.
    explicit PreviewerService(VTUiLoaderInterface* loader, QObject* parent = nullptr);
    ~PreviewerService() override;

    /// If `parameters` hold a "file", the path of a picture, the window shows it.
    int Show(QVariant& result, const QVariantMap& parameters) override;

    /// Shows the picture; see PreviewWindow::Open.
    void Open(const QString& file);
    void OpenSeries(const std::shared_ptr<PictureSeries>& series, const QString& name);

    /// Closes the window, so that the next session shows nothing of this one.
    void EndSession();

private:
    PreviewWindow* Window();

    VTUiLoaderInterface* m_loader;
    std::unique_ptr<PreviewWindow> m_window; // created on first use
};
