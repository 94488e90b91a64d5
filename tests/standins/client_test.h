#pragma once

#include "tests/standins/client.h"

#include <QMenu>
#include <QProgressBar>
#include <QTimer>

#include <memory>

/// A test of the client that finds it open, with nobody signed in, before each of its functions.
class ClientTest : public QObject
{
    Q_OBJECT

protected slots:
    void init()
    {
        m_client = std::make_unique<Client>();
        QVERIFY(m_client->Open());
    }
    void cleanup() { m_client.reset(); }

protected:
    CommunicationStandIn& Communication() const { return m_client->communication; }
    RenderCoreStandIn& RenderCore() const { return m_client->renderCore; }
    MessageBoxStandIn& MessageBox() const { return m_client->messageBox; }
    QTableWidget* Jobs() const { return m_client->Table("twtMyRender"_s); }
    QTableWidget* Tasks() const { return m_client->Table("twtLocalTask"_s); }
    QTableWidget* Downloads() const { return m_client->Table("twtDownload"_s); }
    QStringList TakeJournal() const { return m_client->journal.Take(); }

    /// Signs in and shows one page of jobs; nothing of it stays in the journal.
    void SignInWithJobs(const QVariantList& jobs, int total) const
    {
        m_client->SignIn();
        Communication().DeliverJobs(jobs, total);
        TakeJournal();
    }

    /// A row's items, each as "text|data", with ", " between.
    static QString Cells(const QTableWidget* table, int row)
    {
        QStringList cells;
        for (int column = 0; column < table->columnCount(); ++column) {
            if (const QTableWidgetItem* item = table->item(row, column))
                cells.append(QString(item->text() + "|"_s + item->data(Qt::UserRole).toString()));
        }
        return cells.join(", "_s);
    }
    static QProgressBar* Bar(const QTableWidget* table, int row)
    {
        return qobject_cast<QProgressBar*>(table->cellWidget(row, 3));
    }

    /// The entries of the menu that opens meanwhile, and is closed again; empty when none opens.
    template <class Action>
    static QString MenuDuring(Action action)
    {
        QStringList entries;
        QTimer look;
        connect(&look, &QTimer::timeout, [&entries] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (!menu)
                return;
            for (const QAction* entry : menu->actions())
                entries.append(entry->text());
            menu->close();
        });
        look.start(0);
        action();
        return entries.join(","_s);
    }
    static QString MenuOf(QTableWidget* table)
    {
        return MenuDuring([table] { emit table->customContextMenuRequested(QPoint()); });
    }

    std::unique_ptr<Client> m_client;
};
