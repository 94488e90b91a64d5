#pragma once

#include "host/farmclient/connection_feed.h"

#include <QElapsedTimer>
#include <QPushButton>
#include <QTimer>

/// A line in the main form that shows the connection: its phase, the running transfers and their speed, and what has
/// just been refused. It looks at the feed at most once a second, and only while it is visible.
///
/// The dynamic property "phase" ("connected", "trying", "unreachable" or "refused") is for the skin.
class ConnectionStrip : public QPushButton
{
    Q_OBJECT

public:
    /// @param feed must outlive the strip.
    ConnectionStrip(ConnectionFeed* feed, QWidget* parent);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    /// @return the connection that the text describes.
    const ConnectionPicture& Picture() const { return m_picture; }

signals:
    /// The text, or the details behind it, may have changed.
    void Updated();

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void Schedule();
    void Update();
    void Show(const QDateTime& now);
    void SetPhase(const QString& phase);
    void Wake(const QDateTime& now);

    ConnectionFeed* m_feed;
    ConnectionPicture m_picture;
    QTimer m_update;
    QElapsedTimer m_updated; // since the last update
    bool m_isOnScreen = false;
};
