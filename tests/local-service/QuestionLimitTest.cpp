#include "QuestionLimit.h"

#include <QTest>

using namespace Qt::StringLiterals;

class QuestionLimitTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void boundsAllTogetherInAnyMinute()
    {
        QuestionLimit limit(3);
        const QuestionLimit::Time begin;
        QVERIFY(limit.take(u"a"_s, begin));
        QVERIFY(limit.take(u"b"_s, begin + std::chrono::seconds(20)));
        QVERIFY(limit.take(u"c"_s, begin + std::chrono::seconds(40)));
        QVERIFY(!limit.take(u"d"_s, begin + std::chrono::seconds(59)));
        QVERIFY(limit.take(u"d"_s, begin + std::chrono::seconds(60)));
        QVERIFY(!limit.take(u"e"_s, begin + std::chrono::seconds(79)));
        QVERIFY(limit.take(u"e"_s, begin + std::chrono::seconds(80)));
    }

    void boundsOneUser()
    {
        QuestionLimit limit(1000);
        const QuestionLimit::Time begin;
        for (int i = 0; i < QuestionLimit::mostByOneUser; ++i)
            QVERIFY(limit.take(u"a"_s, begin));
        QVERIFY(!limit.take(u"a"_s, begin));
        QVERIFY(limit.take(u"b"_s, begin));
        QVERIFY(limit.take(u"a"_s, begin + std::chrono::minutes(1)));
    }
};

QTEST_APPLESS_MAIN(QuestionLimitTest)
#include "QuestionLimitTest.moc"
