#include <ctkException.h>
#include <ctkPluginConstants.h>
#include <ctkPluginFramework.h>
#include <ctkPluginFrameworkFactory.h>

#include <QtTest>

class TestServices : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_framework = ctkPluginFrameworkFactory().getFramework();
        m_framework->init();
        m_context = m_framework->getPluginContext();
    }

    void ordersReferencesByRankingThenRegistration()
    {
        QObject first, second, third, fourth, fifth;
        Register(&first, 0);
        Register(&second, 7);
        Register(&third, -1);
        Register(&fourth, 7);
        Register(&fifth);

        QList<QObject*> found;
        for (const auto& reference : m_context->getServiceReferences(QStringLiteral("QObject")))
            found.append(m_context->getService(reference));
        QCOMPARE(found, (QList<QObject*> {&second, &fourth, &first, &fifth, &third}));
        QCOMPARE(m_context->getService(m_context->getServiceReference(QStringLiteral("QObject"))), &second);
    }

    void findsAServiceUnderEachOfItsNames()
    {
        QTimer timer;
        const QStringList names {QStringLiteral("QTimer"), QStringLiteral("QObject")};
        m_context->registerService(names, &timer);

        for (const QString& name : names)
            QCOMPARE(m_context->getService(m_context->getServiceReference(name)), &timer);
        QVERIFY(!m_context->getServiceReference(QStringLiteral("QThread")));
        QVERIFY_EXCEPTION_THROWN(m_context->getServiceReferences(names.first(), QStringLiteral("(a=b)")),
            ctkInvalidArgumentException);
    }

    void refusesARegistration_data()
    {
        QTest::addColumn<bool>("hasObject");
        QTest::addColumn<QStringList>("names");
        const QString object = QStringLiteral("QObject");
        QTest::newRow("no object") << false << QStringList {object};
        QTest::newRow("no name") << true << QStringList {};
        QTest::newRow("empty name") << true << QStringList {object, QString()};
        QTest::newRow("name of another class") << true << QStringList {object, QStringLiteral("QTimer")};
    }

    void refusesARegistration()
    {
        QFETCH(bool, hasObject);
        QFETCH(QStringList, names);
        QObject object;
        QVERIFY_EXCEPTION_THROWN(
            m_context->registerService(names, hasObject ? &object : nullptr), ctkInvalidArgumentException);
        QVERIFY(m_context->getServiceReferences(QStringLiteral("QObject")).isEmpty());
    }

    void handsOutNoServiceThatIsGone_data()
    {
        QTest::addColumn<bool>("byDestruction");
        QTest::newRow("withdrawn") << false;
        QTest::newRow("destroyed") << true;
    }

    void handsOutNoServiceThatIsGone()
    {
        QFETCH(bool, byDestruction);
        auto service = std::make_unique<QObject>();
        ctkServiceRegistration registration = Register(service.get());
        const ctkServiceReference reference = registration.getReference();
        QCOMPARE(m_context->getService(reference), service.get());

        if (byDestruction)
            service.reset();
        else
            registration.unregister();
        QVERIFY(!reference);
        QVERIFY(!m_context->getService(reference));
        QVERIFY(!m_context->getServiceReference(QStringLiteral("QObject")));

        // A registrant may well delete its object first, but withdraws it once only.
        if (byDestruction)
            registration.unregister();
        QVERIFY_EXCEPTION_THROWN(registration.unregister(), ctkIllegalStateException);
        QVERIFY_EXCEPTION_THROWN(registration.getReference(), ctkIllegalStateException);
    }

    void countsUses()
    {
        QObject service;
        const ctkServiceReference reference = Register(&service).getReference();
        m_context->getService(reference);
        QVERIFY(m_context->ungetService(reference));
        QVERIFY(!m_context->ungetService(reference));
        QVERIFY_EXCEPTION_THROWN(m_context->getService({}), ctkInvalidArgumentException);
        QVERIFY_EXCEPTION_THROWN(m_context->ungetService({}), ctkInvalidArgumentException);
    }

    void endsTheContextWithTheFramework()
    {
        QObject service;
        const ctkServiceReference reference = Register(&service).getReference();
        m_framework->start();
        QCOMPARE(m_framework->getState(), ctkPlugin::ACTIVE);
        QVERIFY(reference);

        m_framework->stop();
        QCOMPARE(m_framework->getState(), ctkPlugin::RESOLVED);
        QVERIFY(!reference);
        QVERIFY(!m_framework->getPluginContext());
        QVERIFY_EXCEPTION_THROWN(Register(&service), ctkIllegalStateException);
        QVERIFY_EXCEPTION_THROWN(m_context->getService(reference), ctkIllegalStateException);

        m_framework->start();
        m_context = m_framework->getPluginContext();
        QVERIFY(!m_context->getServiceReference(QStringLiteral("QObject")));
    }

private:
    ctkServiceRegistration Register(QObject* service, const QVariant& ranking = QVariant())
    {
        ctkDictionary properties;
        if (ranking.isValid())
            properties.insert(ctkPluginConstants::SERVICE_RANKING, ranking);
        return m_context->registerService(QStringList {QStringLiteral("QObject")}, service, properties);
    }

    QSharedPointer<ctkPluginFramework> m_framework;
    ctkPluginContext* m_context = nullptr;
};

QTEST_GUILESS_MAIN(TestServices)
#include "tst_services.moc"
