#include "ContentView.h"

#include "ConversationCoding.h"
#include "HistoryStore.h"
#include "MemoryPreferenceBackend.h"
#include "PreferenceStore.h"
#include "UuidText.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

/// A main screen on a preference store of its own.
struct Screen
{
    PreferenceStore store{
        std::make_unique<MemoryPreferenceBackend>(std::make_shared<PreferenceMemory>())};
    HistoryStore history{&store};
    ContentView view{&store, &history};
    /// Keys written or removed, in order; the history key once per save.
    QSignalSpy writes{&store, &PreferenceStore::changed};

    qsizetype saves() const
    {
        return std::count_if(writes.cbegin(), writes.cend(), [](const QList<QVariant> &write) {
            return write.constFirst().toString() == HistoryStore::historyKey;
        });
    }
    const QList<Conversation> &conversations() { return view.conversations()->conversations(); }
    QUuid selected() const { return view.selectedConversationID().value_or(QUuid()); }
    QList<Conversation> stored() const
    {
        const auto document = store.data(HistoryStore::historyKey);
        if (!document)
            return {};
        const auto decoded = decodeConversations(*document);
        const auto *list = std::get_if<QList<Conversation>>(&decoded);
        return list ? *list : QList<Conversation>();
    }
    void attachImage() { view.setSelectedImage("bytes", u"foto.png"_s, u"image/png"_s); }
};

ChatMessage message(const QString &text, bool isUser = true)
{
    return {.id = QUuid::createUuid(),
            .text = text,
            .isUser = isUser,
            .attachmentName = std::nullopt,
            .imagePreviewData = std::nullopt};
}

Conversation conversation(const QString &title, const QList<ChatMessage> &messages = {})
{
    return {.id = QUuid::createUuid(), .title = title, .messages = messages};
}

} // namespace

class ContentViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void beginsWithInitialValues();
    void firstRunMakesOneConversation();
    void emptyStoredArrayCountsAsMissing();
    void anUnreadableDocumentIsReplaced();
    void loadsAndSelectsTheFirst();
    void loadingAStoredListSavesNothing();
    void newConversationTwiceMakesOne();
    void reusesTheFirstUntouchedConversationWhereItStands();
    void titledOrUsedConversationsAreNotReused();
    void newConversationEmptiesTheComposer();
    void newConversationIsSavedLast();
    void selectingEmptiesTheComposerAndSavesNothing();
    void selectingAnUnknownConversationShowsNothing();
    void requestsToClear();
    void settingsCloseBeforeTheAlertIsPresented();
    void clearsTheHistory();
    void appendsToTheSelectedConversationAndSaves();
    void appendWithoutSelectionIsDropped();
    void titles_data();
    void titles();
    void titlesOnlyOnce();
    void appendsPiecesByIDWithoutSaving();
    void piecesGoToTheFirstOfEachID();
    void piecesForAMissingMessageAreDropped();
    void trimsWithoutSaving();
    void noticeEndsLoadingAndSaves();
    void noticeEndsLoadingFirst();
    void noticeWithoutAConversationOnlyEndsLoading();
    void replyHasStarted();
    void replyHasStartedInTheConversationShown();
    void replyStartsOnce();
    void turningImageAnalysisOffDropsThePendingImage();
    void keepsTheComposersText();
    void clearingTheImageTellsOnce();
    void preferencesAreSharedWithTheStore();
    void textScaleFollowsTheTextSize_data();
    void textScaleFollowsTheTextSize();
    void imageErrorIsDismissed();
    void viewerOpensAndCloses();
    void viewerHasItsImageWhenItIsPresented();
    void viewerClosesBeforeItsImageGoes();
    void unnamedImageIsCalledImagen();
};

