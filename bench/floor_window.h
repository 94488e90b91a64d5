#pragma once

#include <QFile>
#include <QProgressBar>
#include <QTableWidget>
#include <QUiLoader>

#include <memory>

/// The values that a row of jobs shows.
struct ShownJob
{
    QStringList texts; ///< by column; that of the bar is unused
    int progress;
    QString barSheet;
};

/// Plain Qt that shows the same on the same form with the same skin, and nothing else: the least that a client made of
/// these widgets could cost.
class FloorWindow
{
public:
    static constexpr int Columns = 6;
    static constexpr int BarColumn = 3;

    FloorWindow(const QString& formKey, const QString& skin, const QString& tableName = {})
    {
        QFile file(QStringLiteral(FORMS_FOLDER "/%1.ui").arg(formKey));
        QFile sheet(QStringLiteral(":/%1/%2.qss").arg(skin, formKey));
        if (file.open(QIODevice::ReadOnly))
            m_form.reset(QUiLoader().load(&file));
        if (!m_form)
            qFatal("The form %s cannot be loaded", qUtf8Printable(formKey));
        m_form->setAutoFillBackground(true);
        if (sheet.open(QIODevice::ReadOnly))
            m_form->setStyleSheet(QString::fromUtf8(sheet.readAll()));
        if (tableName.isEmpty())
            return;
        m_table = m_form->findChild<QTableWidget*>(tableName);
        m_table->setColumnCount(Columns);
    }

    QWidget* Form() const { return m_form.get(); }
    QTableWidget* Table() const { return m_table; }

    void Fill(const QVector<ShownJob>& jobs) const
    {
        m_table->setRowCount(jobs.size());
        for (int row = 0; row < jobs.size(); ++row) {
            for (int column = 0; column < Columns; ++column) {
                if (column == BarColumn)
                    SetBar(row, jobs.at(row));
                else
                    Item(row, column)->setText(jobs.at(row).texts.at(column));
            }
        }
    }

private:
    QTableWidgetItem* Item(int row, int column) const
    {
        QTableWidgetItem* item = m_table->item(row, column);
        if (!item) {
            item = new QTableWidgetItem;
            item->setTextAlignment(Qt::AlignCenter);
            m_table->setItem(row, column, item);
            if (column == 0)
                item->setCheckState(Qt::Unchecked);
        }
        return item;
    }

    void SetBar(int row, const ShownJob& job) const
    {
        auto* present = qobject_cast<QProgressBar*>(m_table->cellWidget(row, BarColumn));
        auto* bar = present ? present : new QProgressBar;
        bar->setValue(job.progress);
        if (bar->styleSheet() != job.barSheet)
            bar->setStyleSheet(job.barSheet);
        if (!present)
            m_table->setCellWidget(row, BarColumn, bar);
    }

    std::unique_ptr<QWidget> m_form;
    QTableWidget* m_table = nullptr;
};
