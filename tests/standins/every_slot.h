#pragma once

#include "vtr_parameters.h"

#include <QMetaMethod>
#include <QVariant>
#include <QVector>

/// Calls every slot of an object's own class with default-constructed values.
inline void CallEverySlot(QObject* object)
{
    RegisterVTParameters();
    const QMetaObject* type = object->metaObject();
    QVariantMap conditions;
    quint64 null = 0; // stands for pointers and enumerations, which have no name at run time
    for (int i = type->methodOffset(); i < type->methodCount(); ++i) {
        const QMetaMethod method = type->method(i);
        if (method.methodType() != QMetaMethod::Slot || method.returnType() != QMetaType::Void)
            continue;
        QVector<QVariant> values(method.parameterCount());
        void* arguments[8] = {};
        for (int k = 0; k < method.parameterCount(); ++k) {
            values[k] = QVariant(method.parameterType(k), nullptr);
            const bool isReference = method.parameterTypes().at(k).endsWith('&');
            void* const unnamed = isReference ? static_cast<void*>(&conditions) : &null;
            const bool isUnnamed = method.parameterType(k) == QMetaType::UnknownType;
            arguments[k + 1] = isUnnamed ? unnamed : values[k].data();
        }
        QMetaObject::metacall(object, QMetaObject::InvokeMetaMethod, i, arguments);
    }
}
