#pragma once

#include <QCoreApplication>
#include <QTranslator>

/// While it lives, another language is current: the sentences of messages and faults are in capitals.
class Capitals : public QTranslator
{
public:
    Capitals() { QCoreApplication::installTranslator(this); }
    ~Capitals() override { QCoreApplication::removeTranslator(this); }

    QString translate(
        const char* context, const char* source, const char* /*hint*/, int /*count*/) const override
    {
        const bool isOfMessage = qstrcmp(context, "TaskMessage") == 0 || qstrcmp(context, "FarmFault") == 0;
        return isOfMessage ? QString::fromUtf8(source).toUpper() : QString();
    }

    bool isEmpty() const override { return false; }
};