void ContentViewTest::beginsWithInitialValues()
{
    Screen screen;
    const ContentView &view = screen.view;
    QCOMPARE(view.messageText(), u""_s);
    QVERIFY(!view.isLoading());
    QVERIFY(screen.conversations().isEmpty());
    QVERIFY(!view.selectedConversationID());
    QVERIFY(!view.showClearHistoryConfirmation());
    QVERIFY(!view.showSettings());
    QVERIFY(!view.showImageImporter());
    QVERIFY(!view.selectedImageData());
    QVERIFY(!view.selectedImageName());
    QVERIFY(!view.selectedImageMimeType());
    QVERIFY(!view.imageImportError());
    QVERIFY(!view.isDropTargeted());
    QVERIFY(!view.enlargedImageData());
    QVERIFY(!view.showImageViewer());
    QCOMPARE(view.appearanceRawValue(), u"system"_s);
    QCOMPARE(view.textSizeRawValue(), u"standard"_s);
    QVERIFY(view.imageAnalysisEnabled());
    QVERIFY(view.showImagePreviews());
    QVERIFY(!view.replyHasStarted());
    QCOMPARE(screen.view.currentMessages()->count(), 0);
    QCOMPARE(screen.writes.count(), 0);
}

void ContentViewTest::firstRunMakesOneConversation()
{
    Screen screen;
    screen.view.loadHistory();
    QCOMPARE(screen.conversations().size(), 1);
    QCOMPARE(screen.conversations().at(0).title, u"Nueva conversación"_s);
    QVERIFY(screen.conversations().at(0).messages.isEmpty());
    QCOMPARE(screen.selected(), screen.conversations().at(0).id);
    QCOMPARE(screen.stored(), screen.conversations());
}

void ContentViewTest::emptyStoredArrayCountsAsMissing()
{
    Screen screen;
    screen.store.setData(HistoryStore::historyKey, [] { return QByteArray("[]"); });
    screen.view.loadHistory();
    QCOMPARE(screen.conversations().size(), 1);
    QCOMPARE(screen.stored(), screen.conversations());
}

void ContentViewTest::anUnreadableDocumentIsReplaced()
{
    Screen screen;
    screen.store.setData(HistoryStore::historyKey, [] {
        return QByteArray(R"([{"id":"3F2504E0-4F89-11D3-9A0C-0305E82C3301","title":"Uno",)"
                          R"("messages":[]},{"id":"3F2504E0-4F89-11D3-9A0C-0305E82C3302",)"
                          R"("messages":[]}])");
    });
    screen.view.loadHistory();
    QCOMPARE(screen.conversations().size(), 1);
    QCOMPARE(screen.conversations().at(0).title, defaultConversationTitle);
    QCOMPARE(screen.selected(), screen.conversations().at(0).id);
    QCOMPARE(screen.stored(), screen.conversations());
}

void ContentViewTest::loadsAndSelectsTheFirst()
{
    Screen screen;
    const QList<Conversation> stored{conversation(u"Uno"_s, {message(u"a"_s)}),
                                     conversation(u"Dos"_s)};
    screen.store.setData(HistoryStore::historyKey,
                         [stored] { return encodeConversations(stored); });
    screen.view.loadHistory();
    QCOMPARE(screen.conversations(), stored);
    QCOMPARE(screen.selected(), stored.at(0).id);
    QCOMPARE(screen.view.currentMessages()->messages(), stored.at(0).messages);
}

void ContentViewTest::loadingAStoredListSavesNothing()
{
    Screen screen;
    const QList<Conversation> stored{conversation(u"Uno"_s)};
    screen.store.setData(HistoryStore::historyKey,
                         [stored] { return encodeConversations(stored); });
    screen.writes.clear();
    screen.view.loadHistory();
    QCOMPARE(screen.saves(), 0);
}

void ContentViewTest::newConversationTwiceMakesOne()
{
    Screen screen;
    screen.view.loadHistory();
    screen.view.appendMessage(message(u"hola"_s));
    screen.writes.clear();

    screen.view.startNewConversation();
    QCOMPARE(screen.conversations().size(), 2);
    QCOMPARE(screen.saves(), 1);
    const QUuid fresh = screen.conversations().at(0).id;
    QCOMPARE(screen.selected(), fresh);

    screen.view.startNewConversation();
    QCOMPARE(screen.conversations().size(), 2);
    QCOMPARE(screen.saves(), 1);
    QCOMPARE(screen.selected(), fresh);
}

