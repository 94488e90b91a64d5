#pragma once

#include "tests/standins/stand_in.h"

/// Captures Qt's messages while this object lives, each as "critical|text|file|line". Only one may live at a time.
class MessageCapture
{
public:
    MessageCapture() { qInstallMessageHandler(Keep); }
    ~MessageCapture()
    {
        qInstallMessageHandler(nullptr);
        Take();
    }

    static QStringList Take() { return std::exchange(m_lines, {}); }

private:
    static void Keep(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        const QString level = type == QtCriticalMsg ? "critical"_s
            : type == QtDebugMsg                    ? "debug"_s
                                                    : "other"_s;
        m_lines.append("%1|%2|%3|%4"_s.arg(level, text, QString::fromUtf8(context.file)).arg(context.line));
    }

    static inline QStringList m_lines;
};
