#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QTimer>
#include <QVariantMap>

#include <deque>
#include <functional>

class ClientHost;
class SessionControl;
struct HostServices;

/// Opens each of the client's windows, saves a picture of it and ends the application: with 0 when all pictures are saved,
/// with 1 and a message on standard error when a window does not show within a minute.
class ScreenshotTour : public QObject
{
    Q_OBJECT

public:
    /// Begins when the sign-in window shows.
    /// @param folder receives the pictures.
    /// @param host must outlive the tour, must have started and must not sign in by itself.
    ScreenshotTour(const QString& folder, ClientHost* host);

private:
    /// Waits for a condition, then acts.
    struct Step
    {
        QString awaited; // names the condition in the message of a failure
        std::function<bool()> isThere;
        std::function<void()> act;
    };

    void PlanSession();
    void PlanTab(int index, const QString& name);
    void PlanSubmission();
    void PlanDownload();
    void PlanParents();
    void PlanFrames();
    void PlanConnection();
    void PlanSpace();
    void PlanDialog(const QString& childName, const QString& name);
    void PlanModal(const QString& name, const std::function<void()>& open);
    void PlanMenu();
    void PlanPreview();
    void Proceed();
    void Save(QWidget* widget, const QString& name);
    bool HasJobAdvanced();
    void End(const QString& failure);

    QString m_folder;
    HostServices* m_services;
    SessionControl* m_session;
    std::deque<Step> m_steps;
    QTimer m_ticker;
    QTimer m_opener; // opens modal windows outside the ticker's slot, so that it keeps ticking
    std::function<void()> m_open;
    QElapsedTimer m_time;
    QHash<QString, int> m_firstProgress; // by job
    QVariantMap m_order;                 // the order to download a job that has a finished frame
    int m_idleTicks = 0;
};