void ContentViewTest::reusesTheFirstUntouchedConversationWhereItStands()
{
    Screen screen;
    const QList<Conversation> stored{conversation(u"Uno"_s, {message(u"a"_s)}),
                                     conversation(defaultConversationTitle),
                                     conversation(defaultConversationTitle)};
    screen.store.setData(HistoryStore::historyKey,
                         [stored] { return encodeConversations(stored); });
    screen.view.loadHistory();
    screen.view.startNewConversation();
    QCOMPARE(screen.conversations(), stored);
    QCOMPARE(screen.selected(), stored.at(1).id);
}

void ContentViewTest::titledOrUsedConversationsAreNotReused()
{
    Screen screen;
    const QList<Conversation> stored{conversation(u"Titulada"_s),
                                     conversation(defaultConversationTitle, {message(u"a"_s)})};
    screen.store.setData(HistoryStore::historyKey,
                         [stored] { return encodeConversations(stored); });
    screen.view.loadHistory();
    screen.view.startNewConversation();
    QCOMPARE(screen.conversations().size(), 3);
    QCOMPARE(screen.conversations().at(0).title, defaultConversationTitle);
    QCOMPARE(screen.selected(), screen.conversations().at(0).id);
}

void ContentViewTest::newConversationEmptiesTheComposer()
{
    Screen screen;
    screen.view.loadHistory();
    for (const bool reused : {true, false}) {
        if (!reused)
            screen.view.appendMessage(message(u"hola"_s));
        screen.view.setMessageText(u"borrador"_s);
        screen.attachImage();
        screen.view.startNewConversation();
        QCOMPARE(screen.view.messageText(), u""_s);
        QVERIFY(!screen.view.selectedImageData());
        QVERIFY(!screen.view.selectedImageName());
        QVERIFY(!screen.view.selectedImageMimeType());
    }
}

void ContentViewTest::newConversationIsSavedLast()
{
    Screen screen;
    screen.view.setMessageText(u"borrador"_s);
    screen.attachImage();
    std::optional<bool> wasAllElseDone;
    connect(&screen.store, &PreferenceStore::changed, &screen.view, [&] {
        wasAllElseDone = !screen.selected().isNull() && screen.view.messageText().isEmpty()
            && !screen.view.hasSelectedImage();
    });
    screen.view.startNewConversation();
    QCOMPARE(wasAllElseDone, std::optional(true));
}

void ContentViewTest::selectingEmptiesTheComposerAndSavesNothing()
{
    Screen screen;
    screen.view.loadHistory();
    screen.writes.clear();
    screen.view.setMessageText(u"borrador"_s);
    screen.attachImage();
    screen.view.selectConversation(screen.selected());
    QCOMPARE(screen.view.messageText(), u""_s);
    QVERIFY(!screen.view.selectedImageData());
    QVERIFY(!screen.view.selectedImageName());
    QVERIFY(!screen.view.selectedImageMimeType());
    QCOMPARE(screen.saves(), 0);
}

void ContentViewTest::selectingAnUnknownConversationShowsNothing()
{
    Screen screen;
    screen.view.loadHistory();
    screen.view.appendMessage(message(u"hola"_s));
    const QUuid unknown = QUuid::createUuid();
    screen.view.selectConversation(unknown);
    QCOMPARE(screen.selected(), unknown);
    QCOMPARE(screen.view.currentMessages()->count(), 0);
    screen.view.appendMessage(message(u"perdido"_s));
    screen.view.updateTitle(u"perdido"_s);
    QCOMPARE(screen.conversations().at(0).messages.size(), 1);
    QCOMPARE(screen.conversations().at(0).title, defaultConversationTitle);
}

