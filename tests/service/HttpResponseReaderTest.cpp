#include "HttpResponseReader.h"

#include <QTest>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(HttpResponseReader::State)

class HttpResponseReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reads_data();
    void reads();
    void readsManySmallChunks();
    void boundsWhatIsNoBody_data();
    void boundsWhatIsNoBody();
};

void HttpResponseReaderTest::reads_data()
{
    using State = HttpResponseReader::State;
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<State>("state");
    QTest::addColumn<State>("stateAtTheEnd");
    QTest::addColumn<int>("statusCode");
    QTest::addColumn<QByteArray>("body");

    const auto row = [](const char *name, const QByteArray &bytes, State state, State stateAtTheEnd,
                        int statusCode, const QByteArray &body = {}) {
        QTest::newRow(name) << bytes << state << stateAtTheEnd << statusCode << body;
    };
    const auto complete = [&row](const char *name, const QByteArray &bytes, int statusCode,
                                 const QByteArray &body = {}) {
        row(name, bytes, State::Complete, State::Complete, statusCode, body);
    };
    const auto invalid = [&row](const char *name, const QByteArray &bytes, int statusCode = 200,
                                const QByteArray &body = {}) {
        row(name, bytes, State::Invalid, State::Invalid, statusCode, body);
    };
    const auto unfinished
        = [&row](const char *name, const QByteArray &bytes, State state, int statusCode,
                 const QByteArray &body = {}) { row(name, bytes, state, state, statusCode, body); };
    const QByteArray ok = "HTTP/1.1 200 OK\r\n";
    const QByteArray chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";

    complete("known length", ok + "Content-Length: 3\r\n\r\nuno", 200, "uno");
    complete("length zero", ok + "Content-Length: 0\r\n\r\n", 200);
    complete("the same length twice", ok + "Content-Length: 3\r\ncontent-length:3\r\n\r\nuno", 200,
             "uno");
    complete("more than announced", ok + "Content-Length: 3\r\n\r\nuno, dos", 200, "uno");
    complete("chunks", chunked + "3\r\nuno\r\n4\r\n dos\r\n0\r\n\r\n", 200, "uno dos");
    complete("chunk sizes of every form",
             chunked + "03\r\nuno\r\nA ;x=\"y\"\r\n0123456789\r\na\r\n0123456789\r\n000\r\n\r\n",
             200, "uno01234567890123456789");
    complete("line ends inside a chunk", chunked + "5\r\na\r\nb\n\r\n0\r\n\r\n", 200, "a\r\nb\n");
    complete("trailers", chunked + "3\r\nuno\r\n0\r\nX: y\r\nZ: 0\r\n\r\n", 200, "uno");
    complete("chunks although a length is given",
             ok + "Content-Length: 1\r\nTransfer-Encoding: Chunked\r\n\r\n3\r\nuno\r\n0\r\n\r\n",
             200, "uno");
    complete("line feeds alone", "HTTP/1.1 200 OK\nContent-Length: 3\n\nuno", 200, "uno");
    complete("no reason", "HTTP/1.1 200\r\nContent-Length: 3\r\n\r\nuno", 200, "uno");
    complete("an empty reason", "HTTP/1.1 200 \r\nContent-Length: 3\r\n\r\nuno", 200, "uno");
    complete("not compressed", ok + "Content-Encoding: Identity\r\nContent-Length: 1\r\n\r\na", 200,
             "a");
    complete("a folded field", ok + "X: a\r\n Content-Length: 9\r\nContent-Length: 1\r\n\r\na", 200,
             "a");
    complete("interim responses",
             "HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 103 Early\r\nContent-Length: 9\r\n\r\n" + ok
                 + "Content-Length: 1\r\n\r\na",
             200, "a");
    complete("no content", "HTTP/1.1 204 None\r\nContent-Length: 3\r\n\r\nuno", 204);
    complete("failure", "HTTP/1.1 404 Not Found\r\nContent-Length: 3\r\n\r\nuno", 404);
    complete("failure without length", "HTTP/1.1 500 Error\r\n\r\nuno", 500);
    complete("compressed failure", "HTTP/1.1 500 Error\r\nContent-Encoding: gzip\r\n\r\n", 500);
    complete("redirect", "HTTP/1.1 307 Temporary\r\nLocation: /x\r\n\r\n", 307);
    complete("another protocol", "HTTP/1.1 101 Switching\r\nUpgrade: x\r\n\r\n", 101);
    complete("greatest status", "HTTP/1.1 999 ?\r\n\r\n", 999);

    row("until the end", ok + "\r\nuno", State::Body, State::Complete, 200, "uno");
    row("until the end, nothing", ok + "\r\n", State::Body, State::Complete, 200);
    row("HTTP 1.0", "HTTP/1.0 200 OK\r\n\r\nuno", State::Body, State::Complete, 200, "uno");

    unfinished("nothing", {}, State::Head, 0);
    unfinished("part of a protocol", "HTT", State::Head, 0);
    unfinished("part of a status line", "HTTP/1.1 20", State::Head, 0);
    unfinished("part of a head", ok + "Content-Length: 3\r\n", State::Head, 200);
    unfinished("only an interim response", "HTTP/1.1 100 Continue\r\n\r\n", State::Head, 100);
    unfinished("shorter than announced", ok + "Content-Length: 4\r\n\r\nuno", State::Body, 200,
               "uno");
    unfinished("cut in a chunk", chunked + "4\r\nuno", State::Body, 200, "uno");
    unfinished("cut after a chunk", chunked + "3\r\nuno\r\n", State::Body, 200, "uno");
    unfinished("cut in a chunk's size", chunked + "3\r\nuno\r\n1", State::Body, 200, "uno");
    unfinished("cut before the trailers' end", chunked + "3\r\nuno\r\n0\r\n", State::Body, 200,
               "uno");

    invalid("another protocol's greeting", "SSH-2.0-OpenSSH\r\n", 0);
    invalid("garbage without a line", "\x01\x02\xFF", 0);
    invalid("a body without head", "uno\ndos\n", 0);
    invalid("an empty line first", "\r\n" + ok + "\r\n", 0);
    invalid("HTTP 2", "HTTP/2 200 OK\r\n", 0);
    invalid("no status", "HTTP/1.1\r\n", 0);
    invalid("two digits", "HTTP/1.1 20 OK\r\n", 0);
    invalid("four digits", "HTTP/1.1 2000 OK\r\n", 0);
    invalid("no digits", "HTTP/1.1 abc OK\r\n", 0);
    invalid("a sign", "HTTP/1.1 +20 OK\r\n", 0);
    invalid("status below 100", "HTTP/1.1 099 ?\r\n", 0);
    invalid("garbage after an interim response", "HTTP/1.1 100 Continue\r\n\r\nuno\n", 100);
    invalid("two lengths", ok + "Content-Length: 3\r\nContent-Length: 4\r\n\r\nuno");
    invalid("a list of lengths", ok + "Content-Length: 3, 3\r\n\r\nuno");
    invalid("a negative length", ok + "Content-Length: -3\r\n\r\nuno");
    invalid("a length that is no number", ok + "Content-Length: 0x3\r\n\r\nuno");
    invalid("an empty length", ok + "Content-Length:\r\n\r\nuno");
    invalid("a length beyond measure", ok + "Content-Length: 9223372036854775808\r\n\r\nuno");
    invalid("compressed", ok + "Content-Encoding: gzip\r\nContent-Length: 3\r\n\r\nuno");
    invalid("compressed in transfer", ok + "Transfer-Encoding: gzip, chunked\r\n\r\n3\r\nuno");
    invalid("chunked twice",
            ok + "Transfer-Encoding: chunked\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nuno");
    invalid("a chunk size that is no number", chunked + "3\r\nuno\r\nxyz\r\n", 200, "uno");
    invalid("a negative chunk size", chunked + "-3\r\nuno\r\n");
    invalid("a chunk size with prefix", chunked + "0x3\r\nuno\r\n");
    invalid("an empty chunk size", chunked + "\r\nuno\r\n");
    invalid("a chunk size beyond measure", chunked + "8000000000000000\r\nuno\r\n");
    invalid("a chunk longer than its size", chunked + "3\r\nunos\r\n", 200, "uno");
}

