#pragma once

#include "tests/standins/client.h"
#include "tests/support/test_files.h"

#include <QtWidgets>

#include <memory>

/// A test whose functions each start with a client that is open, with nobody signed in.
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
    QVariantMap& Settings() const { return m_client->settings.values; }
    QTableWidget* Jobs() const { return m_client->Table("twtMyRender"_s); }
    QTableWidget* Tasks() const { return m_client->Table("twtLocalTask"_s); }
    QTableWidget* Downloads() const { return m_client->Table("twtDownload"_s); }
    /// The calls of all stand-ins since this was last asked.
    static QString TakeJournal() { return std::exchange(journal, {}).join(", "_s); }

    /// Signs in and delivers one page of jobs; the journal is empty afterwards.
    void SignInWithJobs(const QVariantList& jobs, int total = 18) const
    {
        m_client->SignIn();
        Communication().DeliverJobs(jobs, total);
        TakeJournal();
    }

    void WriteAccountFile(const QString& folder, const QByteArray& text) const
    {
        const QString file = m_client->AccountFile(folder);
        QVERIFY(QDir().mkpath(QFileInfo(file).path()) && WriteFile(file, text));
    }

    /// Values of the last request.
    QVariant Sent(const char* key) const { return Communication().Last().map.value(QLatin1String(key)); }
    QVariantMap Conditions() const
    {
        return QJsonDocument::fromJson(Sent("conditions").toByteArray()).object().toVariantMap();
    }

    /// A dialog's form, or the main form, by the last part of its key.
    QWidget* Form(const char* name) const
    {
        return m_client->uiLoader.Form("com.vtr."_s + QLatin1String(name));
    }

    template <class Widget>
    Widget* Find(const char* form, const char* name) const
    {
        return Form(form)->findChild<Widget*>(QLatin1String(name));
    }
    void Click(const char* form, const char* button) const { Find<QPushButton>(form, button)->click(); }

    /// Runs an action inside the next modal dialog of a form, and closes the dialog if the action has not.
    template <class Action>
    void WhileOpen(const char* form, Action action) const
    {
        Later(Form(form), [this, form, action] {
            action();
            if (QWidget* dialog = Form(form))
                dialog->close();
        });
    }

    /// Runs an action from the event loop, unless the context is gone by then. The analyzer takes the functors of
    /// QTimer::singleShot() and QMetaObject::invokeMethod() for leaks.
    template <class Action>
    static void Later(QObject* context, Action action)
    {
        auto* timer = new QTimer(context);
        timer->setSingleShot(true);
        connect(timer, &QTimer::timeout, context, action);
        timer->start();
    }

    static void Check(const QTableWidget* table, const QList<int>& rows, Qt::CheckState state = Qt::Checked)
    {
        for (const int row : rows)
            table->item(row, 0)->setCheckState(state);
    }

    /// The check boxes of all rows: "x" checked, "-" unchecked, "?" none.
    static QString Checks(const QTableWidget* table)
    {
        QString checks;
        for (int row = 0; row < table->rowCount(); ++row) {
            const QVariant state = table->item(row, 0)->data(Qt::CheckStateRole);
            checks += !state.isValid() ? "?"_s : state == Qt::Checked ? "x"_s : "-"_s;
        }
        return checks;
    }

    /// A row's items, each as "text|data", and its bar as "50%", with ", " between.
    static QString Cells(const QTableWidget* table, int row)
    {
        QStringList cells;
        for (int column = 0; column < table->columnCount(); ++column) {
            if (const auto* bar = qobject_cast<QProgressBar*>(table->cellWidget(row, column)))
                cells.append("%1%"_s.arg(bar->value()));
            else if (const QTableWidgetItem* item = table->item(row, column))
                cells.append(QString(item->text() + "|"_s + item->data(Qt::UserRole).toString()));
        }
        return cells.join(", "_s);
    }
    /// The alignment of each cell of a row: "c" centred both ways, "-" not set or no item, "?" any other.
    static QString Alignments(const QTableWidget* table, int row)
    {
        QString alignments;
        for (int column = 0; column < table->columnCount(); ++column) {
            const QTableWidgetItem* item = table->item(row, column);
            const QVariant alignment = item ? item->data(Qt::TextAlignmentRole) : QVariant();
            alignments += !alignment.isValid() ? "-"_s : alignment == int(Qt::AlignCenter) ? "c"_s : "?"_s;
        }
        return alignments;
    }
    /// A column from top to bottom.
    static QStringList Values(const QTableWidget* table, int column, int role = Qt::DisplayRole)
    {
        QStringList values;
        for (int row = 0; row < table->rowCount(); ++row)
            values.append(table->item(row, column)->data(role).toString());
        return values;
    }
    static QProgressBar* Bar(const QTableWidget* table, int row)
    {
        return qobject_cast<QProgressBar*>(table->cellWidget(row, 3));
    }

    /// The entries of the menu that opens during an action, which is closed again; empty when none opens.
    template <class Action>
    static QString MenuDuring(Action action)
    {
        QStringList entries;
        QTimer look;
        connect(&look, &QTimer::timeout, [&entries] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (!menu)
                return;
            const auto actions = menu->actions();
            for (const QAction* entry : actions)
                entries.append(entry->text());
            menu->close();
        });
        look.start(0);
        action();
        QCoreApplication::processEvents(); // for menus that open without an event loop of their own
        return entries.join(","_s);
    }
    static QString MenuOf(QWidget* widget)
    {
        return MenuDuring([widget] { emit widget->customContextMenuRequested(QPoint()); });
    }

    std::unique_ptr<Client> m_client;
};
