#pragma once

#include <QAbstractScrollArea>
#include <QImage>
#include <QThreadPool>
#include <QTimer>

/// Shows a picture, fitted into the view or at a zoom, or a text instead. The wheel zooms at the pointer and dragging moves
/// the picture. A zoom of 1 shows a pixel of the picture as a pixel of the screen.
class PictureView : public QAbstractScrollArea
{
    Q_OBJECT

public:
    explicit PictureView(QWidget* parent = nullptr);
    ~PictureView() override;

    /// Keeps the zoom, so that the pictures of a sequence can be compared.
    void SetPicture(const QImage& picture);
    void SetText(const QString& text);
    const QImage& Picture() const { return m_picture; }
    const QString& Text() const { return m_text; }

    void Fit();
    /// @param zoom is limited to the allowed range.
    void SetZoom(double zoom) { ZoomAt(zoom, viewport()->rect().center()); }
    /// Zooms in by a number of steps; out when it is negative.
    void ZoomBy(int steps);
    double Zoom() const;
    bool IsFitted() const { return m_isFitted; }

signals:
    void ZoomChanged();
    /// Emitted in the scaling thread. @param key identifies the picture.
    void Scaled(qint64 key, const QImage& scaled);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    void ZoomAt(double zoom, const QPoint& point);
    QSizeF ShownSize() const;
    QRectF Place() const;
    void UpdateScrollBars();
    void ScaleSmoothly();
    void HandleScaled(qint64 key, const QImage& scaled);
    void DrawPicture(QPainter& painter) const;

    QImage m_picture;
    QString m_text;
    bool m_isFitted = true;
    double m_zoom = 1;
    QPoint m_dragged; // the pointer's position when the picture was last moved
    QImage m_scaled;  // the picture in the size of the screen's pixels, once the zoom has settled
    QTimer m_settled;
    QThreadPool m_scaler; // last member, because its destructor waits for the scaling thread
};
