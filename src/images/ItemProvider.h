#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

/// The result of loading a dropped item: an error, bytes, or neither.
struct LoadedItem
{
    /// Why it failed, in words for people.
    std::optional<QString> error;
    std::optional<QByteArray> data;
};

/// One dragged or pasted item: lists the types it is offered in, and loads one of them.
class ItemProvider
{
public:
    using Completion = std::function<void(LoadedItem)>;

    ItemProvider() = default;
    ItemProvider(const ItemProvider &) = delete;
    ItemProvider &operator=(const ItemProvider &) = delete;
    virtual ~ItemProvider() = default;

    /// In the order in which its owner registered them.
    virtual QStringList registeredTypeIdentifiers() const = 0;
    /// The item's own name, such as a file's.
    virtual std::optional<QString> suggestedName() const = 0;
    /// Returns at once; `completion` is called once, on any thread.
    virtual void loadDataRepresentation(const QString &typeIdentifier, Completion completion) = 0;
};

using ItemProviders = QList<std::shared_ptr<ItemProvider>>;