void ContentViewTest::requestsToClear()
{
    Screen screen;
    screen.view.requestClearHistory();
    QVERIFY(screen.view.showClearHistoryConfirmation());
}

void ContentViewTest::settingsCloseBeforeTheAlertIsPresented()
{
    Screen screen;
    screen.view.loadHistory();
    const QList<Conversation> before = screen.conversations();
    screen.view.setShowSettings(true);
    QSignalSpy presented(&screen.view, &ContentView::showClearHistoryConfirmationChanged);
    QElapsedTimer sinceRequest;
    sinceRequest.start();
    screen.view.requestClearHistoryFromSettings();
    // Timers fire in the order in which they are due, however busy the machine is.
    std::optional<bool> wasPresentedInTime;
    QTimer::singleShot(210, Qt::PreciseTimer, &screen.view,
                       [&] { wasPresentedInTime = screen.view.showClearHistoryConfirmation(); });
    QVERIFY(!screen.view.showSettings());
    QVERIFY(!screen.view.showClearHistoryConfirmation());
    QVERIFY(presented.wait());
    QVERIFY(sinceRequest.elapsed() >= 200);
    QVERIFY(screen.view.showClearHistoryConfirmation());
    QTRY_COMPARE(wasPresentedInTime, std::optional(true));
    screen.view.setShowClearHistoryConfirmation(false);
    QCOMPARE(screen.conversations(), before);
}

void ContentViewTest::clearsTheHistory()
{
    Screen screen;
    screen.view.loadHistory();
    screen.view.appendMessage(message(u"hola"_s));
    screen.view.startNewConversation();
    screen.view.setMessageText(u"borrador"_s);
    screen.attachImage();
    const QUuid previous = screen.selected();

    QList<bool> wasThere;
    bool wasAllElseDone = true;
    connect(&screen.store, &PreferenceStore::changed, &screen.view, [&](const QString &key) {
        wasThere.append(screen.store.data(key).has_value());
        wasAllElseDone = wasAllElseDone && screen.conversations().size() == 1
            && screen.selected() == screen.conversations().at(0).id
            && screen.view.messageText().isEmpty() && !screen.view.hasSelectedImage();
    });
    screen.view.clearHistory();
    QCOMPARE(wasThere, (QList{false, true})); // Removed, then saved
    QVERIFY(wasAllElseDone);
    QCOMPARE(screen.conversations().size(), 1);
    QCOMPARE(screen.conversations().at(0).title, defaultConversationTitle);
    QVERIFY(screen.conversations().at(0).messages.isEmpty());
    QVERIFY(screen.selected() != previous);
    QCOMPARE(screen.selected(), screen.conversations().at(0).id);
    QCOMPARE(screen.view.messageText(), u""_s);
    QVERIFY(!screen.view.selectedImageData());
    QCOMPARE(screen.stored(), screen.conversations());
}

void ContentViewTest::appendsToTheSelectedConversationAndSaves()
{
    Screen screen;
    screen.view.loadHistory();
    screen.writes.clear();
    const ChatMessage first = message(u"uno"_s);
    const ChatMessage second = message(u"dos"_s, false);
    screen.view.appendMessage(first);
    screen.view.appendMessage(second);
    QCOMPARE(screen.view.currentMessages()->messages(), (QList{first, second}));
    QCOMPARE(screen.saves(), 2);
    QCOMPARE(screen.stored(), screen.conversations());
}

void ContentViewTest::appendWithoutSelectionIsDropped()
{
    Screen screen;
    screen.view.appendMessage(message(u"hola"_s));
    screen.view.updateTitle(u"hola"_s);
    QVERIFY(screen.conversations().isEmpty());
    QCOMPARE(screen.saves(), 0);
}

