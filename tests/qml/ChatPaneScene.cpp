#include "ChatPaneScene.h"

#include <QQmlError>

using namespace Qt::StringLiterals;

ChatPaneScene::ChatPaneScene(QSize size)
    : m_view(std::make_unique<QQuickView>())
{
    m_view->engine()->addImportPath(u":/qt/qml"_s);
    QObject::connect(m_view->engine(), &QQmlEngine::warnings, m_view.get(),
                     [this](const QList<QQmlError> &warnings) {
                         for (const QQmlError &warning : warnings)
                             m_warnings += warning.toString() + u'\n';
                     });
    m_view->setInitialProperties({{u"messages"_s, QVariant::fromValue(&m_messages)}});
    m_view->setResizeMode(QQuickView::SizeRootObjectToView);
    m_view->setSource(QUrl(u"qrc:/tests/ChatPaneScene.qml"_s));
    m_view->resize(size);
    m_view->show();
}

void ChatPaneScene::show(const QList<ChatMessage> &messages)
{
    const QUuid id = QUuid::createUuid();
    m_conversations.prepend({id, u"Prueba"_s, messages});
    m_conversations.select(id);
    updateReplyHasStarted();
}

void ChatPaneScene::select(int index)
{
    m_conversations.select(m_conversations.conversations().at(index).id);
    updateReplyHasStarted();
}

void ChatPaneScene::append(const ChatMessage &message)
{
    m_conversations.appendMessage(m_conversations.indexOf(*m_conversations.selectedID()), message);
    updateReplyHasStarted();
}

void ChatPaneScene::appendText(const QString &piece)
{
    m_conversations.appendMessageText(m_conversations.indexOf(*m_conversations.selectedID()),
                                      m_messages.count() - 1, piece);
}

void ChatPaneScene::setLoading(bool loading)
{
    m_view->rootObject()->setProperty("isLoading", loading);
    updateReplyHasStarted();
}

void ChatPaneScene::updateReplyHasStarted()
{
    QQuickItem *root = m_view->rootObject();
    const auto &messages = m_messages.messages();
    root->setProperty("replyHasStarted",
                      root->property("isLoading").toBool() && !messages.isEmpty()
                          && !messages.last().isUser);
}

QQuickItem *ChatPaneScene::pane() const
{
    return m_view->rootObject()->childItems().constFirst();
}

QList<QQuickItem *> ChatPaneScene::bubbles() const
{
    return itemsOfType(m_view->rootObject(), "MessageDelegate");
}

ChatMessage question(const QString &text)
{
    return {QUuid::createUuid(), text, true, {}, {}};
}

ChatMessage reply(const QString &text)
{
    return {QUuid::createUuid(), text, false, {}, {}};
}

QList<QQuickItem *> itemsOfType(QQuickItem *item, const char *typeName)
{
    QList<QQuickItem *> found;
    if (item->inherits(typeName))
        found.append(item);
    const auto children = item->childItems();
    for (QQuickItem *child : children)
        found += itemsOfType(child, typeName);
    return found;
}

QQuickItem *itemWithText(QQuickItem *item, const QString &text)
{
    if (item->property("text").toString() == text)
        return item;
    const auto children = item->childItems();
    for (QQuickItem *child : children) {
        if (QQuickItem *found = itemWithText(child, text))
            return found;
    }
    return nullptr;
}
