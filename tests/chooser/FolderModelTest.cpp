#include "FolderModel.h"

#include "LocalFile.h"

#include <QAbstractItemModelTester>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

/// What the chooser lists of a folder, over a real one.
class FolderModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void foldersComeFirstAndNumbersInTheirOrder()
    {
        makeFolders({"zeta", "Álbum", "placas"});
        makeFiles({"foto 10.jpg", "foto 2.jpg", "Árbol.png", "banco.gif", "ñandú.webp", "nube.bmp",
                   "oso.tif"});
        QCOMPARE(names(),
                 QStringList({u"Álbum"_s, u"placas"_s, u"zeta"_s, u"Árbol.png"_s, u"banco.gif"_s,
                              u"foto 2.jpg"_s, u"foto 10.jpg"_s, u"nube.bmp"_s, u"ñandú.webp"_s,
                              u"oso.tif"_s}));
    }

    void onlyWhatIsNamedAsAnImageIsListed()
    {
        makeFolders({"carpeta.txt"});
        makeFiles({"a.JPG", "b.jfif", "c.heic", "d.svg", "e.pdf", "f", "g.jpg.txt", "jpg"});
        QCOMPARE(names(), QStringList({u"carpeta.txt"_s, u"a.JPG"_s, u"b.jfif"_s, u"c.heic"_s}));
    }

    void hiddenOnesAreLeftOut()
    {
        makeFolders({".oculta"});
        makeFiles({".oculto.png", ".png", "visible.png"});
        QCOMPARE(names(), QStringList({u"visible.png"_s}));
    }

    void whatIsNoRegularFileIsLeftOut()
    {
        makeFiles({"a.png"});
        makeFolders({"fotos"});
        QCOMPARE(::mkfifo(path("tubo.png").constData(), 0600), 0);
        QCOMPARE(::symlink("a.png", path("enlace.png").constData()), 0);
        QCOMPARE(::symlink("fotos", path("atajo").constData()), 0);
        QCOMPARE(::symlink("nada", path("roto.png").constData()), 0);
        QCOMPARE(names(), QStringList({u"atajo"_s, u"fotos"_s, u"a.png"_s, u"enlace.png"_s}));
        QVERIFY(at(0, "isFolder").toBool());
        QVERIFY(!at(3, "isFolder").toBool());
    }

    void namesThatAreNotUtf8AreShownAndFound()
    {
        const QByteArray name = "radiograf\xed"
                                "a.png";
        makeFiles({name});
        QCOMPARE(names(), QStringList({u"radiograf�a.png"_s}));
        QCOMPARE(localPath(at(0, "file").toUrl()).value(), path(name));
    }

    void namesAreTextOfOneLine_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QString>("shown");
        QTest::newRow("a line feed") << QByteArray("a\nb.png") << u"a�b.png"_s;
        QTest::newRow("turned around") << QByteArray("a\u202Egnp.png") << u"a�gnp.png"_s;
        QTest::newRow("a line separator") << QByteArray("a\u2028b.png") << u"a�b.png"_s;
        QTest::newRow("markup") << QByteArray("<b>a&amp;.png") << u"<b>a&amp;.png"_s;
        QTest::newRow("per cent") << QByteArray("100%25.png") << u"100%25.png"_s;
        QTest::newRow("an emoji of several")
            << QByteArray("👩‍⚕️.png") << u"👩‍⚕️.png"_s;
    }

    void namesAreTextOfOneLine()
    {
        QFETCH(QByteArray, name);
        makeFiles({name});
        QTEST(names().value(0), "shown");
        QCOMPARE(localPath(at(0, "file").toUrl()).value(), path(name));
    }

    void aFolderThatCannotBeReadSaysSo()
    {
        makeFiles({"a.png"});
        open(QUrl::fromLocalFile(m_folder->filePath(u"nada"_s)));
        QCOMPARE(m_model->state(), FolderModel::Unreadable);
        open(localFileUrl(path("a.png")));
        QCOMPARE(m_model->state(), FolderModel::Unreadable);
        open(QUrl(u"https://localhost/"_s));
        QCOMPARE(m_model->state(), FolderModel::Unreadable);
        QCOMPARE(m_model->count(), 0);
    }

    void anEmptyFolderIsComplete()
    {
        QCOMPARE(names(), QStringList());
        QCOMPARE(m_model->state(), FolderModel::Complete);
    }

    void aVastFolderIsListedInPart()
    {
        for (qsizetype i = 0; i <= maximumFolderEntries; ++i)
            makeFiles({QByteArray::number(i) + ".png"});
        open();
        QCOMPARE(m_model->state(), FolderModel::Incomplete);
        QCOMPARE(m_model->count(), int(maximumFolderEntries));
    }

    void theFolderThatIsOpenedLastIsShown()
    {
        makeFolders({"a", "b"});
        makeFiles({"a/una.png", "b/dos.png"});
        m_model = std::make_unique<FolderModel>();
        const QAbstractItemModelTester tester(m_model.get());
        m_model->setFolder(localFileUrl(path("a")));
        m_model->setFolder(localFileUrl(path("b")));
        QCOMPARE(m_model->count(), 0);
        QTRY_COMPARE(m_model->state(), FolderModel::Complete);
        QCOMPARE(shownNames(), QStringList({u"dos.png"_s}));
    }

    void theWayUpEndsAtTheRoot()
    {
        makeFolders({"a"});
        open(localFileUrl(path("a")));
        QCOMPARE(m_model->folderName(), u"a"_s);
        QCOMPARE(m_model->parentFolder(), localFileUrl(m_folder->path().toUtf8()));
        open(localFileUrl("/tmp"));
        QCOMPARE(m_model->parentFolder(), localFileUrl("/"));
        open(localFileUrl("/"));
        QCOMPARE(m_model->folderName(), u"Equipo"_s);
        QCOMPARE(m_model->parentFolder(), QUrl());
    }

    void theFolderThatOneCameFromIsFound()
    {
        makeFolders({"a", "b"});
        open();
        QCOMPARE(m_model->rowOf(localFileUrl(path("b"))), 1);
        QCOMPARE(m_model->rowOf(localFileUrl(path("c"))), -1);
        QCOMPARE(m_model->rowOf(QUrl()), -1);
    }

private:
    QByteArray path(const QByteArray &name) const { return m_folder->path().toUtf8() + '/' + name; }

    void makeFolders(const QByteArrayList &names) const
    {
        for (const QByteArray &name : names)
            QCOMPARE(::mkdir(path(name).constData(), 0700), 0);
    }

    void makeFiles(const QByteArrayList &names) const
    {
        // Qt knows no names that are not UTF-8.
        for (const QByteArray &name : names) {
            const int file = ::creat(path(name).constData(), 0600);
            QVERIFY(file >= 0);
            ::close(file);
        }
    }

    void open(const QUrl &folder)
    {
        m_model = std::make_unique<FolderModel>();
        m_model->setFolder(folder);
        QTRY_VERIFY_WITH_TIMEOUT(m_model->state() != FolderModel::Reading, 30'000);
    }

    void open() { open(localFileUrl(m_folder->path().toUtf8())); }

    QVariant at(int row, const char *role) const
    {
        return m_model->data(m_model->index(row), m_model->roleNames().key(role));
    }

    QStringList shownNames() const
    {
        QStringList shown;
        for (int row = 0; row < m_model->count(); ++row)
            shown.append(at(row, "name").toString());
        return shown;
    }

    QStringList names()
    {
        open();
        return shownNames();
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<FolderModel> m_model;
};

QTEST_GUILESS_MAIN(FolderModelTest)

#include "FolderModelTest.moc"