void ContentViewTest::titles_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("title");

    const QString thirtyFour = u"abcdefghijklmnopqrstuvwxyzabcdefgh"_s;
    const QString family = u"👨‍👩‍👧‍👦"_s;
    const QString accented = u"e\u0301\u0323"_s;

    QTest::newRow("short") << u"¿Qué es la célula?"_s << u"¿Qué es la célula?"_s;
    QTest::newRow("34") << thirtyFour << thirtyFour;
    QTest::newRow("35") << thirtyFour + u'i' << thirtyFour + u'…';
    QTest::newRow("200") << u"x"_s.repeated(200) << u"x"_s.repeated(34) + u'…';
    QTest::newRow("two lines") << u"uno\ndos"_s << u"uno dos"_s;
    QTest::newRow("every line feed") << u"a\n\nb\nc"_s << u"a  b c"_s;
    QTest::newRow("carriage return stays") << u"a\rb"_s << u"a\rb"_s;
    QTest::newRow("34 families") << family.repeated(34) << family.repeated(34);
    QTest::newRow("35 families") << family.repeated(35) << family.repeated(34) + u'…';
    QTest::newRow("34 with combining marks") << accented.repeated(34) << accented.repeated(34);
    QTest::newRow("35 with combining marks")
        << accented.repeated(35) << accented.repeated(34) + u'…';
    QTest::newRow("empty") << u""_s << u""_s;
}

void ContentViewTest::titles()
{
    QFETCH(QString, text);
    QFETCH(QString, title);
    Screen screen;
    screen.view.loadHistory();
    screen.writes.clear();
    screen.view.updateTitle(text);
    QCOMPARE(screen.conversations().at(0).title, title);
    QCOMPARE(screen.saves(), 1);
    QCOMPARE(screen.stored(), screen.conversations());
}

void ContentViewTest::titlesOnlyOnce()
{
    Screen screen;
    screen.view.loadHistory();
    screen.view.updateTitle(u"Primera"_s);
    screen.writes.clear();
    screen.view.updateTitle(u"Segunda"_s);
    QCOMPARE(screen.conversations().at(0).title, u"Primera"_s);
    QCOMPARE(screen.saves(), 0);
}

void ContentViewTest::appendsPiecesByIDWithoutSaving()
{
    Screen screen;
    screen.view.loadHistory();
    const ChatMessage reply = message(u""_s, false);
    screen.view.appendMessage(reply);
    const QUuid home = screen.selected();
    screen.view.startNewConversation();
    screen.writes.clear();
    screen.view.appendChunk(u"línea\n"_s, reply.id, home);
    screen.view.appendChunk(u"otra\n"_s, reply.id, home);
    QCOMPARE(screen.conversations().at(1).messages.at(0).text, u"línea\notra\n"_s);
    QCOMPARE(screen.view.currentMessages()->count(), 0);
    QCOMPARE(screen.saves(), 0);
}

void ContentViewTest::piecesGoToTheFirstOfEachID()
{
    Screen screen;
    const ChatMessage reply = message(u"ya"_s, false);
    const Conversation twin = conversation(u"Una"_s, {reply, reply});
    screen.store.setData(HistoryStore::historyKey,
                         [twin] { return encodeConversations({twin, twin}); });
    screen.view.loadHistory();
    screen.view.appendChunk(u" está "_s, reply.id, twin.id);
    screen.view.trimMessage(reply.id, twin.id);
    screen.view.appendMessage(message(u"más"_s));
    const QList<ChatMessage> &messages = screen.conversations().at(0).messages;
    QCOMPARE(messages.size(), 3);
    QCOMPARE(messages.at(0).text, u"ya está"_s);
    QCOMPARE(messages.at(1), reply);
    QCOMPARE(screen.conversations().at(1), twin);
}

void ContentViewTest::piecesForAMissingMessageAreDropped()
{
    Screen screen;
    screen.view.loadHistory();
    const ChatMessage reply = message(u"ya"_s, false);
    screen.view.appendMessage(reply);
    const QUuid home = screen.selected();
    screen.view.appendChunk(u"x"_s, QUuid::createUuid(), home);
    screen.view.trimMessage(QUuid::createUuid(), home);
    QCOMPARE(screen.conversations().at(0).messages.at(0).text, u"ya"_s);

    screen.view.clearHistory();
    const QList<Conversation> cleared = screen.conversations();
    screen.view.appendChunk(u"x"_s, reply.id, home);
    screen.view.trimMessage(reply.id, home);
    QCOMPARE(screen.conversations(), cleared);
}

