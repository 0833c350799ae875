#pragma once

#include <QString>

#include <memory>

class PreferenceStore;

/// The folder of everything this program keeps for its user: `aulora-ia` in the platform's place
/// for application data, which on Linux an absolute `XDG_DATA_HOME` moves. It may not exist yet.
QString userDataFolder();

/// The preference store of the user: the user defaults on macOS, elsewhere the database
/// `preferences.sqlite` in the data folder.
std::unique_ptr<PreferenceStore> makeUserPreferenceStore();
