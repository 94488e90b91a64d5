#pragma once

#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QVariantMap>

#include <memory>

class CommunicationService;
class VTListFile;
class VTSettingsInterface;
struct FarmChanges;
struct HttpResult;

/// Keeps the groups that the user has named after projects filled with the ids of these projects' jobs.
///
/// The window reads the group file whenever a group is chosen, and refreshes its list with the ids that it read then.
/// The farm is asked for the project instead, so that jobs which are added to it later appear with the next refresh.
/// Groups with other names are left alone, and so is one that already has jobs when it gets the name of a project.
class ProjectGroups : public QObject
{
    Q_OBJECT

public:
    static constexpr int PageSize = 200;
    static constexpr int MostJobs
        = 10000; ///< the newest jobs of a group; the farm refuses a request with more ids

    /// Create it after the plugin has started, so that the main window receives each answer first.
    /// @param communication, settings must outlive this object.
    ProjectGroups(
        CommunicationService* communication, VTSettingsInterface* settings, QObject* parent = nullptr);
    ~ProjectGroups() override;

    /// @param token identifies the session; must never be logged.
    void BeginSession(const QString& userName, const QString& token);
    void EndSession();

    /// Fills the group of this name from now on, if it exists, is empty and bears the name of a project.
    void Follow(const QString& group);

signals:
    /// The farm has listed the account's projects.
    void ProjectsListed(const QStringList& names);

private:
    /// A group that is being filled, newest jobs first.
    struct Filling
    {
        QString group;
        QString pool;
        QStringList newIds = {};
        int page = 1;
    };

    void HandleProjects(int code, const QVariantMap& answer);
    void HandleChanges(const FarmChanges& changes);
    void FillAll();
    void Fill(const Filling& filling);
    void HandleJobs(Filling filling, const HttpResult& result);
    void Store(const Filling& filling, const QStringList& known);
    QString ProjectConditions(const QString& conditions);
    QString SettingKey() const;
    QVariantMap Followed() const;

    CommunicationService* m_communication;
    VTSettingsInterface* m_settings;
    std::unique_ptr<VTListFile> m_file; // null while nobody is signed in
    QString m_userName;
    QString m_token;
    QHash<QString, QString> m_pools; // the pools of the account's projects, by name
    QSet<QString> m_underWay;        // groups that are being filled
    QString m_chosen;                // the group whose jobs the window has requested last
    QString m_chosenConditions;      // the conditions that the window made of the group's ids
    QTimer m_pause;                  // the pause between a change on the farm and the request for it
};