void ContentViewTest::trimsWithoutSaving()
{
    Screen screen;
    screen.view.loadHistory();
    const ChatMessage reply = message(u" \t\n\u2028\u0085\u00a0uno\n dos\n\u3000\n"_s, false);
    screen.view.appendMessage(reply);
    screen.writes.clear();
    screen.view.trimMessage(reply.id, screen.selected());
    QCOMPARE(screen.conversations().at(0).messages.at(0).text, u"uno\n dos"_s);
    QCOMPARE(screen.saves(), 0);
}

void ContentViewTest::noticeEndsLoadingAndSaves()
{
    Screen screen;
    screen.view.loadHistory();
    screen.view.setLoading(true);
    screen.writes.clear();
    screen.view.appendAssistantNotice(u"No pude preparar la consulta."_s);
    QVERIFY(!screen.view.isLoading());
    const ChatMessage notice = screen.conversations().at(0).messages.constLast();
    QCOMPARE(notice.text, u"No pude preparar la consulta."_s);
    QVERIFY(!notice.isUser);
    QVERIFY(!notice.attachmentName);
    QVERIFY(!notice.imagePreviewData);
    QVERIFY(!notice.id.isNull());
    QCOMPARE(screen.saves(), 1);
}

void ContentViewTest::noticeEndsLoadingFirst()
{
    Screen screen;
    screen.view.loadHistory();
    screen.view.setLoading(true);
    std::optional<qsizetype> messagesAtTheEnd;
    connect(&screen.view, &ContentView::isLoadingChanged, &screen.view,
            [&] { messagesAtTheEnd = screen.conversations().at(0).messages.size(); });
    screen.view.appendAssistantNotice(u"No pude preparar la consulta."_s);
    QCOMPARE(messagesAtTheEnd, std::optional<qsizetype>(0));
}

void ContentViewTest::noticeWithoutAConversationOnlyEndsLoading()
{
    Screen screen;
    screen.view.loadHistory();
    screen.view.selectConversation(QUuid::createUuid());
    screen.view.setLoading(true);
    screen.writes.clear();
    const QList<Conversation> before = screen.conversations();
    screen.view.appendAssistantNotice(u"No pude preparar la consulta."_s);
    QVERIFY(!screen.view.isLoading());
    QCOMPARE(screen.conversations(), before);
    QCOMPARE(screen.saves(), 0);
}

void ContentViewTest::replyHasStarted()
{
    Screen screen;
    screen.view.loadHistory();
    QSignalSpy told(&screen.view, &ContentView::replyHasStartedChanged);
    screen.view.setLoading(true);
    QVERIFY(!screen.view.replyHasStarted());
    screen.view.appendMessage(message(u"pregunta"_s));
    QVERIFY(!screen.view.replyHasStarted());
    screen.view.appendMessage(message(u""_s, false));
    QVERIFY(screen.view.replyHasStarted());
    QCOMPARE(told.count(), 1);
    screen.view.setLoading(false);
    QVERIFY(!screen.view.replyHasStarted());
    QCOMPARE(told.count(), 2);
}

void ContentViewTest::replyHasStartedInTheConversationShown()
{
    Screen screen;
    screen.view.loadHistory();
    const QUuid answered = screen.selected();
    screen.view.appendMessage(message(u"pregunta"_s));
    screen.view.appendMessage(message(u"respuesta"_s, false));
    screen.view.startNewConversation();
    const QUuid asked = screen.selected();
    screen.view.appendMessage(message(u"pregunta"_s));
    screen.view.setLoading(true);
    QVERIFY(!screen.view.replyHasStarted());

    QSignalSpy told(&screen.view, &ContentView::replyHasStartedChanged);
    screen.view.selectConversation(answered);
    QVERIFY(screen.view.replyHasStarted());
    QCOMPARE(told.count(), 1);
    screen.view.selectConversation(asked);
    QVERIFY(!screen.view.replyHasStarted());
    QCOMPARE(told.count(), 2);
}

