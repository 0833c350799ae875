#include "StreamingError.h"

#include <QTest>

using namespace Qt::StringLiterals;

class StreamingErrorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void describesItself_data()
    {
        QTest::addColumn<QString>("description");
        QTest::addColumn<QString>("expected");

        const auto serverError
            = [](int statusCode) { return StreamingError::serverError(statusCode).description(); };
        QTest::newRow("502") << serverError(502) << u"Error del servidor (502)."_s;
        QTest::newRow("404") << serverError(404) << u"Error del servidor (404)."_s;
        QTest::newRow("0") << serverError(0) << u"Error del servidor (0)."_s;
        QTest::newRow("-1") << serverError(-1) << u"Error del servidor (-1)."_s;
        QTest::newRow("1000") << serverError(1000) << u"Error del servidor (1000)."_s;
        QTest::newRow("invalid") << StreamingError::invalidResponse().description()
                                 << u"La respuesta del servidor no es válida."_s;
    }
    void describesItself()
    {
        QFETCH(QString, description);
        QFETCH(QString, expected);
        QCOMPARE(description, expected);
    }
};

QTEST_APPLESS_MAIN(StreamingErrorTest)
#include "StreamingErrorTest.moc"
