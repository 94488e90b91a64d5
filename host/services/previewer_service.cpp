#include "host/services/previewer_service.h"

#include "host/ui/preview_window.h"

PreviewerService::PreviewerService(VTUiLoaderInterface* loader, QObject* parent)
    : ServiceBase<VTPreviewerInterface>(parent)
    , m_loader(loader)
{
}

PreviewerService::~PreviewerService() = default;

int PreviewerService::Show(QVariant& result, const QVariantMap& parameters)
{
    const int status = ServiceBase::Show(result, parameters);
    const QString file = parameters.value(QStringLiteral("file")).toString();
    if (status == StatusOk && !file.isEmpty())
        Open(file);
    return status;
}

void PreviewerService::Open(const QString& file)
{
    Window()->Open(file);
}

void PreviewerService::OpenSeries(const std::shared_ptr<PictureSeries>& series, const QString& name)
{
    Window()->Open(series, name);
}

void PreviewerService::EndSession()
{
    m_window.reset();
}

PreviewWindow* PreviewerService::Window()
{
    if (!m_window)
        m_window = std::make_unique<PreviewWindow>(m_loader);
    return m_window.get();
}