void ContentViewTest::replyStartsOnce()
{
    Screen screen;
    screen.view.loadHistory();
    const QUuid answered = *screen.view.selectedConversationID();
    screen.view.appendMessage(message(u"pregunta"_s));
    screen.view.appendMessage(message(u"respuesta"_s, false));
    screen.view.startNewConversation();
    const QUuid asked = *screen.view.selectedConversationID();
    QSignalSpy started(&screen.view, &ContentView::replyStarted);

    screen.view.appendMessage(message(u"pregunta"_s));
    screen.view.setLoading(true);
    screen.view.selectConversation(answered);
    screen.view.selectConversation(asked);
    QCOMPARE(started.count(), 0);
    screen.view.appendMessage(message(u""_s, false));
    QCOMPARE(started.count(), 1);
    screen.view.startNewConversation();
    screen.view.selectConversation(answered);
    screen.view.selectConversation(asked);
    screen.view.setLoading(false);
    QCOMPARE(started.count(), 1);

    screen.view.setLoading(true);
    const QSignalSpy noticed(&screen.view, &ContentView::noticeAppended);
    screen.view.appendAssistantNotice(u"No pude preparar la consulta."_s);
    QCOMPARE(started.count(), 1);
    QCOMPARE(noticed.count(), 1);
    QCOMPARE(noticed.constFirst().constFirst(), u"No pude preparar la consulta."_s);
}

void ContentViewTest::turningImageAnalysisOffDropsThePendingImage()
{
    Screen screen;
    screen.attachImage();
    screen.view.setImageAnalysisEnabled(false);
    QVERIFY(!screen.view.selectedImageData());
    QVERIFY(!screen.view.selectedImageName());
    QVERIFY(!screen.view.selectedImageMimeType());
    screen.view.setImageAnalysisEnabled(true);
    QVERIFY(!screen.view.selectedImageData());

    screen.attachImage();
    screen.view.setImageAnalysisEnabled(true);
    QVERIFY(screen.view.selectedImageData());
}

void ContentViewTest::keepsTheComposersText()
{
    Screen screen;
    const QSignalSpy changed(&screen.view, &ContentView::messageTextChanged);
    screen.view.setMessageText(u"hola"_s);
    screen.view.setMessageText(u"hola"_s);
    QCOMPARE(screen.view.messageText(), u"hola"_s);
    QCOMPARE(changed.count(), 1);
}

void ContentViewTest::clearingTheImageTellsOnce()
{
    Screen screen;
    screen.attachImage();
    const QSignalSpy changed(&screen.view, &ContentView::selectedImageChanged);
    screen.view.clearSelectedImage();
    screen.view.clearSelectedImage();
    QCOMPARE(changed.count(), 1);
}

void ContentViewTest::preferencesAreSharedWithTheStore()
{
    Screen screen;
    ContentView &view = screen.view;
    QSignalSpy appearance(&view, &ContentView::appearanceRawValueChanged);
    QSignalSpy textSize(&view, &ContentView::textSizeRawValueChanged);
    QSignalSpy analysis(&view, &ContentView::imageAnalysisEnabledChanged);
    QSignalSpy previews(&view, &ContentView::showImagePreviewsChanged);

    view.setAppearanceRawValue(u"dark"_s);
    QCOMPARE(screen.store.string(u"aulora.settings.appearance"_s), u"dark"_s);
    view.setTextSizeRawValue(u"large"_s);
    QCOMPARE(screen.store.string(u"aulora.settings.textSize"_s), u"large"_s);
    view.setImageAnalysisEnabled(false);
    QCOMPARE(screen.store.boolean(u"aulora.settings.imageAnalysis"_s), false);
    view.setShowImagePreviews(false);
    QCOMPARE(screen.store.boolean(u"aulora.settings.imagePreviews"_s), false);

    // Written elsewhere, seen here at once.
    screen.store.setString(u"aulora.settings.appearance"_s, u"light"_s);
    QCOMPARE(view.appearanceRawValue(), u"light"_s);
    screen.store.setString(u"aulora.settings.appearance"_s, u"sepia"_s);
    QCOMPARE(view.appearanceRawValue(), u"sepia"_s);
    QCOMPARE(appearance.count(), 3);
    QCOMPARE(textSize.count(), 1);
    QCOMPARE(analysis.count(), 1);
    QCOMPARE(previews.count(), 1);
}