void HttpResponseReaderTest::reads()
{
    QFETCH(QByteArray, bytes);
    QFETCH(HttpResponseReader::State, state);
    QFETCH(HttpResponseReader::State, stateAtTheEnd);
    QFETCH(int, statusCode);
    QFETCH(QByteArray, body);

    for (const qsizetype pieceSize : {qsizetype(1), qsizetype(2), qsizetype(5), bytes.size() + 1}) {
        HttpResponseReader reader;
        QByteArray read;
        for (qsizetype i = 0; i < bytes.size(); i += pieceSize)
            read += reader.read(
                QByteArrayView(bytes).sliced(i).first(std::min(pieceSize, bytes.size() - i)));
        QCOMPARE(reader.state(), state);
        QCOMPARE(reader.statusCode(), statusCode);
        QCOMPARE(read, body);
        reader.endOfConnection();
        QCOMPARE(reader.state(), stateAtTheEnd);
    }
}

void HttpResponseReaderTest::readsManySmallChunks()
{
    HttpResponseReader reader;
    reader.read("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
    qsizetype size = 0;
    for (qsizetype i = 0; i < HttpResponseReader::maximumOverhead; ++i)
        size += reader.read("1\r\na\r\n").size();
    QCOMPARE(size, HttpResponseReader::maximumOverhead);
    QCOMPARE(reader.state(), HttpResponseReader::State::Body);
}

void HttpResponseReaderTest::boundsWhatIsNoBody_data()
{
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<QByteArray>("rest");
    const QByteArray ok = "HTTP/1.1 200 OK\r\n";
    const QByteArray chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
    QTest::newRow("a status line") << "HTTP/1.1 200 "_ba
                                   << "a"_ba;
    QTest::newRow("a field") << ok + "X: "
                             << "a"_ba;
    QTest::newRow("fields") << ok << "X: a\r\n"_ba;
    QTest::newRow("interim responses") << ""_ba
                                       << "HTTP/1.1 100 Continue\r\n\r\n"_ba;
    QTest::newRow("a chunk's size") << chunked << "0"_ba;
    QTest::newRow("a chunk's extension") << chunked + "1;"
                                         << "a"_ba;
    QTest::newRow("trailers") << chunked + "0\r\n"
                              << "X: a\r\n"_ba;
}

void HttpResponseReaderTest::boundsWhatIsNoBody()
{
    QFETCH(QByteArray, start);
    QFETCH(QByteArray, rest);
    HttpResponseReader reader;
    reader.read(start);
    qsizetype size = start.size();
    while (reader.state() != HttpResponseReader::State::Invalid
           && size < 2 * HttpResponseReader::maximumOverhead) {
        reader.read(rest);
        size += rest.size();
    }
    QCOMPARE(reader.state(), HttpResponseReader::State::Invalid);
    QVERIFY(size > HttpResponseReader::maximumOverhead);
}

QTEST_APPLESS_MAIN(HttpResponseReaderTest)
#include "HttpResponseReaderTest.moc"
