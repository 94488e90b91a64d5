#pragma once

#include "common/vtr_codetables.h"
#include "host/space/farm_space.h"

#include <QAbstractTableModel>
#include <QSet>
#include <QStringList>

/// The jobs that take space on the farm, as rows of a table with check boxes.
class SpaceModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { NumberColumn, NameColumn, StatusColumn, FilesColumn, PicturesColumn, ColumnCount };

    explicit SpaceModel(QObject* parent = nullptr);

    /// Jobs that are still there stay checked.
    void SetJobs(const std::vector<FarmSpace::Job>& jobs);

    std::vector<FarmSpace::Job> Checked() const;
    /// @return the row of a job; -1 when it is not listed.
    int RowOf(const QString& id) const;
    QString IdOf(int row) const;

    /// Shows all texts in the current language.
    void Retranslate();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

signals:
    void CheckedChanged();

private:
    QString Text(const FarmSpace::Job& job, int column) const;

    VTCodeTables m_codes;
    std::vector<FarmSpace::Job> m_jobs;
    QSet<QString> m_checked; // ids of listed jobs
};