void ContentViewTest::textScaleFollowsTheTextSize_data()
{
    QTest::addColumn<QString>("rawValue");
    QTest::addColumn<double>("scale");
    QTest::newRow("compact") << u"compact"_s << 0.9;
    QTest::newRow("standard") << u"standard"_s << 1.0;
    QTest::newRow("large") << u"large"_s << 1.15;
    QTest::newRow("capitals") << u"LARGE"_s << 1.0;
    QTest::newRow("empty") << u""_s << 1.0;
}

void ContentViewTest::textScaleFollowsTheTextSize()
{
    QFETCH(QString, rawValue);
    QFETCH(double, scale);
    Screen screen;
    screen.view.setTextSizeRawValue(rawValue);
    QCOMPARE(screen.view.textScale(), scale);
}

void ContentViewTest::imageErrorIsDismissed()
{
    Screen screen;
    QCOMPARE(screen.view.imageImportErrorText(), u""_s);
    screen.view.setImageImportError(u"No pude leer la imagen seleccionada."_s);
    QVERIFY(screen.view.hasImageImportError());
    QCOMPARE(screen.view.imageImportErrorText(), u"No pude leer la imagen seleccionada."_s);
    screen.view.dismissImageImportError();
    QVERIFY(!screen.view.imageImportError());
}

void ContentViewTest::viewerOpensAndCloses()
{
    Screen screen;
    screen.view.openImageViewer("una");
    QCOMPARE(screen.view.enlargedImageData(), QByteArray("una"));
    QVERIFY(screen.view.showImageViewer());
    screen.view.openImageViewer("otra");
    QCOMPARE(screen.view.enlargedImageData(), QByteArray("otra"));
    screen.view.closeImageViewer();
    QVERIFY(!screen.view.showImageViewer());
    QVERIFY(!screen.view.enlargedImageData());
}

void ContentViewTest::viewerHasItsImageWhenItIsPresented()
{
    Screen screen;
    std::optional<QByteArray> presented;
    connect(&screen.view, &ContentView::showImageViewerChanged, &screen.view,
            [&] { presented = screen.view.enlargedImageData(); });
    screen.view.openImageViewer("una");
    QCOMPARE(presented, QByteArray("una"));
}

void ContentViewTest::viewerClosesBeforeItsImageGoes()
{
    Screen screen;
    screen.view.openImageViewer("una");
    std::optional<QByteArray> closed;
    connect(&screen.view, &ContentView::showImageViewerChanged, &screen.view,
            [&] { closed = screen.view.enlargedImageData(); });
    screen.view.closeImageViewer();
    QCOMPARE(closed, QByteArray("una"));
    QVERIFY(!screen.view.enlargedImageData());
}

void ContentViewTest::unnamedImageIsCalledImagen()
{
    Screen screen;
    screen.view.setSelectedImage("bytes", std::nullopt, std::nullopt);
    QCOMPARE(screen.view.selectedImageTitle(), u"imagen"_s);
    screen.view.setSelectedImage("bytes", u"torax.png"_s, std::nullopt);
    QCOMPARE(screen.view.selectedImageTitle(), u"torax.png"_s);
    screen.view.clearSelectedImage();
    QVERIFY(!screen.view.hasSelectedImage());
}

QTEST_GUILESS_MAIN(ContentViewTest)
#include "ContentViewTest.moc"
