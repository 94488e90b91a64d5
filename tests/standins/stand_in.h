#pragma once

#include "tests/support/test_tables.h"
#include "vtr_baseinterface.h"

#include <QObject>
#include <QStringList>
#include <QVariant>

#include <stdexcept>
#include <utility>

/// The recorded calls of all stand-ins, in order. A new `Client` empties it.
inline QStringList journal;

enum class Failure { None, Initialize, Show, Throws };

/// The life cycle of a stand-in service: succeeds unless told otherwise and records its calls.
template <class Interface>
class StandIn : public Interface
{
public:
    /// Status that `Show` hands out and that requests must bring back.
    static constexpr int HandedOut = 7;

    /// Counts the connections of a signal, named by `SIGNAL()`.
    using QObject::receivers;

    int Initialize(const QVariantMap& parameters) override
    {
        Called(parameters.contains("plugin_context"_s) ? "Initialize"_s : "Initialize without context"_s);
        if (failure == Failure::Throws)
            throw std::runtime_error("the stand-in throws");
        return failure == Failure::Initialize ? -1 : 0;
    }
    int Uninitialize() override { return Called("Uninitialize"_s); }
    int Show(QVariant& result, const QVariantMap& /*parameters*/) override
    {
        result = HandedOut;
        Called("Show"_s);
        return failure == Failure::Show ? -1 : 0;
    }
    int Hide(const QVariant& request) override { return Called("Hide %1"_s.arg(request.toInt())); }
    int Activate(const QVariant& request, const QVariantMap& /*parameters*/) override
    {
        return Called("Activate %1"_s.arg(request.toInt()));
    }
    int Close(const QVariant& /*request*/) override { return 0; }

    Failure failure = Failure::None;
    QStringList calls;

private:
    int Called(const QString& call)
    {
        calls.append(call);
        return 0;
    }
};
