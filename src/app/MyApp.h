#pragma once

#include "ContentView.h"
#include "HistoryStore.h"
#include "ImageIntake.h"
#include "InstallationIdentity.h"
#include "PreferenceStore.h"
#include "SendFlow.h"

#include <QObject>
#include <QQmlApplicationEngine>

#include <memory>

/// The one composition root: makes every long-lived object, connects them, and hands them to the
/// window. Members are declared in the order in which they need each other.
class MyApp : public QObject
{
    Q_OBJECT

public:
    /// Everything of the program on top of `store`.
    explicit MyApp(std::unique_ptr<PreferenceStore> store, QObject *parent = nullptr);

    /// Loads the history and shows the window; false when the window cannot be made.
    bool start();

    /// Brings the window to the front.
    void raiseWindow();

    /// Saves a reply that is still growing, as it is shown, and everything else that is not on disk
    /// yet. Waits until it is written or has failed.
    void saveBeforeEnd();

private:
    std::unique_ptr<PreferenceStore> m_store;
    HistoryStore m_historyStore;
    InstallationIdentity m_identity;
    ContentView m_contentView;
    ImageIntake m_imageIntake;
    SendFlow m_sendFlow;
    QQmlApplicationEngine m_engine;
};
