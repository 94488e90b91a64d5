#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QWidget>

#include <memory>
#include <vector>

class ColumnWidths;
class VTSettingsInterface;

/// Makes the window lay out page bar, columns and group panel again when the size or the tab of the main form has
/// changed; the window itself does so only when it is maximised or restored. Keeps the user's columns and the current
/// tab.
class FormFollower : public QObject
{
    Q_OBJECT

public:
    /// @param settings must outlive this object.
    explicit FormFollower(VTSettingsInterface* settings, QObject* parent = nullptr);
    ~FormFollower() override;

    /// Watches the main form. Call it whenever the form is shown for a new session, because it may be a new one.
    ///
    /// The first session after a start begins on the tab that was shown last, every later one on the first tab.
    void BeginSession(const QString& userName);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Attach(QWidget* form);
    void HandleTabChange(int tab);

    VTSettingsInterface* m_settings;
    QPointer<QWidget> m_form;
    std::vector<std::unique_ptr<ColumnWidths>> m_columns;
    QTimer m_settling; // runs out when the form has kept its size for a while
    bool m_isFirstSession = true;
};
