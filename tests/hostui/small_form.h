#pragma once

#include "tests/support/test_tables.h"

#include <QPushButton>
#include <QTableWidget>
#include <QTabWidget>

/// A main form in which the host's helpers find what they need.
struct MainForm : QWidget
{
    MainForm()
    {
        tabs.setObjectName("tbwContainer"_s);
        minimize.setObjectName("btnSystemMin"_s);
        maximize.setObjectName("btnSystemMaxnormal"_s);
        for (const char* name : {"twtMyRender", "twtLocalTask", "twtDownload"}) {
            auto* table = new QTableWidget(3, 6);
            table->setObjectName(QLatin1String(name));
            tabs.addTab(table, {});
        }
        setWindowFlag(Qt::FramelessWindowHint);
        resize(400, 300);
        tabs.resize(size());
        connect(&minimize, &QPushButton::clicked, this, &QWidget::close);
        connect(&maximize, &QPushButton::clicked, this, &QWidget::showMaximized);
    }

    QTabWidget tabs {this};
    QPushButton minimize {this};
    QPushButton maximize {this};
};
