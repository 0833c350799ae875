#pragma once

#include "Conversation.h"

#include <QList>
#include <QObject>
#include <QString>

class PreferenceStore;

/// Keeps the user's conversations across runs: one JSON document in the preference store,
/// rewritten whole at every save. Failures are one line on standard output, never more.
class HistoryStore : public QObject
{
    Q_OBJECT

public:
    /// The suffix is the document's format version; no other version is read.
    inline static const QString historyKey = QStringLiteral("aulora.conversations.v3");

    /// Both pointers are borrowed; `store` outlives this object.
    explicit HistoryStore(PreferenceStore *store, QObject *parent = nullptr);
    ~HistoryStore() override;

    /// The stored conversations, newest first; empty when there are none or the document cannot be
    /// read or decoded, which is printed in one line. Loading changes nothing that is stored, but
    /// the next save replaces a document that cannot be decoded. One that cannot be read, because
    /// of the disk or for lack of permission, is kept: the first save that succeeds appends it to
    /// the conversations begun meanwhile, and the next start shows it.
    QList<Conversation> load() const;

    /// Hands `conversations` over to be encoded and committed in the background: the list is
    /// shared, not copied, so the cost does not depend on the size of the history.
    void save(const QList<Conversation> &conversations);

    /// Deletes the stored document, and what was kept of damaged ones.
    void remove();

private:
    PreferenceStore *m_store;
};
