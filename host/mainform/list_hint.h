#pragma once

#include <QTimer>
#include <QWidget>

class QLabel;
class QPushButton;
class QTableWidget;

/// English texts, translated in the context "ListHint".
struct HintTexts
{
    const char* heading = nullptr;
    const char* text = nullptr;
    const char* button = nullptr; ///< null for none
};

/// Covers the rows of a table while it has none. The table owns it.
class ListHint : public QWidget
{
    Q_OBJECT

public:
    explicit ListHint(QTableWidget* table);

    /// @param texts without a heading hide the hint.
    void SetTexts(const HintTexts& texts);

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void ButtonClicked();

protected:
    void changeEvent(QEvent* event) override;

private:
    void Translate();
    void Update();

    QTableWidget* m_table;
    HintTexts m_texts;
    QLabel* m_heading;
    QLabel* m_text;
    QPushButton* m_button;
    QTimer m_settling; // runs out when the table has been filled
};
